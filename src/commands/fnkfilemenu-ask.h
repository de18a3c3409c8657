#pragma once
// The dialog that asks for the path of a new file or directory, or for the destination of a copy or
// move.

#include <gtk/gtk.h>

#include <string>

#include "engine/fnkmessage.h"

/// What the dialog asks for.
enum OperationMode {
    MODE_NEW_DIRECTORY = 0,
    MODE_NEW_FILE = 1,
    MODE_COPY = OPERATION_COPY,
    MODE_MOVE = OPERATION_MOVE,
};

/// Asks until the user cancels or types a path that exists or could be created. Returns RESULT_OK and
/// the path, absolute and canonical, or RESULT_CANCEL. description names what is copied or moved.
Result CreateFileOperationDlg(OperationMode mode, const std::string& description, std::string* path);
void on_FileOperation_OKButton_clicked(GtkWidget* button, gpointer state);
