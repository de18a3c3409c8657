#pragma once
// The Find File dialog, which asks for a name pattern and a directory.

#include <gtk/gtk.h>

/// Lives as long as the dialog.
struct FindDlgInfo {
    GtkWidget* Dialog = nullptr;
    GtkWidget* StartCombo = nullptr;
    GtkWidget* NameCombo = nullptr;
    GtkWidget* SubDirCheck = nullptr;
};

void CreateFindFilesDlg();
/// Searches, then closes the dialog; but if an input is invalid or the user wants another search, the
/// dialog stays open.
void on_Find_OKButton_clicked(GtkWidget* button, gpointer info);

void on_Menu_FindFile_activate(GtkWidget* item, gpointer data);
