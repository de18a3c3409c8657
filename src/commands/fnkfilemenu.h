#pragma once
// Commands of the File menu.

#include <gtk/gtk.h>

/// The menu opens: what its entries can do now.
void on_Menu_File_activate(GtkWidget* item, gpointer data);
/// Starts another instance.
void on_Menu_CreateNewWindow_activate(GtkWidget* item, gpointer data);
/// Opens the selected row, or else expands the selected directory of the tree.
void on_Menu_Open_activate(GtkWidget* item, gpointer data);
/// Each works on the selection, and asks where to.
void on_Menu_Copy_activate(GtkWidget* item, gpointer data);
void on_Menu_Move_activate(GtkWidget* item, gpointer data);
/// Deletes the selection, after a question if the settings say so.
void on_Menu_Delete_activate(GtkWidget* item, gpointer data);
void on_Menu_Property_activate(GtkWidget* item, gpointer data);
