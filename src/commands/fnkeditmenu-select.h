#pragma once
// Commands of the Edit menu that choose rows of the file list.

#include <gtk/gtk.h>

#include <string>

/// Selects the rows of which the names match, and no others.
void SelectMatchingRows(const std::string& pattern);
/// Lets the user type such a pattern.
void CreateSelectFilesDlg();
void on_Select_OKButton_clicked(GtkWidget* button, gpointer combo);
/// Selects the rows that are not selected, and no others.
void InvertListSelection();

void on_Menu_SelectAll_activate(GtkWidget* item, gpointer data);
void on_Menu_SelectFiles_activate(GtkWidget* item, gpointer data);
void on_Menu_Invert_Selection_activate(GtkWidget* item, gpointer data);
