#pragma once
// The user's associations, "$HOME/.extension": which program opens a file, and which programs the
// user can choose from. The file is never written.

#include <vector>

#include "core/fnktable.h"

/// Appends the "key=value" lines of a section, "[Extension]" or "[Application]", in file order.
/// The section begins after the first line that contains its name, and ends at an empty line, at a
/// line that begins with "[", or at the end. Blanks are kept. Skips lines of more than 2047 bytes,
/// with a key of more than 255, or without "=". -1 if an argument is null, else 0, even without a file.
int ReadAppInfo(const char* section, std::vector<AppInfo>* list);

void FreeAppInfo(std::vector<AppInfo>& list);
