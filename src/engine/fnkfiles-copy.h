#pragma once
// Copying and moving one item of a command: a file, a link or a directory with its contents.
// A file appears under its final name only when it is complete. Until then, the file that it
// replaces stays.
//
// A command calls CopyFile or MoveFile for each item and stops at RESULT_CANCEL. Any other result
// means that the item is dealt with: done, skipped, declined or reported. The command owns flag and
// starts it at 0. The first item that may go ahead sets it to 1; later items then overwrite without
// a question.

#include <sys/stat.h>

#include <string>

#include "engine/fnkmessage.h"

/// Checks whether source, whose mode is mode, may go to target: RESULT_DONE or RESULT_CANCEL. It may
/// not if both paths are equal, if both are the same directory, or if target is inside the directory
/// source. Only the last case is reported here. If the check itself fails, sets error to an errno and
/// leaves the report to the caller. error must start at 0.
Result CheckSrcSubDirectory(const std::string& target, const std::string& source, mode_t mode, int* error);

/// Copies source to destination, or into it if it is a directory. Paths of directories end in "/"; a
/// file is not copied to a destination that ends in "/" but is not a directory. Permission bits are
/// copied; owner, group and times are not. Devices, pipes and sockets become empty files.
Result CopyFile(const std::string& destination, const std::string& source, int* flag);

/// Moves source to destination, or into it if it is a directory. A directory is merged into one of
/// the same name, entry by entry. Fails across file systems.
Result MoveFile(const std::string& destination, const std::string& source, int* flag);
