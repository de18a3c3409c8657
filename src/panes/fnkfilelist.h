#pragma once
// The file list: a table of the entries of CurrentDir. Row 0 is "..", which cannot be selected. The
// path of any other row is CurrentDir plus the row's name.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "panes/fnkfilelist-selection.h"

/// Builds the list in the second pane, with the columns of the settings. To change the columns,
/// destroy MainW::ListScroll and call this again.
GtkWidget* CreateFileList(GtkWidget* paned);

/// Fills the list with the entries of path, which ends in "/". Does nothing if path is not a
/// directory. Reads it first, unless it has just been read; see StartVisit. Always returns 0.
int DisplayFileList(const std::string& path);

/// Notes where the list is scrolled to, for EnterFileList, before CurrentDir changes.
void LeaveFileList();
/// Fills the list with the entries of the directory that was just read: from its top, or with
/// MainW::IsReturning where it was left. Leaves no rows if it is none: ListRowPath would combine
/// CurrentDir with the names in the old rows.
void EnterFileList();

/// Shows what took longer to learn of the entries of a directory, if it is still shown.
void ShowListDetails(const std::string& directory, const RowDetails& details);

/// Sorts by the column; reverses the order if it is the sort column already.
void on_FileList_click_column(int column);

/// Sorts the rows by SortColumn and SortType.
void SortFileList();

/// Selects the rows of these names and no others, and scrolls to the first of them.
void SelectListNames(const std::vector<std::string>& names);

/// Does what a double click on the row does: opens the entry, or the parent directory for "..". Calls
/// entered once a directory is shown.
void ActivateListRow(std::size_t index, const std::function<void()>& entered = {});

/// Widths of the detail columns in pixels.
std::vector<int> ListColumnWidths();
/// A column of the view: 0 for the icon, i + 1 for detail column i.
GtkTreeViewColumn* ListViewColumn(int column);
