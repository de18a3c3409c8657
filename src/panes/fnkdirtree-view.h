#pragma once
// How a tree looks: a folder icon and a name per row, in a column as wide as its visible rows need.

#include <gtk/gtk.h>

/// Draws the selection as that of a pane that the keys act on, or paler.
void ShowTreeKeys(GtkTreeView* tree, bool has_keys);

/// Fits the column to the nodes that are seen, and shows which of these can be expanded, before the next
/// frame.
void UpdateSeenNodes(GtkWidget* tree);

/// Adds a view of the nodes, all collapsed, to the scrolled window.
GtkTreeView* CreateNodeView(GtkWidget* scroll, GtkTreeModel* nodes, const char* accessible_name);
