#include "fnkfilelist.h"

#include <algorithm>

#include "fnkdirtree.h"
#include "fnkfilelist-columns.h"
#include "fnkfilelist-drag.h"
#include "fnkfilelist-model.h"
#include "fnkfilelist-sort.h"
#include "fnkfilelist-status.h"
#include "fnkmainwindow-record.h"
#include "fnkmessage-box.h"
#include "fnkstring.h"
#include "fnkutil-view.h"
#include "fnkutil-widget.h"
#include "fnkutil.h"

FileListEvents OnFileList;

namespace {

constexpr int kScrollBorder = 2;

/// The directory that the rows were read from.
std::string listed_directory;

/// Where a range of rows starts that a click with Shift ends; -1 while there is none.
int anchor_row = -1;

int batch_depth = 0;
bool batch_changed = false;

FnkListModel* ModelOf(GtkTreeView* list)
{
    return static_cast<FnkListModel*>(g_object_get_data(G_OBJECT(list), "fennick-model"));
}

void ReportSelection()
{
    if (OnFileList.SelectionChanged != nullptr) {
        OnFileList.SelectionChanged();
    }
    DisplayFileStatus();
}

void on_FileList_selection_changed(GtkTreeSelection*, gpointer)
{
    if (pGTable != nullptr) {
        const ListSelectionBatch batch;
        batch_changed = true;
    }
}

/// Whether a screen reader may have been told of the rows. The toolkit makes that class with its
/// first object.
bool HasAccessibleRows()
{
    return g_type_class_peek(g_type_from_name("GtkTreeViewAccessible")) != nullptr;
}

/// Takes the ".." row out of the selection again, before anyone sees it there. The toolkit's own
/// way to make a row unselectable asks about every row each time, a hundred thousand of them.
void UnselectParentRow()
{
    const FileRows& rows = ListRows();
    if (!rows.IsEmpty() && rows.IsParentRow(0)) {
        const TreePath path(gtk_tree_path_new_first());
        gtk_tree_selection_unselect_path(gtk_tree_view_get_selection(MainList()), path.get());
    }
}

void on_FileList_row_activated(GtkTreeView*, GtkTreePath* path, GtkTreeViewColumn*, gpointer)
{
    if (pGTable != nullptr) {
        ActivateListRow(static_cast<std::size_t>(gtk_tree_path_get_indices(path)[0]));
    }
}

int AnchorFor(int row)
{
    if (anchor_row < 0) {
        const std::vector<std::size_t> selected = ListSelection();
        anchor_row = selected.empty() ? row : static_cast<int>(selected.front());
    }
    return anchor_row;
}

void ToggleRow(int row)
{
    GtkTreeSelection* const selection = gtk_tree_view_get_selection(MainList());
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    if (gtk_tree_selection_path_is_selected(selection, path.get())) {
        gtk_tree_selection_unselect_path(selection, path.get());
    } else {
        gtk_tree_selection_select_path(selection, path.get());
    }
}

/// Clicks with Control and Shift: the toolkit serves them only in a view that has the focus, and
/// this one never has. Plain clicks are left to it.
gboolean on_FileList_button_press(GtkWidget* widget, GdkEventButton* event, gpointer)
{
    GtkTreeView* const list = GTK_TREE_VIEW(widget);
    GtkTreePath* clicked = nullptr;
    if (pGTable == nullptr || event->button != GDK_BUTTON_PRIMARY || event->type != GDK_BUTTON_PRESS ||
        event->window != gtk_tree_view_get_bin_window(list) ||
        !gtk_tree_view_get_path_at_pos(list, static_cast<int>(event->x), static_cast<int>(event->y), &clicked, nullptr,
                                       nullptr, nullptr)) {
        return FALSE;
    }
    const TreePath path(clicked);
    const int row = gtk_tree_path_get_indices(clicked)[0];
    const bool toggles = (event->state & GDK_CONTROL_MASK) != 0;
    if ((event->state & GDK_SHIFT_MASK) != 0) {
        const ListSelectionBatch batch;
        const int anchor = AnchorFor(row);
        if (!toggles) {
            UnselectAllListRows();
        }
        SelectListRows(static_cast<std::size_t>(std::min(anchor, row)),
                       static_cast<std::size_t>(std::max(anchor, row)));
        anchor_row = anchor;
        return TRUE;
    }
    anchor_row = row;
    if (toggles) {
        ToggleRow(row);
    }
    return toggles;
}

GtkTreeView* NewListView()
{
    GtkWidget* const widget = CreateTreeView(_("File list"));
    GtkTreeView* const list = GTK_TREE_VIEW(widget);
    g_object_set_data_full(G_OBJECT(widget), "fennick-model", NewListModel(), g_object_unref);
    gtk_tree_view_set_enable_search(list, FALSE);
    AppendListColumns(list);
    gtk_tree_view_set_fixed_height_mode(list, TRUE);

    GtkTreeSelection* const selection = gtk_tree_view_get_selection(list);
    gtk_tree_selection_set_mode(selection, GTK_SELECTION_MULTIPLE);
    g_signal_connect(selection, "changed", G_CALLBACK(on_FileList_selection_changed), nullptr);
    g_signal_connect(list, "button-press-event", G_CALLBACK(on_FileList_button_press), nullptr);
    g_signal_connect(list, "row-activated", G_CALLBACK(on_FileList_row_activated), nullptr);
    ConnectListDrag(list);
    return list;
}

/// The first row that is at least partly visible; the row count when there is none.
int FirstVisibleRow(GtkTreeView* list)
{
    const TreePath first = GetFirstVisiblePath(list);
    return first != nullptr ? gtk_tree_path_get_indices(first.get())[0] : static_cast<int>(ListRows().Count());
}

/// After the model was replaced; -1 stays at the top.
void ScrollRowToTop(GtkTreeView* list, int row)
{
    // A new model starts at the top, but the scroll bar is not told; without this it would see
    // nothing to do when it is to go where it stands already.
    gtk_adjustment_set_value(gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(list)), 0);
    if (row < 0 || row >= static_cast<int>(ListRows().Count())) {
        return;
    }
    // Rows that were never measured have no place to scroll to; asking for the size of the view
    // makes it give them all the height of the first.
    int width = 0;
    gtk_widget_get_preferred_width(GTK_WIDGET(list), &width, nullptr);
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    gtk_tree_view_scroll_to_cell(list, path.get(), nullptr, TRUE, 0.0F, 0.0F);
}

}  // namespace

