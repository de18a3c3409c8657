#pragma once
// The window that searches and shows what was found.

#include <gtk/gtk.h>

#include "model/fnkeditmenu-find-walk.h"

/// How the window was left.
enum FindResult : unsigned {
    FIND_RESULT_CLOSE = 0xF0000001,
    FIND_RESULT_DISPLAY = 0xFF000001,  ///< The main window shows what was selected.
    FIND_RESULT_AGAIN = 0xFF000002,    ///< Another search is wanted.
};

/// Searches, and lets the user look at the result. parent is insensitive meanwhile.
FindResult CreateFindResultDlg(GtkWidget* parent, const FindRequest& request);
