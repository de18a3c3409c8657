#pragma once
// Whether a place is inside a directory, whatever it is called there.

#include <string>

/// Finds out whether target, which need not exist yet, is or would be inside the directory source.
/// Links and mounts on the way to either may make their paths look unrelated. 0, or an errno when
/// that cannot be told.
int LookInside(const std::string& target, const std::string& source, bool* is_inside);
