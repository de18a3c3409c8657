#pragma once
// Copy and Move, and the loop that Copy, Move, Delete and drops share.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/fnkmessage.h"

/// Processes one path and returns a result of the engine. Runs in a thread and must own what it uses.
using OperationStep = std::function<Result(const std::string& path)>;
/// Runs the step for each path under the progress dialog. Stops when the user cancels or a step
/// returns RESULT_CANCEL. Returns the last result; RESULT_CANCEL if the user has left the command.
/// Unless it is left, end runs in the thread, too.
Result RunOperation(OperationKind kind, const std::vector<std::string>& paths, const OperationStep& step,
                    const std::function<void(Result result)>& end = nullptr);

/// A step that copies or moves to destination. All paths share the user's leave to overwrite.
OperationStep TransferTo(OperationKind kind, const std::string& destination);

/// Asks for a destination, copies or moves the selection to it and shows it there.
void FileOperation(OperationKind kind);

enum PopupChoice { POPUP_NOTHING = 0, POPUP_COPY = 1, POPUP_MOVE = 2 };
/// Asks in a menu at the pointer whether to copy or move. event is what caused the question; without an
/// event the menu may fail to open. The result is POPUP_NOTHING if it does, or if the user picks neither.
PopupChoice CreateFileOperationPopup(const GdkEvent* event);
