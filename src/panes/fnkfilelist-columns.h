#pragma once
// The columns of the file list: titles, widths and cells. Column 0 shows a folder icon for
// directories. The detail columns follow in the order of the settings.

#include <gtk/gtk.h>

/// Called when a title is clicked. column is 0 for the icon and i + 1 for detail column i.
using ColumnClickHandler = void (*)(int column);
/// Adds the columns to a list that has none.
void AppendListColumns(GtkTreeView* list, ColumnClickHandler clicked);

/// Shows the sort column and direction in the titles.
void UpdateSortArrows(GtkTreeView* list);

/// The width to store for detail column position: that of the column, or the stored one as long as the
/// column takes the room that the others leave.
int ListColumnSize(GtkTreeView* list, int position);
