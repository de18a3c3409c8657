#pragma once
// The lower half of the file engine: deleting, and the error box that copy and move share. Asks
// and reports through fnkmessage.h, counts its steps through fnkprogress.h. Trees are walked by
// directory descriptor and no link is followed, whatever else changes them meanwhile.

#include <string>

#include "fnkfiles-place.h"
#include "fnkmessage.h"
#include "fnkprogress.h"

enum StepCount { STEP_NOT_COUNTED = 0, STEP_COUNTED = 1 };

/// Deletes one object, a directory only if it is empty. What does not exist is done. A failure is
/// reported, to be skipped or to stop.
Result RemoveFileInternal(const std::string& path, StepCount counted);
Result RemoveFileInternal(const Place& place, StepCount counted);

/// Deletes path, a directory with all that is in it. The answer belongs to the command: it starts
/// as RESULT_CANCEL, not asked yet; once it is RESULT_OK or RESULT_YES_ALL, directories that are
/// not empty are deleted without a question.
Result RemoveFile(const std::string& path, Result* answer);

/// Reports a failed copy or move of path with the reason, an errno. RESULT_CANCEL, or when skipped
/// what UpdateProgress says.
Result FileErrorMessage(OperationKind kind, const std::string& path, int error);

/// Reports that path cannot be deleted: RESULT_OK to skip it, or RESULT_CANCEL.
Result ReportUndeleted(const std::string& path, int error);

/// UpdateProgress in the engine's terms.
Result ReportStep();
