#pragma once
// The toolbar, and with it Back and Forward: they walk LocationDirHistory, of which HistoryIndex
// is the entry shown.

#include <gtk/gtk.h>

/// Builds the bar into box; its handle box, or null.
GtkWidget* CreateToolBar(GtkWidget* box);

void on_Tool_Back_clicked(GtkWidget* button, gpointer data);
void on_Tool_Up_clicked(GtkWidget* button, gpointer data);
void on_Tool_Forward_clicked(GtkWidget* button, gpointer data);
void on_Tool_Rescan_clicked(GtkWidget* button, gpointer data);
void on_Tool_Home_clicked(GtkWidget* button, gpointer data);
void on_Tool_Property_clicked(GtkWidget* button, gpointer data);
