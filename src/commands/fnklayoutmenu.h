#pragma once
// Commands of the Layout menu: the order of the list, and which files it shows.

#include <gtk/gtk.h>

/// Lets the user choose the column and the direction that the list is sorted by.
void CreateSortDlg();
/// Lets the user choose which files the list shows.
void CreateFilterDlg();

void on_Menu_Sort_activate(GtkWidget* item, gpointer data);
void on_Menu_FilterView_activate(GtkWidget* item, gpointer data);
void on_Sort_OKButton_clicked(GtkWidget* button, gpointer info);
void on_Filter_OKButton_clicked(GtkWidget* button, gpointer combo);
