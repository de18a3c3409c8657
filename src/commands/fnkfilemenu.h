#pragma once
// Commands of the File menu.

#include <gtk/gtk.h>

/// Updates which entries are sensitive. Called when the menu opens, and before an accelerator of one of
/// its entries is tried.
void on_Menu_File_activate(GtkWidget* item, gpointer data);
/// Starts another instance of the program.
void on_Menu_CreateNewWindow_activate(GtkWidget* item, gpointer data);
/// Opens the selected row, or else expands the selected directory of the tree.
void on_Menu_Open_activate(GtkWidget* item, gpointer data);
void on_Menu_Copy_activate(GtkWidget* item, gpointer data);
void on_Menu_Move_activate(GtkWidget* item, gpointer data);
/// Deletes the selection. Asks first if ConfilmDel is set.
void on_Menu_Delete_activate(GtkWidget* item, gpointer data);
void on_Menu_Property_activate(GtkWidget* item, gpointer data);
