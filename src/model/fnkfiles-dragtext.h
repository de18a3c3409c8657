#pragma once
// The data of a drag: the program's own text format, and the URI lists that all programs
// understand.

#include <string>
#include <string_view>
#include <vector>

/// "file:" and the path of each item, separated by blanks. Paths of directories end in "/".
std::string MakeDragText(const std::vector<std::string>& paths);
/// The paths in such a text, or in a URI list, which some programs send as text. Empty if text is
/// neither, or if any item is not an absolute path of at most kMaxPathBytes.
std::vector<std::string> SplitDragText(std::string_view text);

/// One URI per line.
std::string MakeUriList(const std::vector<std::string>& paths);
/// The paths in a URI list; those of directories end in "/". Empty if any item is not a local file.
std::vector<std::string> SplitUriList(std::string_view list);
