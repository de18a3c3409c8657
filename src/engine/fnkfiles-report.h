#pragma once
// Messages and questions that copying, moving and deleting share.

#include <string>

#include "engine/fnkmessage.h"

/// Reports one step done. RESULT_CANCEL if the user pressed Cancel, else RESULT_DONE.
Result ReportStep();

/// To be asked before every change: 0, or ECANCELED if nobody waits for the command any more.
int CheckMayChange();

/// Reports that path cannot be copied or moved; error is an errno. Returns RESULT_CANCEL, or the
/// result of ReportStep if the user skips the item.
Result FileErrorMessage(OperationKind kind, const std::string& path, int error);

/// Reports that path cannot be deleted. RESULT_OK to skip it, or RESULT_CANCEL.
Result ReportDeleteFailure(const std::string& path, int error);

/// Asks whether to overwrite path.
bool AskToOverwrite(const std::string& path);
