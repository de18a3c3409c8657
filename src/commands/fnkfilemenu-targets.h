#pragma once
// What a command works on: the selected rows of the list, or else the tree's selected directory.

#include <string>
#include <vector>

enum SelectionKind {
    SELECTION_FILES,
    SELECTION_DIRECTORIES,
    SELECTION_BOTH,
    SELECTION_NONE,
};

/// Appends the paths in row order, those of directories with a "/" at the end, and describes them
/// in one line, as "notes.txt file" or "3 file/directory" (UTF-8; null for no description).
SelectionKind GetFileOperationString(std::vector<std::string>& paths, std::string* description);

/// Whether all of them can be worked with; where one is too long, says so.
bool CheckFileOperationPaths(const std::vector<std::string>& paths);

/// How many paths the first would append.
std::size_t CountFileOperationTargets();

/// The parent of path, but never a directory above the top of the tree.
std::string ParentInTree(const std::string& path);
