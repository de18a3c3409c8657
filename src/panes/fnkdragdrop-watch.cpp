#include "panes/fnkdragdrop-watch.h"

#include <gtk/gtk.h>

#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "kit/fnkcommand.h"
#include "panes/fnkdirtree.h"

namespace {

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

bool IsShown(const Watch& watch)
{
    return MainTree() != nullptr && pGTable->CurrentDir.starts_with(watch.path);
}

/// Reads the directory again, unless it was left. Waits for the end of a command or dialog.
gboolean RefreshWatched(gpointer data)
{
    auto* const watch = static_cast<Watch*>(data);
    if (pGTable != nullptr && IsBusy()) {
        return G_SOURCE_CONTINUE;
    }
    watch->refresh = 0;
    if (IsShown(*watch)) {
        OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_NO, {.rescan = {watch->path}});
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

/// The tree owns the watch.
gboolean BeginWatch(gpointer data)
{
    auto* const watch = static_cast<Watch*>(data);
    if (!IsShown(*watch)) {
        EndWatch(watch);
        return G_SOURCE_REMOVE;
    }
    g_signal_connect(watch->monitor, "changed", G_CALLBACK(on_Watch_changed), watch);
    g_object_set_data_full(G_OBJECT(MainTree()), kWatchKey, watch, EndWatch);
    watch->refresh = g_timeout_add(kRefreshDelay, RefreshWatched, watch);  // Some may be gone by now.
    return G_SOURCE_REMOVE;
}

}  // namespace

void WatchDirectory(const std::string& path)
{
    // A thread, because the call waits for the disk. The main loop handles what the monitor reports.
    StartThread([path] {
        GFile* const directory = g_file_new_for_path(path.c_str());
        GFileMonitor* const monitor = g_file_monitor_directory(directory, G_FILE_MONITOR_WATCH_MOVES, nullptr, nullptr);
        g_object_unref(directory);
        if (monitor != nullptr) {
            g_idle_add(BeginWatch, new Watch{path, monitor});
        }
    });
}
