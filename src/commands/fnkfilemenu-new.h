#pragma once
// Creating directories and empty files.

#include <gtk/gtk.h>

#include <string>

void on_Menu_NewDirectory_activate(GtkWidget* item, gpointer data);
void on_Menu_NewFile_activate(GtkWidget* item, gpointer data);

/// Creates one directory; a failure is reported. The change is noted, but not flushed.
bool CreateNewDirectory(const std::string& path);
/// The same for an empty file. What is there already, if only since a moment, is never touched.
bool CreateNewFile(const std::string& path);

/// Puts the change on the disk and shows the file that it made, in its directory.
void ShowNewFile(const std::string& path);
