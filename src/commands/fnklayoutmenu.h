#pragma once
// Commands of the Layout menu: sorting and filtering the list.

#include <gtk/gtk.h>

/// Asks for the sort column and direction.
void CreateSortDlg();
/// Asks for the pattern of the files to list.
void CreateFilterDlg();

void on_Menu_Sort_activate(GtkWidget* item, gpointer data);
void on_Menu_FilterView_activate(GtkWidget* item, gpointer data);
void on_Sort_OKButton_clicked(GtkWidget* button, gpointer info);
void on_Filter_OKButton_clicked(GtkWidget* button, gpointer combo);
