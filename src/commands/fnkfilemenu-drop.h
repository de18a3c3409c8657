#pragma once
// Files that were dropped on a directory.

#include <string>
#include <vector>

/// Copies or moves the items into destination, whose path ends in "/", after asking which. 0 when
/// that was carried out; 1 when there was nothing to do: they are there already, the user chose
/// neither, or the directory is gone.
int UIFileDragDrop(const std::vector<std::string>& items, const std::string& destination);
