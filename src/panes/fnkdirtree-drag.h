#pragma once
// Dragging a directory out of the tree, and dropping files on a directory of it. While something is
// dragged over the tree, the node under the pointer is selected to show where it would go, but not
// entered; a node that the pointer rests on expands, and near its edges the tree scrolls.

#include <gtk/gtk.h>

void ConnectTreeDrag(GtkTreeView* tree);
