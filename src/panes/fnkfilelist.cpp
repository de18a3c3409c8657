#include "panes/fnkfilelist.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkcommand.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "model/fnkfilelist-sort.h"
#include "panes/fnkdirtree-visit.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist-columns.h"
#include "panes/fnkfilelist-drag.h"
#include "panes/fnkfilelist-model.h"

namespace {

constexpr int kScrollBorder = 2;

void on_FileList_selection_changed(GtkTreeSelection*, gpointer)
{
    if (pGTable != nullptr) {
        ListSelectionBatch batch;
        batch.MarkChanged();
    }
}

void on_FileList_row_activated(GtkTreeView*, GtkTreePath* path, GtkTreeViewColumn*, gpointer)
{
    if (pGTable != nullptr && !IsBusy()) {
        ActivateListRow(static_cast<std::size_t>(gtk_tree_path_get_indices(path)[0]));
    }
}

int EnsureAnchor(int row)
{
    if (pMainW->ListAnchor < 0) {
        const std::vector<std::size_t> selected = ListSelection();
        pMainW->ListAnchor = selected.empty() ? row : static_cast<int>(selected.front());
    }
    return pMainW->ListAnchor;
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

/// Handles clicks with Control and Shift, which the toolkit handles only in a focused view; the list
/// never has the focus. Plain clicks are left to the toolkit.
gboolean on_FileList_button_press(GtkWidget* widget, GdkEventButton* event, gpointer)
{
    if (pGTable == nullptr || event->button != GDK_BUTTON_PRIMARY || event->type != GDK_BUTTON_PRESS) {
        return FALSE;
    }
    const int row = ListRowAt(GTK_TREE_VIEW(widget), event);
    if (row < 0) {
        return FALSE;
    }
    const bool toggles = (event->state & GDK_CONTROL_MASK) != 0;
    if ((event->state & GDK_SHIFT_MASK) != 0) {
        const ListSelectionBatch batch;
        const int anchor = EnsureAnchor(row);
        if (!toggles) {
            UnselectAllListRows();
        }
        SelectListRows(static_cast<std::size_t>(std::min(anchor, row)),
                       static_cast<std::size_t>(std::max(anchor, row)));
        pMainW->ListAnchor = anchor;
        return TRUE;
    }
    pMainW->ListAnchor = row;
    if (toggles) {
        ToggleRow(row);
    }
    return toggles;
}

GtkTreeView* NewListView()
{
    GtkWidget* const widget = CreateTreeView(_("File list"));
    GtkTreeView* const list = GTK_TREE_VIEW(widget);
    SetListModel(list, NewListModel());
    gtk_tree_view_set_enable_search(list, FALSE);
    AppendListColumns(list, on_FileList_click_column);
    gtk_tree_view_set_fixed_height_mode(list, TRUE);

    GtkTreeSelection* const selection = gtk_tree_view_get_selection(list);
    gtk_tree_selection_set_mode(selection, GTK_SELECTION_MULTIPLE);
    g_signal_connect(selection, "changed", G_CALLBACK(on_FileList_selection_changed), nullptr);
    ConnectListDrag(list);  // First, so that it sees the presses that the next handler consumes.
    g_signal_connect(list, "button-press-event", G_CALLBACK(on_FileList_button_press), nullptr);
    g_signal_connect(list, "row-activated", G_CALLBACK(on_FileList_row_activated), nullptr);
    return list;
}

/// The first row that is at least partly visible, or the row count if there is none.
int FirstVisibleRow(GtkTreeView* list)
{
    const TreePath first = GetFirstVisiblePath(list);
    return first != nullptr ? gtk_tree_path_get_indices(first.get())[0] : static_cast<int>(ListRows().Count());
}

/// Scrolls to the row in a view whose model was just replaced. For row -1, scrolls to the top.
void ScrollRowToTop(GtkTreeView* list, int row)
{
    // The view shows a new model from the top, but the adjustment keeps its old value. Scrolling to
    // that value would do nothing.
    gtk_adjustment_set_value(gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(list)), 0);
    // Rows that have not been measured have no position. Asking for the preferred width makes the view
    // measure the first row and give all rows its height.
    int width = 0;
    gtk_widget_get_preferred_width(GTK_WIDGET(list), &width, nullptr);
    if (row < 0 || row >= static_cast<int>(ListRows().Count())) {
        return;
    }
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    gtk_tree_view_scroll_to_cell(list, path.get(), nullptr, TRUE, 0.0F, 0.0F);
}

}  // namespace

