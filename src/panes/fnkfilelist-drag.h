#pragma once
// Dragging files out of the list. Files dropped on the list go to CurrentDir.

#include <gtk/gtk.h>

void ConnectListDrag(GtkTreeView* list);
