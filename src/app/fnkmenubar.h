#pragma once
// The menu bar.

#include <gtk/gtk.h>

/// Creates the bar in box and stores its items in MainW::MenuItem. Returns its handle box, or null.
GtkWidget* CreateMenuBar(GtkWidget* box);
