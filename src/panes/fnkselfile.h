#pragma once
// The pickers: a file, a directory or an application, chosen in a dialog of its own.

#include <gtk/gtk.h>

#include <string>

enum BrowseKind { BROWSE_FILE = 0, BROWSE_DIRECTORY = 1 };

/// Packs a "Browse..." button into box. What is picked goes into target: an entry for a file, a
/// drop-down for a directory. Null without a box or a target.
GtkWidget* CreateBrowseButton(GtkWidget* box, GtkWidget* target, BrowseKind kind);

/// Lets the user pick a directory for the entry of combo, starting at the one it names, or else at
/// the one selected in the main tree. A directory that was picked is recorded in DirHistory.
/// 0, kArgumentError, or kWidgetError; the caller then destroys *dialog unless it is null.
int CreateSelectDirDlg(GtkWidget** dialog, GtkWidget* combo);

/// Lets the user pick one of ApplicationList; its program becomes *result, which stays as it was
/// when none was picked or there is none. Returns as the above.
int SelectAppDlg(GtkWidget** dialog, std::string* result);
