#include "panes/fnkfilelist-drag.h"

#include <utility>

#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "kit/fnkcommand.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"
#include "panes/fnkdirtree.h"
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

/// A directory from which entries were dragged. Another program may take them some time later.
struct Watch {
    std::string path;
    GFileMonitor* monitor;
    guint refresh = 0;  ///< Source that reads the directory again; 0 if none is due.
};
constexpr const char* kWatchKey = "fennick-watch";
/// Milliseconds. Entries that go together are shown together.
constexpr guint kRefreshDelay = 200;

void EndWatch(gpointer data)
{
    auto* const watch = static_cast<Watch*>(data);
    if (watch->refresh != 0) {
        g_source_remove(watch->refresh);
    }
    g_signal_handlers_disconnect_by_data(watch->monitor, watch);
    g_object_unref(watch->monitor);
    delete watch;
}

/// Reads the directory again, unless it was left. Waits for the end of a command or dialog.
gboolean RefreshWatched(gpointer data)
{
    auto* const watch = static_cast<Watch*>(data);
    if (pGTable != nullptr && IsBusy()) {
        return G_SOURCE_CONTINUE;
    }
    watch->refresh = 0;
    if (pGTable != nullptr && pGTable->CurrentDir == watch->path) {
        OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_NO, {.rescan = {pGTable->CurrentDir}});
    }
    return G_SOURCE_REMOVE;
}

void on_Watch_changed(GFileMonitor*, GFile*, GFile*, GFileMonitorEvent event, gpointer data)
{
    auto* const watch = static_cast<Watch*>(data);
    const bool is_gone = event == G_FILE_MONITOR_EVENT_DELETED || event == G_FILE_MONITOR_EVENT_MOVED_OUT ||
                         event == G_FILE_MONITOR_EVENT_RENAMED;
    if (is_gone && watch->refresh == 0) {
        watch->refresh = g_timeout_add(kRefreshDelay, RefreshWatched, watch);
    }
}

/// Replaces the watch of the list, which ends with it.
gboolean BeginWatch(gpointer data)
{
    auto* const watch = static_cast<Watch*>(data);
    if (MainList() == nullptr || pGTable->CurrentDir != watch->path) {
        EndWatch(watch);
    } else {
        g_signal_connect(watch->monitor, "changed", G_CALLBACK(on_Watch_changed), watch);
        g_object_set_data_full(G_OBJECT(MainList()), kWatchKey, watch, EndWatch);
        watch->refresh = g_timeout_add(kRefreshDelay, RefreshWatched, watch);  // Some may be gone by now.
    }
    return G_SOURCE_REMOVE;
}

void on_FileList_drag_end(GtkWidget*, GdkDragContext*, gpointer)
{
    if (pGTable == nullptr) {
        return;
    }
    // A thread, because the call waits for the disk. The main loop handles what the monitor reports.
    StartThread([path = pGTable->CurrentDir] {
        GFile* const directory = g_file_new_for_path(path.c_str());
        GFileMonitor* const monitor = g_file_monitor_directory(directory, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
        g_object_unref(directory);
        if (monitor != nullptr) {
            g_idle_add(BeginWatch, new Watch{path, monitor});
        }
    });
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
