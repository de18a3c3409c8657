#pragma once
// Creating symbolic links.

#include <gtk/gtk.h>

/// Asks for an existing file and a name for the link, then creates the link and shows it.
void CreateSymbolicLinkDlg();
void on_Link_OKButton_clicked(GtkWidget* button, gpointer info);

void on_Menu_SymbolicLink_activate(GtkWidget* item, gpointer data);
