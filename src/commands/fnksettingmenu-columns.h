#pragma once
// The page of the options dialog for the columns of the file list and their order.

#include <gtk/gtk.h>

#include <vector>

#include "commands/fnksettingmenu-info.h"

/// Builds the page with empty lists.
void CreateColumnsPage(GtkWidget* notebook, OptionDlgInfo* info);

/// Fills DisplayedList from ColumnPosition, and PossibleList with the other columns.
void SetColumnLists(const OptionDlgInfo* info);
/// The ColumnId values of DisplayedList, in its order.
std::vector<int> GetDisplayedColumns(const OptionDlgInfo* info);
