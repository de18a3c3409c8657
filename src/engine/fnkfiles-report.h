#pragma once
// What copying, moving and deleting tell and ask the user.

#include <string>

#include "engine/fnkmessage.h"

/// Reports one step done. RESULT_CANCEL when the user pressed Cancel.
Result ReportStep();

/// Reports a failed copy or move of path with the reason, an errno. RESULT_CANCEL, or when the user
/// skips it what ReportStep says.
Result FileErrorMessage(OperationKind kind, const std::string& path, int error);

/// Reports that path cannot be deleted: RESULT_OK to skip it, or RESULT_CANCEL.
Result ReportUndeleted(const std::string& path, int error);

/// Asks whether what is at path may be overwritten.
bool AskToOverwrite(const std::string& path);
