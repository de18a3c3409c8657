#pragma once
// The options dialog: switches, and the columns and colours of the file list. The settings change
// only when the user presses OK.

#include <gtk/gtk.h>

#include "commands/fnksettingmenu-info.h"

void on_Menu_Option_activate(GtkWidget* item, gpointer data);

void CreateOptionDlg();
/// Fills the dialog from the settings.
void SetOptionValue(OptionDlgInfo* info);
/// Stores the settings, rebuilds the parts of the window that they affect, and closes the dialog.
void on_Option_OKButton_clicked(GtkWidget* button, gpointer info);
