#include "kit/fnkprogress.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "engine/fnkfiles-sync.h"
#include "engine/fnkprogress-count.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr int kDialogWidth = 350;
constexpr int kDialogHeight = 110;
constexpr int kSpacing = 5;
constexpr int kLabelCharacters = 60;
/// A run that ends within this time shows nothing at all.
constexpr std::chrono::milliseconds kPatience{30};
/// How long to wait for a disk before saying so, in microseconds.
constexpr gint64 kSlow = 500'000;
constexpr guint kTickMilliseconds = 33;
constexpr std::chrono::milliseconds kFarewell{300};

/// Shared by the window and the thread of a run.
struct Run : std::enable_shared_from_this<Run> {
    std::string label;  ///< What the dialog says.
    bool has_steps;     ///< Shows progress.

    std::atomic<int> total = 0;  ///< Steps; 0 while they are being counted.
    std::atomic<int> done = 0;
    std::atomic<double> file_share = 0;  ///< Of a long file, as far as it is copied.
    std::atomic<bool> is_cancelled = false;
    std::atomic<bool> is_left = false;
    std::atomic<gint64> writing_since = 0;  ///< When flushing the changes began; 0 before.
    std::atomic<gint64> heard_at = 0;       ///< When the engine last asked or reported.

    std::mutex mutex;
    std::condition_variable changed;
    bool is_over = false;  ///< Guarded by mutex.
    int error = 0;         ///< Why the work broke off. Read once it is over.

    // These belong to the thread of the run.
    bool has_heard_cancel = false;

    // These belong to the window.
    GMainLoop* loop = nullptr;
    gint64 began = g_get_monotonic_time();
    gint64 cancelled_at = 0;
    bool is_asking = false;
};

/// The run of this thread; null in the window's.
thread_local Run* own_run = nullptr;

/// The run that the window waits for.
std::shared_ptr<Run> current;
/// All runs whose threads may still be at work.
std::vector<std::weak_ptr<Run>> runs;

void ForgetEndedRuns()
{
    std::erase_if(runs, [](const std::weak_ptr<Run>& run) { return run.expired(); });
}

bool IsOver(Run& run)
{
    const std::lock_guard lock(run.mutex);
    return run.is_over;
}

const char* KindLabel(OperationKind kind)
{
    switch (kind) {
    case OPERATION_MOVE:
        return _("File moving...");
    case OPERATION_DELETE:
        return _("File deleting...");
    default:
        return _("File copying...");
    }
}

/// Nobody hears the thread any more.
void Leave(Run& run)
{
    {
        const std::lock_guard lock(run.mutex);
        run.is_left = true;
    }
    run.changed.notify_all();
    if (run.loop != nullptr) {
        g_main_loop_quit(run.loop);
    }
}

bool IsSlow(gint64 since)
{
    return since != 0 && g_get_monotonic_time() - since > kSlow;
}

/// The first press asks a command to stop. If that takes long, the dialog says that it waits for the
/// disk, and the next press leaves the command. Work without steps is left at once.
void on_ProgressCancelButton_clicked(GtkWidget*, gpointer)
{
    if (current == nullptr || pGTable == nullptr) {
        return;
    }
    pGTable->ProgressCancel = 1;
    current->is_cancelled = true;
    if (!current->has_steps || IsSlow(current->cancelled_at) || current->writing_since != 0) {
        Leave(*current);
    } else if (current->cancelled_at == 0) {
        current->cancelled_at = g_get_monotonic_time();
    }
}

constexpr const char* kLabelKey = "fennick-progress-label";

GtkWidget* CreateProgressDlg(const Run& run)
{
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateNormalDialogBox(&vbox, kDialogWidth, run.has_steps ? kDialogHeight : 0, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), run.has_steps ? _("File operation") : _("Waiting"));
    gtk_window_set_transient_for(GTK_WINDOW(dialog), GTK_WINDOW(pMainW->MainWindow));
    GtkWidget* const label = CreateLabel(vbox, run.label.c_str());
    ShortenLabel(label, kLabelCharacters);
    g_object_set_data(G_OBJECT(dialog), kLabelKey, label);
    if (run.has_steps) {
        pGTable->ProgressBar = gtk_progress_bar_new();
        gtk_progress_bar_set_show_text(GTK_PROGRESS_BAR(pGTable->ProgressBar), TRUE);
        gtk_box_pack_start(GTK_BOX(vbox), pGTable->ProgressBar, FALSE, FALSE, 0);
        gtk_widget_show(pGTable->ProgressBar);
    }
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, nullptr, &cancel, CLOSING_UNWIRED);
    g_signal_connect(dialog, "button-press-event", G_CALLBACK(on_Window_button_press_event), nullptr);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(on_delete_event), cancel);
    g_signal_connect(cancel, "clicked", G_CALLBACK(on_ProgressCancelButton_clicked), nullptr);
    gtk_widget_show(dialog);
    if (run.has_steps || gtk_grab_get_current() != nullptr) {
        gtk_grab_add(dialog);
    }
    return dialog;
}

