#pragma once
// Counting the steps of a command beforehand.

#include <string>

/// How many steps an item takes: the files at or below path. Links are not followed, and a
/// directory that cannot be read has none. Stops early when the user presses Cancel.
int CountOperationFile(const std::string& path);
