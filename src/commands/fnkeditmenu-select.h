#pragma once
// Commands of the Edit menu that select rows of the file list.

#include <gtk/gtk.h>

#include <string>

/// Selects the rows whose names match pattern, and unselects all others.
void SelectMatchingRows(const std::string& pattern);
/// Asks for a pattern and selects the rows that match.
void CreateSelectFilesDlg();
void on_Select_OKButton_clicked(GtkWidget* button, gpointer combo);
void InvertListSelection();

void on_Menu_SelectAll_activate(GtkWidget* item, gpointer data);
void on_Menu_SelectFiles_activate(GtkWidget* item, gpointer data);
void on_Menu_Invert_Selection_activate(GtkWidget* item, gpointer data);
