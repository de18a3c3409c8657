#pragma once
// The menu bar: five menus from one table of entries.

#include <gtk/gtk.h>

/// Builds the bar into box and stores its items in MainW::MenuItem; its handle box, or null.
GtkWidget* CreateMenuBar(GtkWidget* box);
