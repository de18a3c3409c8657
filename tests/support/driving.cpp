#include "driving.h"

#include <gtest/gtest.h>

#include <utility>

#include "core/fnktable.h"

namespace {

constexpr guint kDeadlineMilliseconds = 20'000;

guint16 KeyCode(guint key)
{
    GdkKeymapKey* keys = nullptr;
    int count = 0;
    guint16 code = 0;
    if (gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gdk_display_get_default()), key, &keys, &count)) {
        code = static_cast<guint16>(keys[0].keycode);
        g_free(keys);
    }
    return code;
}

}  // namespace

bool Await(const std::function<bool()>& condition)
{
    bool expired = false;
    const guint deadline = g_timeout_add(
        kDeadlineMilliseconds,
        [](gpointer data) -> gboolean {
            *static_cast<bool*>(data) = true;
            return G_SOURCE_CONTINUE;
        },
        &expired);
    while (!condition() && !expired) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_source_remove(deadline);
    return condition();
}

void Settle()
{
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

void RunUntilQuit(const std::function<void()>& action)
{
    bool expired = false;
    const guint deadline = g_timeout_add(
        kDeadlineMilliseconds,
        [](gpointer data) -> gboolean {
            *static_cast<bool*>(data) = true;
            gtk_main_quit();
            return G_SOURCE_CONTINUE;
        },
        &expired);
    std::function<void()> once = action;
    g_idle_add(
        [](gpointer data) -> gboolean {
            (*static_cast<std::function<void()>*>(data))();
            return G_SOURCE_REMOVE;
        },
        &once);
    gtk_main();
    g_source_remove(deadline);
    EXPECT_FALSE(expired) << "the main loop did not end";
}

Event NewPointerEvent(GdkWindow* window, GdkEventType type)
{
    Event event(gdk_event_new(type));
    event->any.window = GDK_WINDOW(g_object_ref(window));
    event->any.send_event = TRUE;
    gdk_event_set_device(event.get(), gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default())));
    return event;
}

void SendButton(GdkWindow* window, GdkEventType type, double x, double y, guint state)
{
    const Event event = NewPointerEvent(window, type);
    event->button.time = GDK_CURRENT_TIME;
    event->button.x = x;
    event->button.y = y;
    event->button.state = state;
    event->button.button = GDK_BUTTON_PRIMARY;
    gtk_main_do_event(event.get());
}

void SendClose(GtkWidget* window)
{
    GdkEvent* const event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    gtk_main_do_event(event);
    gdk_event_free(event);
}

void SendKey(GtkWidget* window, guint key, guint state)
{
    GdkEvent* const event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window)));
    event->key.send_event = TRUE;
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = key;
    event->key.state = state;
    event->key.hardware_keycode = KeyCode(key);
    gdk_event_set_device(event, gdk_seat_get_keyboard(gdk_display_get_default_seat(gdk_display_get_default())));
    gtk_main_do_event(event);
    gdk_event_free(event);
}

GtkWidget* FindWidget(GtkWidget* widget, const std::function<bool(GtkWidget*)>& condition)
{
    if (condition(widget)) {
        return widget;
    }
    GtkWidget* found = nullptr;
    if (GTK_IS_CONTAINER(widget)) {
        const std::unique_ptr<GList, decltype(&g_list_free)> children(gtk_container_get_children(GTK_CONTAINER(widget)),
                                                                      &g_list_free);
        for (GList* child = children.get(); child != nullptr && found == nullptr; child = child->next) {
            found = FindWidget(GTK_WIDGET(child->data), condition);
        }
    }
    return found;
}

GtkWidget* FindByText(GtkWidget* widget, const std::string& text)
{
    return FindWidget(widget, [&text](GtkWidget* one) {
        const bool is_button = GTK_IS_BUTTON(one) && gtk_button_get_label(GTK_BUTTON(one)) != nullptr;
        return (is_button && gtk_button_get_label(GTK_BUTTON(one)) == text) ||
               (GTK_IS_LABEL(one) && gtk_label_get_text(GTK_LABEL(one)) == text);
    });
}

void DuringDialog(const std::function<void()>& open, const std::function<void(GtkWidget*)>& act)
{
    struct Waiting {
        const std::function<void(GtkWidget*)>& act;
        bool done = false;
    } waiting{act};
    const guint source = g_idle_add(
        [](gpointer data) -> gboolean {
            auto* const now = static_cast<Waiting*>(data);
            now->done = true;
            GtkWidget* const dialog = gtk_grab_get_current();
            EXPECT_TRUE(Await([dialog] { return gtk_window_is_active(GTK_WINDOW(dialog)) != FALSE; }));
            now->act(dialog);
            return G_SOURCE_REMOVE;
        },
        &waiting);
    open();
    EXPECT_TRUE(waiting.done) << "no dialog was opened";
    if (!waiting.done) {
        g_source_remove(source);
    }
}

namespace {

/// Acts left to be done, and the source that looks for the next dialog.
struct DialogQueue {
    std::vector<std::function<void(GtkWidget*)>> acts;
    std::size_t next = 0;
    guint source = 0;
    GtkWidget* acted_on = nullptr;  ///< By the innermost act that is not done yet.
};

gboolean ActOnDialog(gpointer data)
{
    auto* const queue = static_cast<DialogQueue*>(data);
    GtkWidget* const dialog = gtk_grab_get_current();
    const bool is_there = dialog != nullptr && GTK_IS_DIALOG(dialog) && dialog != pGTable->ProgressDlg &&
                          dialog != queue->acted_on && gtk_window_is_active(GTK_WINDOW(dialog));
    if (!is_there) {
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

/// A dialog that nobody expected would never end.
gboolean CloseLeftDialog(gpointer)
{
    GtkWidget* const dialog = gtk_grab_get_current();
    ADD_FAILURE() << "the dialogs did not end";
    if (dialog != nullptr && GTK_IS_DIALOG(dialog)) {
        SendClose(dialog);
    }
    return G_SOURCE_CONTINUE;
}

}  // namespace

void DuringDialogs(const std::function<void()>& open, const DialogActs& acts)
{
    GtkWidget* const outer = gtk_grab_get_current();
    DialogQueue queue{acts};
    queue.source = acts.empty() ? 0 : g_timeout_add(1, ActOnDialog, &queue);
    const guint deadline = g_timeout_add(kDeadlineMilliseconds, CloseLeftDialog, nullptr);
    open();
    g_source_remove(deadline);
    EXPECT_EQ(queue.next, acts.size()) << "acts have found a dialog";
    if (queue.source != 0) {
        g_source_remove(queue.source);
    }
    EXPECT_EQ(gtk_grab_get_current(), outer);
}
