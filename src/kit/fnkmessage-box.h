#pragma once
// Modal message boxes, kept above the window that they interrupt.

#include <gtk/gtk.h>

#include <string>

#include "core/fnkutil.h"
#include "engine/fnkmessage.h"

/// Shows a translated UTF-8 message and waits for the answer. Closing the box presses its last
/// button. style is a MessageStyle.
Result MessageBox(const char* title, const std::string& message, unsigned style);

/// Asks whether to delete the directory name, which is not empty, with its contents: RESULT_OK,
/// RESULT_YES_ALL, RESULT_CANCEL ("No") or RESULT_ABORT.
Result DeleteMessageBox(const std::string& name);

/// Reports an error in the text of entry, which gets the focus with its text selected. entry may be
/// null.
void EntryMessageBox(const char* message, GtkWidget* entry);

/// Like EntryMessageBox, for a typed path. status says what is wrong with the path. Says nothing if it
/// is PATH_LEFT.
void FileExistMessageBox(PathStatus status, GtkWidget* entry);
