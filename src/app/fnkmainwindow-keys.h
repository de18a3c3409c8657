#pragma once
// Keyboard navigation. Neither pane takes the focus: keys act on the list while it has a selection,
// else on the tree.

#include <gtk/gtk.h>

/// Handler of the window's "key-press-event".
gboolean on_MainWindow_key_press_event(GtkWidget* window, GdkEventKey* event, gpointer data);
