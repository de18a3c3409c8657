#pragma once
// Creating directories and empty files.

#include <gtk/gtk.h>

#include <string>

void on_Menu_NewDirectory_activate(GtkWidget* item, gpointer data);
void on_Menu_NewFile_activate(GtkWidget* item, gpointer data);

/// Creates a directory and notes the change for the next sync. False, after a message, on failure.
bool CreateNewDirectory(const std::string& path);
/// The same for an empty file. Never touches an existing file, even one that has only just appeared.
bool CreateNewFile(const std::string& path);

/// Syncs the noted changes, opens the parent directory and scrolls to the new file.
void ShowNewFile(const std::string& path);
