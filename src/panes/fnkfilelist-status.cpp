#include "panes/fnkfilelist-status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "core/fnkthread.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-widget.h"
#include "kit/fnkvisit.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist-selection.h"

constexpr std::size_t kMaxStatusBytes = 1024;

void ShowStatus(std::string text)
{
    if (text.size() > kMaxStatusBytes && text.starts_with(" /")) {  // The end of a path says most.
        const std::string ellipsis = " \u2026";
        const char* const end = text.c_str() + text.size();
        text = ellipsis + g_utf8_find_next_char(end - (kMaxStatusBytes - ellipsis.size()) - 1, nullptr);
    } else if (text.size() > kMaxStatusBytes) {
        const char* const last_character = g_utf8_find_prev_char(text.c_str(), text.c_str() + kMaxStatusBytes + 1);
        text.resize(static_cast<std::size_t>(last_character - text.c_str()));
    }
    pGTable->StatusText = std::move(text);
    RestoreStatusText();
}

namespace {

/// More files than these are summed without waiting for the sum at all.
constexpr std::size_t kFewFiles = 2000;

/// The sizes of the selected files, read in a thread, which owns it together with the window.
struct Summary {
    std::string directory;
    std::vector<std::string> names;
    std::vector<std::int64_t> sizes;  ///< By name; -1 for a file that is gone.
    std::atomic<bool> is_stopped = false;
    std::mutex mutex;
    std::condition_variable changed;
    bool is_over = false;  ///< Guarded by mutex.
};
using SummaryPointer = std::shared_ptr<Summary>;

/// The last summary asked for, and the one that a thread works on. There is never more than one such
/// thread, however many selections a hanging disk keeps waiting.
SummaryPointer wanted;
SummaryPointer running;
/// Starts the next one for many files, which several changes of the selection share; 0 if none is due.
guint request_source = 0;

void ShowSummary(const Summary& summary)
{
    std::size_t counted = 0;
    std::size_t last = 0;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < summary.sizes.size(); ++i) {
        if (summary.sizes[i] >= 0) {
            bytes += static_cast<std::uint64_t>(summary.sizes[i]);
            last = i;
            ++counted;
        }
    }
    const std::string size = ConvertSize(bytes);
    ShowStatus(counted == 1 ? FormatText(_(" %s  %s"), DisplayText(summary.names[last]).c_str(), size.c_str())
                            : FormatText(_(" %d files  %s"), static_cast<int>(counted), size.c_str()));
}

/// The body of the thread.
void Sum(Summary& summary)
{
    const Descriptor directory(open(summary.directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    ForEachIndex(summary.names.size(), summary.is_stopped, [&summary, &directory](std::size_t i) {
        struct stat st = {};
        const bool is_there = fstatat(directory.Get(), summary.names[i].c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0;
        summary.sizes[i] = is_there ? st.st_size : -1;
    });
}

void StartSummary();

/// Runs in the window's thread when the thread has ended.
void EndSummary()
{
    const SummaryPointer ended = std::exchange(running, nullptr);
    if (pMainW != nullptr && ended != nullptr && ended == wanted) {
        wanted = nullptr;
        ShowSummary(*ended);
    } else if (pMainW != nullptr && wanted != nullptr) {
        StartSummary();
    }
}

gboolean on_Summary_end(gpointer data)
{
    if (*static_cast<SummaryPointer*>(data) == running) {
        EndSummary();
    }
    return G_SOURCE_REMOVE;
}

void StartSummary()
{
    running = wanted;
    const int error = StartThread([summary = running] {
        try {
            Sum(*summary);
        } catch (const std::bad_alloc&) {
            summary->is_stopped = true;  // The sum is of no use then.
        }
        {
            const std::lock_guard lock(summary->mutex);
            summary->is_over = true;
        }
        summary->changed.notify_all();
        const auto forget = [](gpointer data) { delete static_cast<SummaryPointer*>(data); };
        g_idle_add_full(G_PRIORITY_DEFAULT, on_Summary_end, new SummaryPointer(summary), forget);
    });
    if (error != 0) {
        running = wanted = nullptr;
        return;
    }
    bool is_over = false;
    if (running->names.size() <= kFewFiles) {
        std::unique_lock lock(running->mutex);
        is_over = running->changed.wait_for(lock, VisitPatience, [] { return running->is_over; });
    }
    if (is_over) {
        EndSummary();
    }
}

void RequestSummary()
{
    wanted = std::make_shared<Summary>();
    wanted->directory = pGTable->CurrentDir;
    for (const std::size_t row : ListSelection()) {
        wanted->names.emplace_back(ListRows().Name(row));
    }
    wanted->sizes.assign(wanted->names.size(), -1);
    if (running == nullptr) {
        StartSummary();
    } else {
        running->is_stopped = true;
    }
}

gboolean on_Request_idle(gpointer)
{
    request_source = 0;
    if (pMainW != nullptr) {
        RequestSummary();
    }
    return G_SOURCE_REMOVE;
}

void StopSummary()
{
    if (request_source != 0) {
        g_source_remove(std::exchange(request_source, 0));
    }
    wanted = nullptr;
    if (running != nullptr) {
        running->is_stopped = true;
    }
}

}  // namespace

void DisplayFileStatus()
{
    StopSummary();
    if (pMainW == nullptr || MainList() == nullptr || pMainW->StatusBar == nullptr) {
        return;
    }
    const std::size_t count = CountListSelection();
    if (count == 0) {
        std::string path;
        GetTreeSelect(MainTree(), nullptr, &path);
        ShowStatus(" " + DisplayText(path));
    } else if (count > kFewFiles) {
        request_source = g_idle_add(on_Request_idle, nullptr);
    } else {
        RequestSummary();
    }
}

void DisplayFilterStatus()
{
    if (pMainW == nullptr || MainList() == nullptr || pMainW->FilterStatusBar == nullptr) {
        return;
    }
    SetStatusBarText(pMainW->FilterStatusBar,
                     pGTable->Filter ? FormatText(_(" Filter: %s"), DisplayText(pGTable->FilterName).c_str())
                                     : std::string(_(" Filter: Show all files")));
}

void RestoreStatusText()
{
    if (pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, pGTable->StatusText);
    }
}
