#include "panes/fnkfilelist-drag.h"

#include <utility>

#include "core/fnktable.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkdragdrop-watch.h"
#include "panes/fnkdragdrop.h"
#include "panes/fnkfilelist-selection.h"

namespace {

bool IsSelected(int row)
{
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    return gtk_tree_selection_path_is_selected(gtk_tree_view_get_selection(MainList()), path.get());
}

void SelectOnly(int row)
{
    const ListSelectionBatch batch;
    UnselectAllListRows();
    SelectListRows(static_cast<std::size_t>(row), static_cast<std::size_t>(row));
}

/// Holds back a press on a selected row, as it may start a drag of the selection: with Control, or if
/// several rows are selected. A release without a drag then unselects that row, or selects it alone.
/// The toolkit never sees a held press, so this also handles a double click that began with one.
gboolean on_FileList_hold_press(GtkWidget* widget, GdkEventButton* event, gpointer)
{
    if (pMainW == nullptr) {
        return FALSE;
    }
    GtkTreeView* const list = GTK_TREE_VIEW(widget);
    auto& [before, last] = pMainW->HeldRows;
    const int row = ListRowAt(list, event);
    pMainW->HeldRow = -1;
    if (event->type == GDK_2BUTTON_PRESS && row >= 0 && row == before) {
        const TreePath path(gtk_tree_path_new_from_indices(row, -1));
        gtk_tree_view_row_activated(list, path.get(), gtk_tree_view_get_column(list, 0));
        return TRUE;
    }
    const bool toggles = (event->state & GDK_CONTROL_MASK) != 0;
    const bool may_hold =
        event->type == GDK_BUTTON_PRESS && event->button == GDK_BUTTON_PRIMARY && (event->state & GDK_SHIFT_MASK) == 0;
    if (may_hold && row >= 0 && IsSelected(row) && (toggles || CountListSelection() > 1)) {
        pMainW->HeldRow = row;
        pMainW->IsHeldToUnselect = toggles;
    }
    if (event->type == GDK_BUTTON_PRESS) {
        before = std::exchange(last, toggles ? -1 : pMainW->HeldRow);
    }
    return pMainW->HeldRow >= 0;
}

gboolean on_FileList_release_held(GtkWidget*, GdkEventButton*, gpointer)
{
    const int row = pMainW != nullptr ? std::exchange(pMainW->HeldRow, -1) : -1;
    if (row < 0 || row >= static_cast<int>(ListRows().Count())) {
        return FALSE;
    }
    if (pMainW->IsHeldToUnselect) {
        const TreePath path(gtk_tree_path_new_from_indices(row, -1));
        gtk_tree_selection_unselect_path(gtk_tree_view_get_selection(MainList()), path.get());
    } else {
        SelectOnly(row);
    }
    pMainW->ListAnchor = row;
    return FALSE;
}

std::string PathOfListRow(GtkTreeView*, GtkTreePath* path)
{
    const auto row = static_cast<std::size_t>(gtk_tree_path_get_indices(path)[0]);
    return row < ListRows().Count() && !ListRows().IsParentRow(row) ? ListRowPath(row) : std::string();
}

std::vector<std::string> PrepareListDrag(GtkTreeView*, GtkTreePath* pressed)
{
    pMainW->HeldRow = -1;
    const int row = gtk_tree_path_get_indices(pressed)[0];
    if (!IsSelected(row)) {
        SelectOnly(row);  // The secondary button does not select, but still drags the row under it.
    }
    std::vector<std::string> paths;
    for (const std::size_t index : ListSelection()) {
        paths.push_back(ListRowPath(index));
    }
    return paths;
}

std::string FindListDestination(GtkTreeView*, int, int)
{
    return pGTable->CurrentDir;
}

void on_FileList_drag_end(GtkWidget*, GdkDragContext*, gpointer)
{
    if (pGTable != nullptr) {
        WatchDirectory(pGTable->CurrentDir);
    }
}

constexpr DragPane kListPane = {PathOfListRow, PrepareListDrag, FindListDestination};

}  // namespace

void ConnectListDrag(GtkTreeView* list)
{
    pMainW->HeldRow = -1;
    pMainW->HeldRows = {-1, -1};
    ConnectDragPane(list, kListPane);
    g_signal_connect(list, "drag-end", G_CALLBACK(on_FileList_drag_end), nullptr);
    g_signal_connect(list, "button-press-event", G_CALLBACK(on_FileList_hold_press), nullptr);
    g_signal_connect(list, "button-release-event", G_CALLBACK(on_FileList_release_held), nullptr);
}
