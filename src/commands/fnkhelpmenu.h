#pragma once
// Commands of the Help menu.

#include <gtk/gtk.h>

#include <string>

/// Shows the About box; "Abort" is this program's word for it.
void CreateAbortDlg();

/// The path of the manual that belongs to a program in program_directory, which ends in "/", in the
/// language of the locale if there is one. Falls back to the installation path that the build was
/// configured with.
std::string FindManual(const std::string& program_directory);

/// Opens the manual in the web browser.
void on_Menu_Manual_activate(GtkWidget* item, gpointer data);
void on_Menu_Abort_activate(GtkWidget* item, gpointer data);
