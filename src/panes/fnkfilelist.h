#pragma once
// The file list: a table of the entries of CurrentDir. Row 0 is "..", which cannot be selected;
// the file behind any other row is CurrentDir followed by the row's name.

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "panes/fnkfilelist-selection.h"

/// Builds the list with the columns of the settings into the second pane; also again after the
/// columns changed and MainW::ListScroll was destroyed.
GtkWidget* CreateFileList(GtkWidget* paned);

/// Fills the list with the entries of path, which ends in "/". Nothing happens when path is no
/// directory. Always 0.
int DisplayFileList(const std::string& path);

/// Removes all rows, so that none is taken for a file of a directory that it is not in.
void EmptyFileList();

/// Sorts by the column, or the other way round when it is sorted by it already.
void on_FileList_click_column(int column);

/// Puts the rows into the order that SortColumn and SortType say.
void SortFileList();

/// Scrolls the row of that name into view; nothing happens when there is none.
void ShowListRow(const std::string& name);

/// What a double click on the row does: opens the entry, or the parent for "..".
void ActivateListRow(std::size_t index);

/// Widths of the detail columns, pixels.
std::vector<int> ListColumnWidths();
/// Column of the view for a list column index: 0 the icon, detail column i is i + 1.
GtkTreeViewColumn* ListViewColumn(int column);
