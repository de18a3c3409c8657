#pragma once
// Serves FileRows to the tree view: a flat model that owns the rows and makes the text of a cell
// when it is asked for it. Its columns are the ColumnId values, all of them texts.

#include <gtk/gtk.h>

#include <vector>

#include "model/fnkfilelist-rows.h"

G_DECLARE_FINAL_TYPE(FnkListModel, fnk_list_model, FNK, LIST_MODEL, GObject)

FnkListModel* NewListModel();

/// The model's rows. They may be replaced only while no view is attached.
FileRows& ModelRows(FnkListModel* model);
/// Sorts the rows and returns the old place of each. The attached views still have to be told.
std::vector<int> SortModelRows(FnkListModel* model);
/// The row an iterator of the model stands for.
std::size_t ModelRowIndex(const GtkTreeIter* iter);
