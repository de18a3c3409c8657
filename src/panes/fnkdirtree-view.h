#pragma once
// How a tree looks: icons, names, and a column as wide as what is on the screen needs.

#include <gtk/gtk.h>

/// A tree view of the nodes in the scrolled window, all of them collapsed.
GtkTreeView* CreateNodeView(GtkWidget* scroll, GtkTreeModel* nodes, const char* accessible_name);
