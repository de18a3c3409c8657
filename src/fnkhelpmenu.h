#pragma once
// Commands of the Help menu.

#include <gtk/gtk.h>

#include <string>

/// Says which program this is.
void CreateAbortDlg();

/// The file of the manual: the installed one, or else the one beside a program that stands in
/// program_directory, which ends in "/". Where there is none, the place where it is missed.
std::string FindManual(const std::string& program_directory);

/// Has the web browser show the manual.
void on_Menu_Manual_activate(GtkWidget* item, gpointer data);
void on_Menu_Abort_activate(GtkWidget* item, gpointer data);
