#pragma once
// Commands of the Help menu.

#include <gtk/gtk.h>

#include <string>

/// Says which program this is.
void CreateAbortDlg();

/// The file of the manual: the one that was installed, or built, with a program that stands in
/// program_directory, which ends in "/"; or else the place where it is usually installed.
std::string FindManual(const std::string& program_directory);

/// Has the web browser show the manual.
void on_Menu_Manual_activate(GtkWidget* item, gpointer data);
void on_Menu_Abort_activate(GtkWidget* item, gpointer data);
