#pragma once
// Counts the steps of a command before it runs.

#include <string>

/// The number of steps of an item: objects at or below path that are not directories. Links are not
/// followed; a directory that cannot be read counts 0. Stops early when the user presses Cancel.
int CountOperationFile(const std::string& path);