/// Full only at the last step, even if a long file is nearly copied.
double Fraction(const Run& run)
{
    const int total = std::max(1, run.total.load());
    const int done = run.done;
    return done >= total ? 1.0 : std::min(0.999, (done + run.file_share) / total);
}

const char* LabelText(const Run& run)
{
    if (IsSlow(run.writing_since)) {
        return _("Writing to disk...");
    }
    return IsSlow(run.cancelled_at)
               ? _("Waiting for the disk. Cancel leaves the command; its last step may still take effect.")
               : run.label.c_str();
}

/// A run without steps is announced only when the disk keeps it waiting.
bool NeedsDialog(const Run& run)
{
    return run.has_steps || IsSlow(run.writing_since) ||
           (IsSlow(std::max(run.began, run.heard_at.load())) && run.writing_since == 0);
}

void UpdateDialog(const Run& run)
{
    if (pGTable->ProgressDlg == nullptr) {
        if (!NeedsDialog(run)) {
            return;
        }
        pGTable->ProgressDlg = CreateProgressDlg(run);
        RaiseProgressDlg();
    }
    auto* const label = static_cast<GtkLabel*>(g_object_get_data(G_OBJECT(pGTable->ProgressDlg), kLabelKey));
    if (const char* const text = LabelText(run); g_strcmp0(gtk_label_get_text(label), text) != 0) {
        gtk_label_set_text(label, text);
    }
    pGTable->ProgressTotal = run.total;
    pGTable->ProgressDone = run.done;
    if (pGTable->ProgressBar != nullptr) {
        gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(pGTable->ProgressBar),
                                      run.done == 0 && run.file_share == 0 ? 0.0 : Fraction(run));
    }
}

gboolean on_Progress_tick(gpointer data)
{
    Run& run = *static_cast<Run*>(data);
    if (IsOver(run)) {
        g_main_loop_quit(run.loop);
    } else if (pGTable != nullptr && !run.is_asking) {
        UpdateDialog(run);
    }
    return G_SOURCE_CONTINUE;
}

bool IsInput(GdkEventType type)
{
    switch (type) {
    case GDK_MOTION_NOTIFY:
    case GDK_BUTTON_PRESS:
    case GDK_2BUTTON_PRESS:
    case GDK_3BUTTON_PRESS:
    case GDK_BUTTON_RELEASE:
    case GDK_KEY_PRESS:
    case GDK_KEY_RELEASE:
    case GDK_SCROLL:
    case GDK_TOUCH_BEGIN:
    case GDK_TOUCH_UPDATE:
    case GDK_TOUCH_END:
    case GDK_DELETE:
        return true;
    default:
        return false;
    }
}

/// Keeps input from the windows that were there when the run began. A grab would, too, but the main
/// window must hear that it is to close. A dialog that shows progress has a grab all the same: a click
/// elsewhere raises it.
void FilterEvent(GdkEvent* event, gpointer windows)
{
    const auto& blocked = *static_cast<const std::vector<GtkWidget*>*>(windows);
    GtkWidget* const widget = gtk_get_event_widget(event);
    GtkWidget* const window = widget != nullptr ? gtk_widget_get_toplevel(widget) : nullptr;
    const bool is_blocked = std::find(blocked.begin(), blocked.end(), window) != blocked.end();
    const bool is_kept_out = is_blocked && IsInput(event->type) && pMainW != nullptr;
    if (is_kept_out && event->type == GDK_DELETE) {
        if (window == pMainW->MainWindow) {
            gtk_widget_event(window, event);
        }
    } else if (is_kept_out && event->type == GDK_KEY_PRESS && event->key.keyval == GDK_KEY_Escape) {
        on_ProgressCancelButton_clicked(nullptr, nullptr);
    } else if (!is_kept_out || pGTable->ProgressBar != nullptr) {
        gtk_main_do_event(event);
    }
}

