#pragma once
// The dialog that asks what to search for, and where.

#include <gtk/gtk.h>

/// Lives as long as the dialog.
struct FindDlgInfo {
    GtkWidget* Dialog = nullptr;
    GtkWidget* StartCombo = nullptr;
    GtkWidget* NameCombo = nullptr;
    GtkWidget* SubDirCheck = nullptr;
};

void CreateFindFilesDlg();
/// Searches, unless what is to be searched for or where is no good; then the dialog stays, and so
/// it does when another search is wanted.
void on_Find_OKButton_clicked(GtkWidget* button, gpointer info);

void on_Menu_FindFile_activate(GtkWidget* item, gpointer data);
