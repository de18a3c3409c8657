#pragma once
// The file list: a table of the entries of CurrentDir. Row 0 is "..", which cannot be selected;
// the file behind any other row is CurrentDir followed by the row's name.

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "fnkfilelist-rows.h"

/// What the window above does when the list has something to tell; set once at start.
struct FileListEvents {
    void (*SelectionChanged)() = nullptr;
    /// A row that is no directory was activated.
    void (*FileActivated)(const std::string& path) = nullptr;
};
extern FileListEvents OnFileList;

/// Builds the list with the columns of the settings into the second pane; also again after the
/// columns changed and MainW::ListScroll was destroyed.
GtkWidget* CreateFileList(GtkWidget* paned);

/// Fills the list with the entries of path, which ends in "/". A path that is no directory leaves
/// a list of the same path as it is; a list of another is emptied, so that no row is ever taken
/// for a file of a directory that it is not in. Always 0.
int DisplayFileList(const std::string& path);

/// Sorts by the column, or the other way round when it is sorted by it already.
void on_FileList_click_column(int column);

/// Puts the rows into the order that SortColumn and SortType say.
void SortFileList();

/// Scrolls the row of that name into view; nothing happens when there is none.
void ShowListRow(const std::string& name);

/// The path of the entry in the row, a directory's with a "/" at its end.
std::string ListRowPath(std::size_t row);

/// What a double click on the row does: opens the entry, or the parent for "..".
void ActivateListRow(std::size_t index);

/// MainW::FileList; null while there is none.
GtkTreeView* MainList();
const FileRows& ListRows();
/// Widths of the detail columns, pixels.
std::vector<int> ListColumnWidths();
/// Column of the view for a list column index: 0 the icon, detail column i is i + 1.
GtkTreeViewColumn* ListViewColumn(int column);

/// The selected rows in ascending order.
std::vector<std::size_t> ListSelection();
std::size_t CountListSelection();

/// While it lives, selection changes are not reported; one report for all follows at its end.
class ListSelectionBatch {
public:
    ListSelectionBatch();
    ListSelectionBatch(const ListSelectionBatch&) = delete;
    ListSelectionBatch& operator=(const ListSelectionBatch&) = delete;
    ~ListSelectionBatch();
};

/// Every row but "..".
void SelectAllListRows();
void UnselectAllListRows();
/// Selects the rows that chosen is true for, one value a row, and no others. ".." is never selected.
void SetListSelection(std::vector<bool> chosen);
/// Adds the rows first to last to the selection.
void SelectListRows(std::size_t first, std::size_t last);
