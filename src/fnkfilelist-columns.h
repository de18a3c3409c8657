#pragma once
// The columns of the file list: their titles, widths and cells. The first shows what is a directory,
// those after it what the settings say.

#include <gtk/gtk.h>

/// To a list that has none.
void AppendListColumns(GtkTreeView* list);

/// Shows by which column and which way the list is sorted.
void UpdateSortArrows(GtkTreeView* list);
