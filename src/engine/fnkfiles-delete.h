#pragma once
// Deleting. Trees are walked by directory descriptor and links are never followed, even if the tree
// changes meanwhile.

#include <string>

#include "core/fnkfiles-place.h"
#include "engine/fnkmessage.h"

/// Whether a deletion counts as a step of the progress dialog.
enum StepCount { STEP_NOT_COUNTED = 0, STEP_COUNTED = 1 };

/// Deletes one object; a directory only if it is empty. RESULT_DONE also if nothing is there. Reports
/// a failure: RESULT_OK if the user skips the object, RESULT_CANCEL to stop.
Result RemoveFileInternal(const std::string& path, StepCount counted);
Result RemoveFileInternal(const Place& place, StepCount counted);

/// Deletes path; a directory with its contents. answer starts as RESULT_CANCEL, which means that the
/// user has not agreed yet. Once it is RESULT_OK or RESULT_YES_ALL, directories that are not empty
/// are deleted without a question. RESULT_OK is for one item: the caller resets it after each.
Result RemoveFile(const std::string& path, Result* answer);
