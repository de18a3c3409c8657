#pragma once
// Deleting. Trees are walked by directory descriptor and no link is followed, whatever else changes
// them meanwhile.

#include <string>

#include "core/fnkfiles-place.h"
#include "engine/fnkmessage.h"

enum StepCount { STEP_NOT_COUNTED = 0, STEP_COUNTED = 1 };

/// Deletes one object, a directory only if it is empty. What does not exist is done. A failure is
/// reported, to be skipped or to stop.
Result RemoveFileInternal(const std::string& path, StepCount counted);
Result RemoveFileInternal(const Place& place, StepCount counted);

/// Deletes path, a directory with all that is in it. The answer belongs to the command: it starts
/// as RESULT_CANCEL, not asked yet; once it is RESULT_OK or RESULT_YES_ALL, directories that are
/// not empty are deleted without a question.
Result RemoveFile(const std::string& path, Result* answer);
