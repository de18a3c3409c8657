#pragma once
// The user's associations, "$HOME/.extension": which program opens a file, and which programs
// there are to choose from. The file is only ever read.

#include <vector>

#include "core/fnktable.h"

/// Appends the entries of a section, "[Extension]" or "[Application]", in the order of the file:
/// lines "key=value" behind the first line that holds the section's name, up to an empty line, one
/// that begins with "[", or the end. Nothing is trimmed. A line of more than 2047 bytes, or one
/// with a key of more than 255, is left out. -1 when an argument is missing, else 0, also when
/// there is no file or no section.
int ReadAppInfo(const char* section, std::vector<AppInfo>* list);

void FreeAppInfo(std::vector<AppInfo>& list);
