#pragma once
// The rows of the file list and which of them are selected.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "panes/fnkfilelist-model.h"

/// Callbacks of the file list. The main window sets them once at start.
struct FileListEvents {
    void (*SelectionChanged)() = nullptr;
    /// A row was activated that is not a directory. If that leads to one, calls entered, unless it is
    /// null, once the directory is shown.
    void (*FileActivated)(const std::string& path, const std::function<void()>& entered) = nullptr;
};
extern FileListEvents OnFileList;

/// MainW::FileList; null if there is none.
GtkTreeView* MainList();
const FileRows& ListRows();
/// The model of MainList, even while the view is detached from it. Null if there is no list.
FnkListModel* MainListModel();
/// Makes list own model, without displaying the model yet.
void SetListModel(GtkTreeView* list, FnkListModel* model);

/// The row under a button event; -1 if there is none, as for a click on a column title.
int ListRowAt(GtkTreeView* list, const GdkEventButton* event);

/// The path of the row's entry; that of a directory ends in "/".
std::string ListRowPath(std::size_t row);

/// The selected rows in ascending order.
std::vector<std::size_t> ListSelection();
std::size_t CountListSelection();

/// Holds back OnFileList.SelectionChanged and calls it once when the last batch ends. Batches nest.
class ListSelectionBatch {
public:
    ListSelectionBatch();
    ListSelectionBatch(const ListSelectionBatch&) = delete;
    ListSelectionBatch& operator=(const ListSelectionBatch&) = delete;
    ~ListSelectionBatch();
    /// Makes the batch report a change even if the selection is the same as before.
    void MarkChanged();
};

// None of these functions selects "..".

void SelectAllListRows();
void UnselectAllListRows();
/// Selects the rows for which chosen, with one value per row, is true, and unselects all others.
void SetListSelection(std::vector<bool> chosen);
/// Adds the rows from first to last, inclusive, to the selection.
void SelectListRows(std::size_t first, std::size_t last);