std::vector<GtkWidget*> ListWindows()
{
    GList* const windows = gtk_window_list_toplevels();
    std::vector<GtkWidget*> list;
    for (const GList* window = windows; window != nullptr; window = window->next) {
        list.push_back(GTK_WIDGET(window->data));
    }
    g_list_free(windows);
    return list;
}

/// Waits in a main loop of its own, in which the dialog alone takes input.
void WaitInLoop(Run& run)
{
    std::vector<GtkWidget*> windows = ListWindows();
    gdk_event_handler_set(FilterEvent, &windows, nullptr);
    run.loop = g_main_loop_new(nullptr, FALSE);
    UpdateDialog(run);
    const guint tick = g_timeout_add(kTickMilliseconds, on_Progress_tick, &run);
    if (!IsOver(run)) {
        g_main_loop_run(run.loop);
    }
    g_source_remove(tick);
    g_main_loop_unref(std::exchange(run.loop, nullptr));
    DestroyProgressDlg();
    gdk_event_handler_set([](GdkEvent* event, gpointer) { gtk_main_do_event(event); }, nullptr, nullptr);
}

bool IsLeft()
{
    return own_run != nullptr && own_run->is_left;
}

/// Says that the changes of this thread are not on the disk, even if the user no longer waits for them.
void ReportFlushFailure(const FlushFailure& failure)
{
    const std::string message =
        FormatPathMessage(_("Cannot write to the disk %s\ncause:%s"), failure.mount_point, failure.error);
    if (!IsLeft()) {
        OnEngine.MessageBox(_("Error"), message, STYLE_ERROR);
        return;
    }
    const auto show = [](gpointer text) -> gboolean {
        if (pGTable != nullptr) {
            MessageBox(_("Error"), *static_cast<std::string*>(text), STYLE_ERROR);
        }
        return G_SOURCE_REMOVE;
    };
    const auto forget = [](gpointer text) { delete static_cast<std::string*>(text); };
    g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, show, new std::string(message), forget);
}

gboolean ShowUnwritten(gpointer)
{
    if (pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, _(" Not yet written to the disk"));
    }
    return G_SOURCE_REMOVE;
}

/// The body of the thread.
void Work(const std::shared_ptr<Run>& run, const std::function<void()>& work)
{
    own_run = run.get();
    try {
        work();
    } catch (const std::bad_alloc&) {
        run->error = ENOMEM;
    } catch (...) {
        run->error = EIO;
    }
    run->writing_since = g_get_monotonic_time();
    if (const std::optional<FlushFailure> failure = FlushChanges()) {
        ReportFlushFailure(*failure);
    }
    {
        const std::lock_guard lock(run->mutex);
        run->is_over = true;
    }
    run->changed.notify_all();
    g_main_context_wakeup(nullptr);
}

/// 0 or an errno.
int Start(const std::shared_ptr<Run>& run, const std::function<void()>& work)
{
    ForgetEndedRuns();
    runs.push_back(run);
    return StartThread([run, work] { Work(run, work); });
}

RunEnd Perform(const std::shared_ptr<Run>& run, const std::function<void()>& work)
{
    if (current != nullptr) {
        return RUN_LEFT;  // An assistive program can press what takes no input.
    }
    const ModalScope scope;
    pGTable->ProgressDone = pGTable->ProgressTotal = pGTable->ProgressCancel = 0;
    int error = Start(run, work);
    if (error == 0) {
        current = run;
        bool is_over = false;
        {
            std::unique_lock lock(run->mutex);
            is_over = run->changed.wait_for(lock, kPatience, [&run] { return run->is_over; });
        }
        if (!is_over) {
            WaitInLoop(*run);
        }
        current = nullptr;
        if (run->is_left) {
            if (run->writing_since == 0) {
                return RUN_LEFT;
            }
            g_idle_add(ShowUnwritten, nullptr);  // Once the window shows what the command has done.
        }
        error = run->error;
    }
    if (error != 0) {
        MessageBox(_("Error"), g_strerror(error), STYLE_ERROR);
        return RUN_LEFT;
    }
    return RUN_DONE;
}

