#pragma once
// Dropping files on a directory.

#include <string>
#include <vector>

/// Asks whether to copy or move the items, and runs that command. destination ends in "/". Returns 0 if
/// the command ran. Returns 1 if there are no items, the first one is destination or already in it,
/// destination is not a directory, or the user chose neither.
int UIFileDragDrop(const std::vector<std::string>& items, const std::string& destination);
