#pragma once
// The page of the options dialog that chooses and orders the columns of the file list.

#include <gtk/gtk.h>

#include <vector>

#include "commands/fnksettingmenu-info.h"

/// Builds the page; its lists are empty.
void CreateColumnsPage(GtkWidget* notebook, OptionDlgInfo* info);

/// Fills the lists: what of ColumnPosition is displayed, and what is not.
void SetColumnLists(const OptionDlgInfo* info);
/// The ColumnId values of DisplayedList.
std::vector<int> GetDisplayedColumns(const OptionDlgInfo* info);
