#pragma once
// Events as a user sends them, and waiting for what comes of them.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// How many directory entries other threads than the test's may read before a slow disk holds them up.
/// At first as many as they like.
void LetRead(int entries);
int EntriesLeft();

/// Runs the main loop until the condition holds; false after the deadline.
bool Await(const std::function<bool()>& condition);
/// Handles all that is pending.
void Settle();
/// Performs the action inside a main loop, which it must end.
void RunUntilQuit(const std::function<void()>& action);

struct FreeEvent {
    void operator()(GdkEvent* event) const { gdk_event_free(event); }
};
using Event = std::unique_ptr<GdkEvent, FreeEvent>;
/// A pointer event, to be filled in and handed to gtk_main_do_event.
Event NewPointerEvent(GdkWindow* window, GdkEventType type);
/// Presses or releases the left button at these coordinates of the window.
void SendButton(GdkWindow* window, GdkEventType type, double x, double y, guint state = 0);
void SendKey(GtkWidget* window, guint key, guint state = 0);
/// What the window manager's close button sends.
void SendClose(GtkWidget* window);

/// The first widget that the condition holds for, the widget itself or below it; null if none.
GtkWidget* FindWidget(GtkWidget* widget, const std::function<bool(GtkWidget*)>& condition);
/// The button of that label or the label of that text.
GtkWidget* FindByText(GtkWidget* widget, const std::string& text);

using DialogActs = std::vector<std::function<void(GtkWidget*)>>;
/// Opens modal dialogs and acts on them in turn, each once it is on the screen. A dialog that stays
/// open gets the next act too. The progress dialog does not count.
void DuringDialogs(const std::function<void()>& open, const DialogActs& acts);
