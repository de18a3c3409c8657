#pragma once
// Dialogs that pick a file, a directory or an application.

#include <gtk/gtk.h>

#include <string>

enum BrowseKind { BROWSE_FILE = 0, BROWSE_DIRECTORY = 1 };

/// Packs a "Browse..." button into box. The picked path goes into target, which is an entry for a
/// file and a drop-down for a directory. Null if box or target is null.
GtkWidget* CreateBrowseButton(GtkWidget* box, GtkWidget* target, BrowseKind kind);

/// Packs a drop-down for a path into box, with DirHistory as its items and a "Browse..." button for
/// directories beside it. Returns the drop-down.
GtkWidget* CreatePathCombo(GtkWidget* box, const char* accessible_name);

/// Lets the user pick a directory for the entry of combo. Starts at the directory that the entry
/// names, or else at the one selected in the main tree. Records the pick in DirHistory. Returns 0,
/// kArgumentError or kWidgetError. After an error the caller destroys *dialog unless it is null.
int CreateSelectDirDlg(GtkWidget** dialog, GtkWidget* combo);

/// Lets the user pick an application of ApplicationList and stores its program in *result, which stays
/// as it is if the user picks none. Does nothing if the list is empty. The return value and *dialog
/// are as for CreateSelectDirDlg.
int SelectAppDlg(GtkWidget** dialog, std::string* result);
