#pragma once
// Dropping files on a directory.

#include <functional>
#include <string>
#include <vector>

/// Asks whether to copy or move the items, and returns the command that does so. destination ends in
/// "/". Returns null if there are no items, the first one is destination or already in it, destination
/// is not a directory, or the user chose neither.
std::function<void()> UIFileDragDrop(const std::vector<std::string>& items, const std::string& destination);
