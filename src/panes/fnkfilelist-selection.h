#pragma once
// The rows of the file list and which of them are selected.

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "panes/fnkfilelist-model.h"

/// What the window above does when the list has something to tell; set once at start.
struct FileListEvents {
    void (*SelectionChanged)() = nullptr;
    /// A row that is no directory was activated.
    void (*FileActivated)(const std::string& path) = nullptr;
};
extern FileListEvents OnFileList;

/// MainW::FileList; null while there is none.
GtkTreeView* MainList();
const FileRows& ListRows();
/// The model of MainList, attached to the view or not; null while there is none.
FnkListModel* MainListModel();
/// Gives the model to a list, which owns it from then on.
void SetListModel(GtkTreeView* list, FnkListModel* model);

/// The path of the entry in the row, a directory's with a "/" at its end.
std::string ListRowPath(std::size_t row);

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
    /// There is something to report, though the selection may be what it was.
    void MarkChanged();
};

/// Every row but "..".
void SelectAllListRows();
void UnselectAllListRows();
/// Selects the rows that chosen is true for, one value a row, and no others. ".." is never selected.
void SetListSelection(std::vector<bool> chosen);
/// Adds the rows first to last to the selection.
void SelectListRows(std::size_t first, std::size_t last);
