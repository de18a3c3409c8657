#pragma once
// The message boxes that need a widget to point at; the others are in fnkmessage.h.

#include <gtk/gtk.h>

#include "fnkutil.h"

/// Says what is wrong with what the entry says. The entry gets the focus and its whole text
/// selected, to be typed anew.
void EntryMessageBox(const char* message, GtkWidget* entry);

/// Says what is wrong with a typed path. The entry, if one is given, is treated as above.
void FileExistMessageBox(PathStatus status, GtkWidget* entry);
