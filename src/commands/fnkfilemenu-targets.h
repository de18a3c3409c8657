#pragma once
// The targets of a command: the selected rows of the list, or else the tree's selected directory.

#include <string>
#include <vector>

enum SelectionKind {
    SELECTION_FILES,
    SELECTION_DIRECTORIES,
    SELECTION_BOTH,
    SELECTION_NONE,
};

/// Appends the paths of the targets in row order; those of directories end in "/". Unless description
/// is null, stores a line of UTF-8 in it, such as "notes.txt file" or "3 file/directory".
SelectionKind GetFileOperationString(std::vector<std::string>& paths, std::string* description);

/// False, after a message, if one of the paths is too long to work with.
bool CheckFileOperationPaths(const std::vector<std::string>& paths);

/// The number of targets.
std::size_t CountFileOperationTargets();

/// The parent of path, or RootDir if the parent is outside it.
std::string ParentInTree(const std::string& path);