GtkTreeView* MainList()
{
    return pMainW != nullptr && pMainW->FileList != nullptr ? GTK_TREE_VIEW(pMainW->FileList) : nullptr;
}

const FileRows& ListRows()
{
    static const FileRows kNoRows;
    GtkTreeView* const list = MainList();
    return list != nullptr ? ModelRows(ModelOf(list)) : kNoRows;
}

GtkTreeViewColumn* ListViewColumn(int column)
{
    return gtk_tree_view_get_column(MainList(), column);
}

std::vector<int> ListColumnWidths()
{
    std::vector<int> widths;
    for (int i = 1; MainList() != nullptr && i <= pGTable->ColumnCount; ++i) {
        widths.push_back(gtk_tree_view_column_get_fixed_width(ListViewColumn(i)));
    }
    return widths;
}

GtkWidget* CreateFileList(GtkWidget* paned)
{
    pMainW->ListScroll = CreateScroll();
    gtk_container_set_border_width(GTK_CONTAINER(pMainW->ListScroll), kScrollBorder);
    gtk_paned_pack2(GTK_PANED(paned), pMainW->ListScroll, TRUE, TRUE);
    pGTable->NameColumn = FindNameColumn(*pGTable);
    GtkTreeView* const list = NewListView();
    gtk_container_add(GTK_CONTAINER(pMainW->ListScroll), GTK_WIDGET(list));
    pMainW->FileList = GTK_WIDGET(list);
    listed_directory.clear();
    // At start the tree opens the directory once the window is built; reading it here as well
    // would double the time to the first picture.
    if (gtk_widget_get_realized(pMainW->MainWindow)) {
        DisplayFileList(pGTable->CurrentDir);
    }
    return pMainW->FileList;
}

