#pragma once
// Whether one path lies inside another.

#include <string>

/// Sets is_inside to whether target, which need not exist, is or would be inside the directory
/// source. Sees through links and mounts that make the paths look unrelated. 0 or an errno if that
/// cannot be determined.
int CheckIsInside(const std::string& target, const std::string& source, bool* is_inside);

/// Where the file system of an open file is mounted; "/" if that cannot be told.
std::string FindMountPoint(int file);
