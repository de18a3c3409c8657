#include "kit/fnkvisit.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "core/fnkutil-text.h"
#include "engine/fnkmessage.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-widget.h"

std::chrono::milliseconds VisitPatience{30};

namespace {

/// How long what can be shown waits for its details.
constexpr gint64 kDetailMicroseconds = 300'000;
constexpr guint kSlowMilliseconds = 500;
/// How often to try again if there are too many threads.
constexpr guint kRetryMilliseconds = 50;

enum Stage { STAGE_READING, STAGE_READ, STAGE_DETAILED };

struct Task {
    Visit visit;
    GtkWidget* view = nullptr;  ///< A weak pointer; null once the view is destroyed.
    bool is_shown = false;
    bool is_waiting_for_details = false;
    std::atomic<bool> is_stopped = false;

    std::mutex mutex;
    std::condition_variable changed;
    Stage stage = STAGE_READING;  ///< Guarded by mutex, like the next two.
    gint64 read_at = 0;
    int error = 0;
};
using TaskPointer = std::shared_ptr<Task>;

/// The visit that has not arrived yet.
TaskPointer current;
guint slow_timer = 0;
guint retry_timer = 0;
bool is_pointer_busy = false;
bool is_status_busy = false;

/// Lets go of all that belongs to the window: the thread may be the last to hold the task.
void Retire(Task& task)
{
    g_clear_weak_pointer(&task.view);
    task.visit = {};
}

void SetPointerBusy(bool is_busy)
{
    is_pointer_busy = is_busy;
    GdkWindow* const window =
        pMainW != nullptr && pMainW->MainWindow != nullptr ? gtk_widget_get_window(pMainW->MainWindow) : nullptr;
    if (window == nullptr) {
        return;
    }
    GdkCursor* cursor = is_busy ? gdk_cursor_new_from_name(gdk_window_get_display(window), "progress") : nullptr;
    gdk_window_set_cursor(window, cursor);
    g_clear_object(&cursor);
}

void StopTimer(guint& timer)
{
    if (const guint id = std::exchange(timer, 0); id != 0) {
        g_source_remove(id);
    }
}

/// The visit has arrived, or nobody waits for it any more.
void EndWaiting()
{
    current = nullptr;
    StopTimer(retry_timer);
    StopTimer(slow_timer);
    if (std::exchange(is_status_busy, false) && pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, pGTable->StatusText);
    }
    if (is_pointer_busy) {
        SetPointerBusy(false);
    }
}

Stage StageOf(Task& task)
{
    const std::lock_guard lock(task.mutex);
    return task.stage;
}

void ShowDetails(Task& task)
{
    if (task.view != nullptr && pGTable != nullptr) {
        task.visit.show_details();
    }
    Retire(task);
}

void Show(const TaskPointer& task, bool has_details)
{
    task->is_shown = true;
    EndWaiting();
    if (task->view != nullptr && pGTable != nullptr) {
        task->visit.show(has_details);
    }
    if (has_details) {
        Retire(*task);
    }
}

/// Runs something in the window's thread, from the main loop.
guint Post(guint delay, const TaskPointer& task, void (*act)(const TaskPointer&))
{
    struct Message {
        TaskPointer task;
        void (*act)(const TaskPointer&);
    };
    const auto run = [](gpointer data) -> gboolean {
        const auto* const message = static_cast<Message*>(data);
        message->act(message->task);
        return G_SOURCE_REMOVE;
    };
    const auto forget = [](gpointer data) { delete static_cast<Message*>(data); };
    auto* const message = new Message{task, act};
    return delay == 0 ? g_idle_add_full(G_PRIORITY_DEFAULT, run, message, forget)
                      : g_timeout_add_full(G_PRIORITY_DEFAULT, delay, run, message, forget);
}

/// A thread that cannot be made, or no memory.
void Fail(const TaskPointer& task, int error)
{
    const std::string message = FormatText(" %s: %s", DisplayText(task->visit.what).c_str(), g_strerror(error));
    GiveUpVisit();
    if (pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, message);
    }
}

