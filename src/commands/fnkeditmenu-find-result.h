#pragma once
// The dialog that runs a search and shows the result.

#include <gtk/gtk.h>

#include "model/fnkeditmenu-find-walk.h"

/// How the user left the dialog.
enum FindResult : unsigned {
    FIND_RESULT_CLOSE = 0xF0000001,
    FIND_RESULT_DISPLAY = 0xFF000001,  ///< The main window now shows the selected match.
    FIND_RESULT_AGAIN = 0xFF000002,    ///< The user wants another search.
};

/// Searches and shows the result until the user closes the dialog. parent is insensitive meanwhile.
FindResult CreateFindResultDlg(GtkWidget* parent, const FindRequest& request);