GtkTreeViewColumn* ListViewColumn(int column)
{
    return gtk_tree_view_get_column(MainList(), column);
}

std::vector<int> ListColumnWidths()
{
    std::vector<int> widths;
    for (int i = 0; MainList() != nullptr && i < pGTable->ColumnCount; ++i) {
        widths.push_back(ListColumnSize(MainList(), i));
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
    // At start the tree opens the directory once the window is built. Reading the directory here too
    // would double the time to the first frame.
    if (gtk_widget_get_realized(pMainW->MainWindow)) {
        DisplayFileList(pGTable->CurrentDir);
    }
    return pMainW->FileList;
}

namespace {

/// Replaces the rows with those that were read, or with none if read is null. Then scrolls so that row
/// scroll_to is at the top.
void ReplaceRows(FileRows* read, int scroll_to)
{
    GtkTreeView* const list = MainList();
    FnkListModel* const model = MainListModel();
    {
        ListSelectionBatch batch;
        gtk_tree_view_set_model(list, nullptr);
        SetModelRows(model, read != nullptr ? std::move(*read) : FileRows());
        gtk_tree_view_set_model(list, GTK_TREE_MODEL(model));
        UpdateSortArrows(list);  // Detaching the model has removed them.
        pMainW->ListAnchor = -1;
        batch.MarkChanged();
    }
    ScrollRowToTop(list, scroll_to);
}

}  // namespace

int DisplayFileList(const std::string& path)
{
    if (MainList() == nullptr) {
        return 0;
    }
    VisitReading* const reading = ArrivedReading();
    if (reading == nullptr || reading->list != path) {
        VisitPlan plan;
        plan.list = path;
        StartTreeVisit(
            MainTree(), plan, [path] { DisplayFileList(path); }, nullptr);
    } else if (reading->is_list_there) {
        ReplaceRows(&reading->rows, path == pGTable->CurrentDir ? FirstVisibleRow(MainList()) : -1);
    }
    return 0;
}

void LeaveFileList()
{
    constexpr std::size_t kMaxPlaces = 1000;
    const int row = MainList() != nullptr ? FirstVisibleRow(MainList()) : 0;
    if (pMainW->ListPlaces.size() >= kMaxPlaces) {
        pMainW->ListPlaces.clear();
    }
    if (row > 0 && row < static_cast<int>(ListRows().Count())) {
        pMainW->ListPlaces[pGTable->CurrentDir] = ListRows().Name(static_cast<std::size_t>(row));
    } else {
        pMainW->ListPlaces.erase(pGTable->CurrentDir);
    }
}

void EnterFileList()
{
    VisitReading* const reading = ArrivedReading();
    if (MainList() == nullptr) {
        return;
    }
    FileRows* const rows = reading != nullptr && reading->is_list_there ? &reading->rows : nullptr;
    const auto place = pMainW->ListPlaces.find(pGTable->CurrentDir);
    int row = -1;
    for (std::size_t i = 0;
         rows != nullptr && pMainW->IsReturning && place != pMainW->ListPlaces.end() && row < 0 && i < rows->Count();
         ++i) {
        row = place->second == rows->Name(i) ? static_cast<int>(i) : -1;
    }
    ReplaceRows(rows, row);
}

void ShowListDetails(const std::string& directory, const RowDetails& details)
{
    if (MainList() == nullptr || pGTable->CurrentDir != directory) {
        return;
    }
    ModelRows(MainListModel()).SetDetails(details);
    gtk_widget_queue_draw(GTK_WIDGET(MainList()));
    const int column = EffectiveSortColumn() - 1;
    const int kind = column >= 0 ? pGTable->ColumnPosition[static_cast<std::size_t>(column)] : COLUMN_NAME;
    if (kind == COLUMN_USER || kind == COLUMN_GROUP) {
        SortFileList();
    }
}

void on_FileList_click_column(int column)
{
    if (IsBusy()) {
        return;
    }
    if (column == pGTable->SortColumn) {
        pGTable->SortType = pGTable->SortType == SORT_ASCENDING ? SORT_DESCENDING : SORT_ASCENDING;
    } else {
        pGTable->SortColumn = column;
        pGTable->SortType = SORT_ASCENDING;
    }
    SortFileList();
}

// On "rows-reordered" the view reorders its own node for each row, which takes longer than the sort
// itself. As all rows have the same height, the nodes differ only in whether they are selected and in
// their accessibles. If there are no selected rows and no accessibles, redrawing is enough.
void SortFileList()
{
    GtkTreeView* const list = MainList();
    ListSelectionBatch batch;
    const bool can_just_redraw = !HasAccessible(list) && CountListSelection() == 0;
    std::vector<int> old_places = SortModelRows(MainListModel());
    const TreePath root(gtk_tree_path_new());
    if (can_just_redraw) {
        gtk_tree_row_reference_reordered(G_OBJECT(list), root.get(), nullptr, old_places.data());
        gtk_widget_queue_draw(GTK_WIDGET(list));
    } else if (!old_places.empty()) {
        gtk_tree_model_rows_reordered_with_length(gtk_tree_view_get_model(list), root.get(), nullptr, old_places.data(),
                                                  static_cast<int>(old_places.size()));
        batch.MarkChanged();  // Restarts the status summary, which holds the old row numbers.
    }
    UpdateSortArrows(list);
    pMainW->ListAnchor = -1;
}

void SelectListNames(const std::vector<std::string>& names)
{
    const std::set<std::string_view> wanted(names.begin(), names.end());
    std::vector<bool> chosen(ListRows().Count());
    int first = -1;
    for (std::size_t row = 0; row < chosen.size(); ++row) {
        chosen[row] = !ListRows().IsParentRow(row) && wanted.contains(ListRows().Name(row));
        if (chosen[row] && first < 0) {
            first = static_cast<int>(row);
        }
    }
    SetListSelection(std::move(chosen));
    if (first >= 0) {
        // Not ScrollRowTo: a list that has just been filled may have a scroll request pending, which
        // this replaces.
        const TreePath path(gtk_tree_path_new_from_indices(first, -1));
        gtk_tree_view_scroll_to_cell(MainList(), path.get(), nullptr, FALSE, 0.0F, 0.0F);
    }
}

void ActivateListRow(std::size_t index, const std::function<void()>& entered)
{
    const FileRows& rows = ListRows();
    if (index >= rows.Count()) {
        return;
    }
    if (rows.IsParentRow(index)) {
        const std::string parent = GetParentDirectory(pGTable->CurrentDir);
        if (pGTable->CurrentDir != pGTable->RootDir && !parent.empty()) {
            OpenChildTree(MainTree(), parent, EXPAND_LAST_YES, {.after = entered});
        }
        return;
    }
    const std::string path = ListRowPath(index);
    if (path.size() > kMaxPathBytes) {
        StartCommand([] { FileExistMessageBox(PATH_TOO_LONG, nullptr); });
    } else if (rows.Row(index).is_directory) {
        OpenChildTree(MainTree(), path, EXPAND_LAST_YES, {.after = entered});
    } else if (OnFileList.FileActivated != nullptr) {
        StartCommand([path, entered] { OnFileList.FileActivated(path, entered); });
    }
}
