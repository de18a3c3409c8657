#pragma once
// How a tree looks: icons, names, and a column as wide as what is on the screen needs.

#include <gtk/gtk.h>

/// A tree view in the scrolled window, with the root node in it, collapsed and empty.
GtkTreeView* CreateNodeView(GtkWidget* scroll);
