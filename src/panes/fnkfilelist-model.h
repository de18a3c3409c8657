#pragma once
// The tree model of the file list. It is flat, owns the FileRows, and formats the text of a cell on
// demand. Its columns are the ColumnId values, all strings.

#include <gtk/gtk.h>

#include <vector>

#include "model/fnkfilelist-rows.h"

G_DECLARE_FINAL_TYPE(FnkListModel, fnk_list_model, FNK, LIST_MODEL, GObject)

FnkListModel* NewListModel();

/// Rows may be added and removed only while no view uses the model.
FileRows& ModelRows(FnkListModel* model);
/// Replaces the rows, which are in their order, while no view uses the model.
void SetModelRows(FnkListModel* model, FileRows rows);
/// Sorts the rows. Returns the old position of each row; the caller must pass it on to the views.
std::vector<int> SortModelRows(FnkListModel* model);
std::size_t ModelRowIndex(const GtkTreeIter* iter);
