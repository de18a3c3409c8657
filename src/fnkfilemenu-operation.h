#pragma once
// Asking for a name or a destination, and what follows from a destination: Copy and Move.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "fnkmessage.h"
#include "fnkprogress.h"

/// What the dialog asks for.
enum OperationMode {
    MODE_NEW_DIRECTORY = 0,
    MODE_NEW_FILE = 1,
    MODE_COPY = OPERATION_COPY,
    MODE_MOVE = OPERATION_MOVE,
};

/// Asks until the path exists or could be created, or the user gives up. RESULT_OK and the path,
/// absolute and canonical, or RESULT_CANCEL. The description is of what is copied or moved.
Result CreateFileOperationDlg(OperationMode mode, const std::string& description, std::string* path);
void on_FileOperation_OKButton_clicked(GtkWidget* button, gpointer state);

/// Does one item of a command; its result is one of the engine's.
using OperationStep = std::function<Result(const std::string& path)>;
/// Runs the step for each path under the progress dialog, until one stops the command or Cancel is
/// pressed. The result of the last.
Result RunOperation(OperationKind kind, const std::vector<std::string>& paths, const OperationStep& step);

/// Copies or moves the selection to where the user says, and shows it there.
void FileOperation(OperationKind kind);

/// Values as the menu's entries come.
enum PopupChoice { POPUP_NOTHING = 0, POPUP_COPY = 1, POPUP_MOVE = 2 };
/// Asks at the pointer whether to copy or to move. The event is the one that led to it; without a
/// real one the menu may not come up, which counts as nothing chosen.
PopupChoice CreateFileOperationPopup(const GdkEvent* event);
