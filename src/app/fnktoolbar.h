#pragma once
// The toolbar. Back and Forward walk through LocationDirHistory, where HistoryIndex is the shown entry.

#include <gtk/gtk.h>

/// Creates the bar in box and stores its buttons in MainW::ToolButton. Returns its handle box, or
/// null.
GtkWidget* CreateToolBar(GtkWidget* box);
/// Enables Back and Forward if the history has somewhere to go.
void SensitiveHistoryButtons();

void on_Tool_Back_clicked(GtkWidget* button, gpointer data);
void on_Tool_Up_clicked(GtkWidget* button, gpointer data);
void on_Tool_Forward_clicked(GtkWidget* button, gpointer data);
void on_Tool_Rescan_clicked(GtkWidget* button, gpointer data);
void on_Tool_Home_clicked(GtkWidget* button, gpointer data);
void on_Tool_Property_clicked(GtkWidget* button, gpointer data);
