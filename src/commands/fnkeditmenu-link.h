#pragma once
// Creating symbolic links.

#include <gtk/gtk.h>

/// Asks for a file and for the name of a link to it, and makes the link.
void CreateSymbolicLinkDlg();
void on_Link_OKButton_clicked(GtkWidget* button, gpointer info);

void on_Menu_SymbolicLink_activate(GtkWidget* item, gpointer data);
