#pragma once
// Message boxes: modal, over whatever window they interrupt.

#include <gtk/gtk.h>

#include <string>

#include "core/fnkutil.h"
#include "engine/fnkmessage.h"

/// Shows the message, UTF-8 and translated, and waits for an answer; closing the box presses its
/// last button. style is one of MessageStyle.
Result MessageBox(const char* title, const std::string& message, unsigned style);

/// Asks whether the directory called name, not empty, may be deleted with all that is in it:
/// RESULT_OK, RESULT_YES_ALL, RESULT_CANCEL for "No" or RESULT_ABORT.
Result DeleteMessageBox(const std::string& name);

/// Says what is wrong with the text of an entry, which gets the focus with its text selected.
void EntryMessageBox(const char* message, GtkWidget* entry);

/// Says what is wrong with a typed path. The entry, if one is given, is treated as above.
void FileExistMessageBox(PathStatus status, GtkWidget* entry);
