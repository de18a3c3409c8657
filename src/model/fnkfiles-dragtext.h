#pragma once
// How files are named in the data of a drag: the program's own text, and the lists of URIs that
// all programs understand.

#include <string>
#include <string_view>
#include <vector>

/// "file:" and the path for each item, with a blank between them. Paths of directories end in "/".
std::string MakeDragText(const std::vector<std::string>& paths);
/// The paths of such a text, or of a list of URIs, which some programs give as text: empty when it
/// is neither, or when one item is no absolute path or one too long to work with.
std::vector<std::string> SplitDragText(std::string_view text);

/// A URI for each path, each with a line of its own.
std::string MakeUriList(const std::vector<std::string>& paths);
/// The paths of a list of URIs, directories with a "/" at the end; empty when one item is not a
/// file of this machine.
std::vector<std::string> SplitUriList(std::string_view list);
