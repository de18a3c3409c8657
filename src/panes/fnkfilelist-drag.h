#pragma once
// Dragging files out of the list, and dropping files on it, which go to the directory it shows.

#include <gtk/gtk.h>

void ConnectListDrag(GtkTreeView* list);
