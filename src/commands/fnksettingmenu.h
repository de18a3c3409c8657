#pragma once
// The options dialog: switches, the columns of the file list, and its colours. It works on copies;
// the settings change when it is confirmed.

#include <gtk/gtk.h>

#include "commands/fnksettingmenu-info.h"

void on_Menu_Option_activate(GtkWidget* item, gpointer data);

void CreateOptionDlg();
/// Fills the dialog with what the settings say.
void SetOptionValue(OptionDlgInfo* info);
/// Takes over what the dialog says, and rebuilds of the window what that concerns.
void on_Option_OKButton_clicked(GtkWidget* button, gpointer info);
