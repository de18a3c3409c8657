#pragma once
// Copy and Move, and what commands on several files have in common.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/fnkmessage.h"

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
