#include "panes/fnkfilelist-selection.h"

#include <utility>

#include "core/fnktable.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"

FileListEvents OnFileList;

namespace {

constexpr const char* kModelKey = "fennick-model";

/// Unselects the ".." row before the change is reported. A select function could do the same, but the
/// toolkit would call it for every row on each change, and there may be a hundred thousand rows.
void UnselectParentRow()
{
    const FileRows& rows = ListRows();
    if (!rows.IsEmpty() && rows.IsParentRow(0)) {
        const TreePath path(gtk_tree_path_new_first());
        gtk_tree_selection_unselect_path(gtk_tree_view_get_selection(MainList()), path.get());
    }
}

}  // namespace

void SetListModel(GtkTreeView* list, FnkListModel* model)
{
    g_object_set_data_full(G_OBJECT(list), kModelKey, model, g_object_unref);
}

FnkListModel* MainListModel()
{
    GtkTreeView* const list = MainList();
    return list != nullptr ? static_cast<FnkListModel*>(g_object_get_data(G_OBJECT(list), kModelKey)) : nullptr;
}

GtkTreeView* MainList()
{
    return pMainW != nullptr && pMainW->FileList != nullptr ? GTK_TREE_VIEW(pMainW->FileList) : nullptr;
}

const FileRows& ListRows()
{
    static const FileRows kNoRows;
    FnkListModel* const model = MainListModel();
    return model != nullptr ? ModelRows(model) : kNoRows;
}

int ListRowAt(GtkTreeView* list, const GdkEventButton* event)
{
    GtkTreePath* path = nullptr;
    if (event->window != gtk_tree_view_get_bin_window(list) ||
        !gtk_tree_view_get_path_at_pos(list, static_cast<int>(event->x), static_cast<int>(event->y), &path, nullptr,
                                       nullptr, nullptr)) {
        return -1;
    }
    const TreePath owner(path);
    return gtk_tree_path_get_indices(path)[0];
}

std::string ListRowPath(std::size_t row)
{
    const FileRows& rows = ListRows();
    return pGTable->CurrentDir + rows.Name(row) + (rows.Row(row).is_directory ? "/" : "");
}

std::vector<std::size_t> ListSelection()
{
    std::vector<std::size_t> rows;
    if (MainList() != nullptr) {
        gtk_tree_selection_selected_foreach(
            gtk_tree_view_get_selection(MainList()),
            [](GtkTreeModel*, GtkTreePath*, GtkTreeIter* iter, gpointer data) {
                static_cast<std::vector<std::size_t>*>(data)->push_back(ModelRowIndex(iter));
            },
            &rows);
    }
    return rows;
}

std::size_t CountListSelection()
{
    GtkTreeView* const list = MainList();
    return list != nullptr
               ? static_cast<std::size_t>(gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(list)))
               : 0;
}

ListSelectionBatch::ListSelectionBatch()
{
    ++pMainW->ListBatches;
}

void ListSelectionBatch::MarkChanged()
{
    pMainW->IsListChanged = true;
}

ListSelectionBatch::~ListSelectionBatch()
{
    if (pMainW->ListBatches == 1 && pMainW->IsListChanged) {
        UnselectParentRow();
    }
    if (--pMainW->ListBatches == 0 && std::exchange(pMainW->IsListChanged, false) &&
        OnFileList.SelectionChanged != nullptr) {
        OnFileList.SelectionChanged();
    }
}

namespace {

/// Suspends drawing during a change to a large list by hiding the list's window. The toolkit
/// invalidates each changed row on its own, which doubles the time. Showing the window again
/// invalidates everything at once.
class DrawingPause {
public:
    DrawingPause()
    {
        constexpr std::size_t kLargeChange = 1000;
        GdkWindow* const window = gtk_tree_view_get_bin_window(MainList());
        if (ListRows().Count() > kLargeChange && window != nullptr && gdk_window_is_visible(window)) {
            window_ = window;
            gdk_window_hide(window_);
        }
    }
    DrawingPause(const DrawingPause&) = delete;
    DrawingPause& operator=(const DrawingPause&) = delete;
    ~DrawingPause()
    {
        if (window_ != nullptr) {
            gdk_window_show(window_);
        }
    }

private:
    GdkWindow* window_ = nullptr;
};

}  // namespace

void SelectAllListRows()
{
    const DrawingPause pause;
    gtk_tree_selection_select_all(gtk_tree_view_get_selection(MainList()));
}

void UnselectAllListRows()
{
    pMainW->ListAnchor = -1;
    const DrawingPause pause;
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(MainList()));
}

namespace {

gboolean IsChosenRow(GtkTreeSelection*, GtkTreeModel*, GtkTreePath* path, gboolean, gpointer chosen)
{
    return (
        *static_cast<const std::vector<bool>*>(chosen))[static_cast<std::size_t>(gtk_tree_path_get_indices(path)[0])];
}

}  // namespace

void SetListSelection(std::vector<bool> chosen)
{
    GtkTreeSelection* const selection = gtk_tree_view_get_selection(MainList());
    const ListSelectionBatch batch;
    const DrawingPause pause;
    UnselectAllListRows();
    // With a select function the toolkit walks over the rows once. Selecting them one by one makes it
    // search for each row.
    gtk_tree_selection_set_select_function(selection, IsChosenRow, &chosen, nullptr);
    gtk_tree_selection_select_all(selection);
    gtk_tree_selection_set_select_function(selection, nullptr, nullptr, nullptr);
}

void SelectListRows(std::size_t first, std::size_t last)
{
    const DrawingPause pause;
    const TreePath start(gtk_tree_path_new_from_indices(static_cast<int>(first), -1));
    const TreePath end(gtk_tree_path_new_from_indices(static_cast<int>(last), -1));
    gtk_tree_selection_select_range(gtk_tree_view_get_selection(MainList()), start.get(), end.get());
}
