#pragma once
// Dragging directories out of the tree and dropping files on its nodes. During a drag over the tree,
// the node under the pointer is framed as the target; the selection stays. A node expands when the
// pointer rests on it. The tree scrolls when the pointer is near its top or bottom edge.

#include <gtk/gtk.h>

void ConnectTreeDrag(GtkTreeView* tree);
