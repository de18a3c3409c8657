#include "driving.h"

#include <dirent.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>

#include "core/fnktable.h"

extern "C" struct dirent* __real_readdir(DIR* stream);
extern "C" struct dirent* __wrap_readdir(DIR* stream);

namespace {

const std::thread::id tests_thread = std::this_thread::get_id();
std::atomic<int> entries_left = G_MAXINT;

/// Acts again and again once the deadline has passed, until it goes out of scope.
struct Deadline {
    explicit Deadline(void (*act)()) : act_(act) {}
    ~Deadline() { g_source_remove(source_); }
    static gboolean Pass(gpointer data)
    {
        static_cast<Deadline*>(data)->has_passed = true;
        static_cast<Deadline*>(data)->act_();
        return G_SOURCE_CONTINUE;
    }

    bool has_passed = false;
    void (*act_)();
    guint source_ = g_timeout_add_seconds(20, Pass, this);
};

Event NewEvent(GdkWindow* window, GdkEventType type, GdkDevice* (*device)(GdkSeat*))
{
    Event event(gdk_event_new(type));
    event->any.window = GDK_WINDOW(g_object_ref(window));
    event->any.send_event = TRUE;
    gdk_event_set_device(event.get(), device(gdk_display_get_default_seat(gdk_display_get_default())));
    return event;
}

}  // namespace

void LetRead(int entries)
{
    entries_left = entries;
    entries_left.notify_all();
}

int EntriesLeft()
{
    return entries_left;
}

struct dirent* __wrap_readdir(DIR* stream)
{
    if (std::this_thread::get_id() != tests_thread) {
        for (int left = entries_left; !(left > 0 && entries_left.compare_exchange_weak(left, left - 1));
             left = entries_left) {
            entries_left.wait(0);
        }
    }
    return __real_readdir(stream);
}

bool Await(const std::function<bool()>& condition)
{
    const Deadline deadline([] {});
    while (!condition() && !deadline.has_passed) {
        g_main_context_iteration(nullptr, TRUE);
    }
    return condition();
}

void Settle()
{
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

void RunUntilQuit(const std::function<void()>& action)
{
    const Deadline deadline(gtk_main_quit);
    const auto run = [](gpointer data) -> gboolean {
        (*static_cast<const std::function<void()>*>(data))();
        return G_SOURCE_REMOVE;
    };
    g_idle_add(run, const_cast<std::function<void()>*>(&action));
    gtk_main();
    EXPECT_FALSE(deadline.has_passed) << "the main loop did not end";
}

Event NewPointerEvent(GdkWindow* window, GdkEventType type)
{
    return NewEvent(window, type, gdk_seat_get_pointer);
}

void SendButton(GdkWindow* window, GdkEventType type, double x, double y, guint state)
{
    const Event event = NewPointerEvent(window, type);
    event->button.x = x;
    event->button.y = y;
    event->button.state = state;
    event->button.button = GDK_BUTTON_PRIMARY;
    gtk_main_do_event(event.get());
}

void SendKey(GtkWidget* window, guint key, guint state)
{
    const Event event = NewEvent(gtk_widget_get_window(window), GDK_KEY_PRESS, gdk_seat_get_keyboard);
    event->key.keyval = key;
    event->key.state = state;
    GdkKeymapKey* keys = nullptr;
    int count = 0;
    GdkKeymap* const keymap = gdk_keymap_get_for_display(gdk_display_get_default());
    if (gdk_keymap_get_entries_for_keyval(keymap, key, &keys, &count)) {
        event->key.hardware_keycode = static_cast<guint16>(keys[0].keycode);
        g_free(keys);
    }
    gtk_main_do_event(event.get());
}

void SendClose(GtkWidget* window)
{
    gtk_main_do_event(NewPointerEvent(gtk_widget_get_window(window), GDK_DELETE).get());
}

GtkWidget* FindWidget(GtkWidget* widget, const std::function<bool(GtkWidget*)>& condition)
{
    if (condition(widget)) {
        return widget;
    }
    GtkWidget* found = nullptr;
    GList* const children = GTK_IS_CONTAINER(widget) ? gtk_container_get_children(GTK_CONTAINER(widget)) : nullptr;
    for (GList* child = children; child != nullptr && found == nullptr; child = child->next) {
        found = FindWidget(GTK_WIDGET(child->data), condition);
    }
    g_list_free(children);
    return found;
}

GtkWidget* FindByText(GtkWidget* widget, const std::string& text)
{
    return FindWidget(widget, [&text](GtkWidget* one) {
        const char* const shown = GTK_IS_BUTTON(one)  ? gtk_button_get_label(GTK_BUTTON(one))
                                  : GTK_IS_LABEL(one) ? gtk_label_get_text(GTK_LABEL(one))
                                                      : nullptr;
        return shown != nullptr && shown == text;
    });
}

namespace {

/// Acts still to be done, and the source that looks for the next dialog.
struct DialogQueue {
    DialogActs acts;
    std::size_t next = 0;
    guint source = 0;
    GtkWidget* acted_on = nullptr;  ///< By the innermost act that is still running.
};

gboolean ActOnDialog(gpointer data)
{
    auto* const queue = static_cast<DialogQueue*>(data);
    GtkWidget* const dialog = gtk_grab_get_current();
    if (dialog == nullptr || !GTK_IS_DIALOG(dialog) || dialog == pGTable->ProgressDlg || dialog == queue->acted_on ||
        !gtk_window_is_active(GTK_WINDOW(dialog))) {
        return G_SOURCE_CONTINUE;
    }
    // The act may run until the next dialog is answered, which takes a source of its own.
    const std::size_t now = queue->next++;
    queue->source = queue->next < queue->acts.size() ? g_timeout_add(1, ActOnDialog, queue) : 0;
    GtkWidget* const outer = std::exchange(queue->acted_on, dialog);
    queue->acts[now](dialog);
    queue->acted_on = outer;
    return G_SOURCE_REMOVE;
}

/// A dialog or menu that no act is left for would stay forever.
void CloseLeftDialog()
{
    GtkWidget* const dialog = gtk_grab_get_current();
    ADD_FAILURE() << "a dialog was left open";
    if (GTK_IS_MENU_SHELL(dialog)) {
        gtk_menu_shell_cancel(GTK_MENU_SHELL(dialog));
    } else if (GTK_IS_DIALOG(dialog)) {
        SendClose(dialog);
    }
}

}  // namespace

void DuringDialogs(const std::function<void()>& open, const DialogActs& acts)
{
    GtkWidget* const outer = gtk_grab_get_current();
    DialogQueue queue{acts};
    queue.source = acts.empty() ? 0 : g_timeout_add(1, ActOnDialog, &queue);
    {
        const Deadline deadline(CloseLeftDialog);
        open();
        Settle();  // Commands start from the main loop.
    }
    EXPECT_EQ(queue.next, acts.size()) << "fewer dialogs than acts";
    if (queue.source != 0) {
        g_source_remove(queue.source);
    }
    EXPECT_EQ(gtk_grab_get_current(), outer);
}