void ShowLate(const TaskPointer& task)
{
    if (task == current) {
        Show(task, StageOf(*task) == STAGE_DETAILED);
    }
}

/// Runs whenever a thread has finished a step.
void OnStep(const TaskPointer& task)
{
    int error = 0;
    Stage stage = STAGE_READING;
    gint64 read_at = 0;
    {
        const std::lock_guard lock(task->mutex);
        error = task->error;
        stage = task->stage;
        read_at = task->read_at;
    }
    if (error != 0 && task == current) {
        Fail(task, error);
    } else if (task->is_shown && stage == STAGE_DETAILED && task->visit.show_details && error == 0) {
        ShowDetails(*task);
    } else if (task == current && stage == STAGE_DETAILED) {
        Show(task, true);
    } else if (task == current && stage == STAGE_READ && !task->is_waiting_for_details) {
        task->is_waiting_for_details = true;
        const gint64 left = (kDetailMicroseconds - (g_get_monotonic_time() - read_at)) / 1000;
        Post(static_cast<guint>(std::max<gint64>(left, 1)), task, ShowLate);
    }
}

void Advance(const TaskPointer& task, Stage stage, int error)
{
    {
        const std::lock_guard lock(task->mutex);
        task->stage = stage;
        task->error = error;
        task->read_at = g_get_monotonic_time();
    }
    task->changed.notify_all();
    Post(0, task, OnStep);
}

/// The body of the thread. Has its own copies of the procedures: the window may drop the task's.
void Read(const TaskPointer& task, const Visit& visit)
{
    Stage stage = STAGE_READING;
    try {
        visit.read(task->is_stopped);
        stage = STAGE_READ;
        Advance(task, stage, 0);
        visit.read_details(task->is_stopped);
        Advance(task, STAGE_DETAILED, 0);
    } catch (const std::bad_alloc&) {
        Advance(task, stage, ENOMEM);
    } catch (...) {
        Advance(task, stage, EIO);
    }
}

void StartReading(const TaskPointer& task)
{
    retry_timer = 0;
    Visit own;
    own.read = task->visit.read;
    own.read_details = task->visit.read_details;
    const int error = StartThread([task, own] { Read(task, own); });
    if (error == EAGAIN) {
        retry_timer = Post(kRetryMilliseconds, task, StartReading);
    } else if (error != 0) {
        Advance(task, STAGE_READING, error);
    }
}

gboolean ShowWaiting(gpointer)
{
    slow_timer = 0;
    if (current != nullptr && pMainW != nullptr && pMainW->StatusBar != nullptr) {
        is_status_busy = true;
        SetStatusBarText(pMainW->StatusBar, " " + FormatPathMessage(_("Waiting for %s..."), current->visit.what));
    }
    return G_SOURCE_REMOVE;
}

}  // namespace

void StartVisit(GtkWidget* view, Visit visit)
{
    if (const TaskPointer former = current) {
        former->is_stopped = true;
        EndWaiting();
        Retire(*former);
    }
    const auto task = std::make_shared<Task>();
    task->visit = std::move(visit);
    g_set_weak_pointer(&task->view, view);
    current = task;
    StartReading(task);
    {
        std::unique_lock lock(task->mutex);
        task->changed.wait_for(lock, VisitPatience,
                               [&task] { return task->stage == STAGE_DETAILED || task->error != 0; });
    }
    OnStep(task);
    if (current == task) {
        SetPointerBusy(true);
        slow_timer = g_timeout_add(kSlowMilliseconds, ShowWaiting, nullptr);
    }
}

bool IsVisiting()
{
    return current != nullptr && current->view != nullptr;
}

void GiveUpVisit()
{
    const TaskPointer task = current;
    if (task == nullptr) {
        return;
    }
    task->is_stopped = true;
    EndWaiting();
    if (task->view != nullptr && pGTable != nullptr && task->visit.give_up) {
        task->visit.give_up();
    }
    Retire(*task);
}