/// Has the window ask, and waits for the answer. "Cancel" once the run is left.
Result AskInWindow(std::function<Result()> ask)
{
    struct Question {
        std::weak_ptr<Run> run;
        std::function<Result()> ask;
        Result answer = RESULT_CANCEL;
        bool is_answered = false;
    };
    if (own_run == nullptr) {
        return ask();
    }
    Run& run = *own_run;
    if (run.is_left) {
        return RESULT_CANCEL;
    }
    const auto question = std::make_shared<Question>(Question{run.shared_from_this(), std::move(ask)});
    const auto answer = [](gpointer data) -> gboolean {
        Question& asked = **static_cast<std::shared_ptr<Question>*>(data);
        const std::shared_ptr<Run> asking = asked.run.lock();
        if (asking == nullptr || asking != current || asking->is_left) {
            return G_SOURCE_REMOVE;
        }
        asking->is_asking = true;
        const Result result = asked.ask();
        asking->is_asking = false;
        const std::lock_guard lock(asking->mutex);
        asked.answer = result;
        asked.is_answered = true;
        asking->changed.notify_all();
        return G_SOURCE_REMOVE;
    };
    const auto forget = [](gpointer data) { delete static_cast<std::shared_ptr<Question>*>(data); };
    g_idle_add_full(G_PRIORITY_DEFAULT, answer, new std::shared_ptr<Question>(question), forget);
    std::unique_lock lock(run.mutex);
    run.changed.wait(lock, [&] { return question->is_answered || run.is_left; });
    run.heard_at = g_get_monotonic_time();
    return question->is_answered ? question->answer : RESULT_CANCEL;
}

bool IsCancelled()
{
    if (own_run == nullptr) {
        return false;
    }
    own_run->heard_at = g_get_monotonic_time();
    return own_run->is_left || (own_run->is_cancelled && !own_run->has_heard_cancel);
}

int UpdateProgress()
{
    if (own_run == nullptr) {
        return 0;
    }
    const bool is_cancelled = IsCancelled();
    own_run->file_share = 0;
    ++own_run->done;
    own_run->has_heard_cancel = own_run->has_heard_cancel || is_cancelled;
    return is_cancelled ? static_cast<int>(RESULT_CANCEL) : 0;
}

void ShowBytes(off_t done, off_t size)
{
    if (own_run != nullptr && size > 0) {
        own_run->file_share = static_cast<double>(done) / static_cast<double>(size);
    }
}

}  // namespace

RunEnd RunCommand(const std::vector<std::string>& items, OperationKind kind, std::function<void()> work)
{
    const auto run = std::make_shared<Run>();
    run->label = KindLabel(kind);
    run->has_steps = pGTable->ShowProgress != 0;
    return Perform(run, [items, raw = run.get(), work = std::move(work)] {
        int total = 0;
        for (const std::string& item : items) {
            total += raw->has_steps ? CountOperationFile(item) : 0;
        }
        raw->total = total;
        work();
    });
}

RunEnd RunQuietly(const std::string& what, const std::function<void()>& work)
{
    const auto run = std::make_shared<Run>();
    run->label = FormatPathMessage(_("Waiting for %s..."), what);
    run->has_steps = false;
    return Perform(run, work);
}

PathStatus WaitToCheckPath(std::string* path)
{
    const auto checked = WaitFor(*path, [typed = *path]() mutable {
        const PathStatus status = CheckFileExist(&typed);
        return std::pair(status, typed);
    });
    if (!checked) {
        return PATH_LEFT;
    }
    *path = checked->second;
    return checked->first;
}

EngineEvents CommandEvents()
{
    return {.MessageBox =
                [](const char* title, const std::string& message, unsigned style) {
                    return AskInWindow([title, message, style] { return MessageBox(title, message, style); });
                },
            .DeleteMessageBox =
                [](const std::string& name) { return AskInWindow([name] { return DeleteMessageBox(name); }); },
            .UpdateProgress = UpdateProgress,
            .ShowBytes = ShowBytes,
            .IsCancelled = IsCancelled,
            .IsLeft = IsLeft};
}

bool StopRuns()
{
    ForgetEndedRuns();
    for (const std::weak_ptr<Run>& weak : runs) {
        if (const std::shared_ptr<Run> run = weak.lock()) {
            run->is_cancelled = true;
            Leave(*run);
        }
    }
    return AwaitThreads(kFarewell);
}

void DestroyProgressDlg()
{
    if (GtkWidget* const dialog = std::exchange(pGTable->ProgressDlg, nullptr)) {
        pGTable->ProgressBar = nullptr;
        gtk_grab_remove(dialog);
        gtk_widget_destroy(dialog);
    }
}

void RaiseProgressDlg()
{
    if (pGTable->ProgressDlg != nullptr) {
        gdk_window_raise(gtk_widget_get_window(pGTable->ProgressDlg));
    }
}
