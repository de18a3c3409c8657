#pragma once
// Acting on windows and dialogs as a user would, and waiting for what comes of it.

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Runs the main loop until the condition holds; false after the deadline.
bool Await(const std::function<bool()>& condition);
/// Handles all that is pending now.
void Settle();
/// Performs the action from inside a main loop, which the action is to end, now or by and by.
void RunUntilQuit(const std::function<void()>& action);

struct FreeEvent {
    void operator()(GdkEvent* event) const { gdk_event_free(event); }
};
using Event = std::unique_ptr<GdkEvent, FreeEvent>;
/// An event of the pointer for a window, to be filled in and handed to gtk_main_do_event.
Event NewPointerEvent(GdkWindow* window, GdkEventType type);
/// One of the left button at these coordinates of the window.
void SendButton(GdkWindow* window, GdkEventType type, double x, double y, guint state = 0);

/// An event of a key into a window, as the toolkit would deliver it.
void SendKey(GtkWidget* window, guint key, guint state = 0);

/// What the window manager's close button sends to the window.
void SendClose(GtkWidget* window);

/// The first widget for which the condition holds, the widget itself or anywhere below it.
GtkWidget* FindWidget(GtkWidget* widget, const std::function<bool(GtkWidget*)>& condition);

/// The button of that label, or the label of that text, anywhere below the widget.
GtkWidget* FindByText(GtkWidget* widget, const std::string& text);

/// Does what opens a modal dialog and, once that is on the screen, acts on it. The act is to end
/// the dialog, now or by and by.
void DuringDialog(const std::function<void()>& open, const std::function<void(GtkWidget*)>& act);

/// What to do with the modal dialogs that come up, one after the other; a dialog that stays gets
/// more than one act. Not counted is the one that shows progress.
using DialogActs = std::vector<std::function<void(GtkWidget*)>>;
/// Does what opens them and acts on each as soon as it is on the screen.
void DuringDialogs(const std::function<void()>& open, const DialogActs& acts);
