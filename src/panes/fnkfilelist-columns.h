#pragma once
// The columns of the file list: their titles, widths and cells. The first shows what is a directory,
// those after it what the settings say.

#include <gtk/gtk.h>

/// Called with the list column (0 the icon, detail column i is i + 1) whose title is clicked.
using ColumnClickHandler = void (*)(int column);
/// Adds the columns to a list that has none.
void AppendListColumns(GtkTreeView* list, ColumnClickHandler clicked);

/// Shows by which column and which way the list is sorted.
void UpdateSortArrows(GtkTreeView* list);