int DisplayFileList(const std::string& path)
{
    GtkTreeView* const list = MainList();
    if (list == nullptr) {
        return 0;
    }
    const bool is_directory = IsDirectory(path) != 0;
    if (!is_directory && path == listed_directory) {
        return 0;
    }
    const int first_visible = path == pGTable->CurrentDir ? FirstVisibleRow(list) : -1;
    FnkListModel* const model = ModelOf(list);
    {
        const ListSelectionBatch batch;
        gtk_tree_view_set_model(list, nullptr);
        ModelRows(model).Clear();
        if (is_directory) {
            ReadFileRows(path, ModelRows(model));
        }
        SortModelRows(model);
        gtk_tree_view_set_model(list, GTK_TREE_MODEL(model));
        UpdateSortArrows(list);  // Taking the model away took them along.
        listed_directory = path;
        anchor_row = -1;
        batch_changed = true;
    }
    ScrollRowToTop(list, first_visible);
    return 0;
}

void on_FileList_click_column(int column)
{
    if (column == pGTable->SortColumn) {
        pGTable->SortType = pGTable->SortType == SORT_ASCENDING ? SORT_DESCENDING : SORT_ASCENDING;
    } else {
        pGTable->SortColumn = column;
        pGTable->SortType = SORT_ASCENDING;
    }
    SortFileList();
}

// The toolkit's view keeps a node for each row and sorts these in its turn, which takes longer than
// all the rest. As all rows are of one height, the nodes differ in nothing but being selected and
// what a screen reader knows of them, so without either it is enough to draw the rows again.
void SortFileList()
{
    GtkTreeView* const list = MainList();
    const ListSelectionBatch batch;
    const bool shows_only_rows = !HasAccessibleRows() && CountListSelection() == 0;
    std::vector<int> old_places = SortModelRows(ModelOf(list));
    const TreePath root(gtk_tree_path_new());
    if (shows_only_rows) {
        gtk_tree_row_reference_reordered(G_OBJECT(list), root.get(), nullptr, old_places.data());
        gtk_widget_queue_draw(GTK_WIDGET(list));
    } else if (!old_places.empty()) {
        gtk_tree_model_rows_reordered_with_length(gtk_tree_view_get_model(list), root.get(), nullptr, old_places.data(),
                                                  static_cast<int>(old_places.size()));
        batch_changed = true;  // The summary under way knows the rows by their old places.
    }
    UpdateSortArrows(list);
    anchor_row = -1;
}

void ShowListRow(const std::string& name)
{
    std::size_t row = 0;
    while (row < ListRows().Count() && name != ListRows().Name(row)) {
        ++row;
    }
    if (row < ListRows().Count()) {
        // The toolkit's way: a list just filled may still wait for its turn to scroll, and this
        // takes the place of that.
        const TreePath path(gtk_tree_path_new_from_indices(static_cast<int>(row), -1));
        gtk_tree_view_scroll_to_cell(MainList(), path.get(), nullptr, FALSE, 0.0F, 0.0F);
    }
}

std::string ListRowPath(std::size_t row)
{
    const FileRows& rows = ListRows();
    return pGTable->CurrentDir + rows.Name(row) + (rows.Row(row).is_directory ? "/" : "");
}

void ActivateListRow(std::size_t index)
{
    const FileRows& rows = ListRows();
    if (index >= rows.Count()) {
        return;
    }
    if (rows.IsParentRow(index)) {
        const std::string parent = GetParentDirectory(pGTable->CurrentDir);
        if (pGTable->CurrentDir != pGTable->RootDir && !parent.empty()) {
            OpenChildTree(MainTree(), parent, EXPAND_LAST_YES);
        }
        return;
    }
    const std::string path = ListRowPath(index);
    if (path.size() > kMaxPathBytes) {
        FileExistMessageBox(PATH_TOO_LONG, nullptr);
    } else if (rows.Row(index).is_directory) {
        OpenChildTree(MainTree(), path, EXPAND_LAST_YES);
    } else if (OnFileList.FileActivated != nullptr) {
        OnFileList.FileActivated(path);
    }
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
    ++batch_depth;
}

ListSelectionBatch::~ListSelectionBatch()
{
    if (batch_depth == 1 && batch_changed) {
        UnselectParentRow();
    }
    if (--batch_depth == 0 && batch_changed) {
        batch_changed = false;
        ReportSelection();
    }
}

namespace {

/// While it lives, the rows are not drawn. The toolkit has each row of a large change drawn
/// singly, which takes it as long again as the change itself; its window asks for one drawing of
/// everything when it comes back.
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
    anchor_row = -1;
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
    // In one walk over all rows: naming them singly has the toolkit look for each of them anew.
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
