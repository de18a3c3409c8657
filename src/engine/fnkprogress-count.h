#pragma once
// Counts the steps of a command before it runs.

#include <string>

/// The number of steps of an item: the objects at or below path, not counting directories. Links are
/// not followed. A directory that cannot be read counts as empty. Stops early if the user cancels.
int CountOperationFile(const std::string& path);
