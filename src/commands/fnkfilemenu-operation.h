#pragma once
// Copy and Move, and the frame of all commands on several files.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/fnkmessage.h"

/// Processes one path and returns a result of the engine.
using OperationStep = std::function<Result(const std::string& path)>;
/// Runs the step for each path under the progress dialog. Stops when the user cancels or a step
/// returns RESULT_CANCEL. Returns the last result.
Result RunOperation(OperationKind kind, const std::vector<std::string>& paths, const OperationStep& step);

/// Asks for a destination, copies or moves the selection to it and shows it there.
void FileOperation(OperationKind kind);

enum PopupChoice { POPUP_NOTHING = 0, POPUP_COPY = 1, POPUP_MOVE = 2 };
/// Asks in a menu at the pointer whether to copy or move. event is the one that caused it. The menu
/// may not open without a real event; that counts as POPUP_NOTHING.
PopupChoice CreateFileOperationPopup(const GdkEvent* event);
