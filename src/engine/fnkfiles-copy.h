#pragma once
// The upper half of the file engine: copying and moving one item, a file, a link or a whole tree.
// A file under its final name is always complete, and what it replaces stays until then.
//
// A command calls CopyFile or MoveFile for each of its items and stops at RESULT_CANCEL. Any other
// result means that the item is dealt with: done, skipped, declined or reported. The flag belongs
// to the command and starts at 0; the first item that gets past the overwrite question sets it to
// 1, and no more is asked.

#include <sys/stat.h>

#include <string>

#include "engine/fnkmessage.h"

/// RESULT_CANCEL when source, of that mode, is target itself, or a directory that target is inside
/// of, which is reported; 0 when it may go there. A place is known under any spelling. When that
/// cannot be told, RESULT_CANCEL too, and error, else 0, is an errno that has not been reported.
Result CheckSrcSubDirectory(const std::string& target, const std::string& source, mode_t mode, int* error);

/// Copies source to destination; a "/" at the end of that says that it is meant as a directory,
/// and no file is copied when it is none. The path of a directory ends in "/". Permission bits are copied;
/// owner, group and times are not. Devices, pipes and sockets become empty files.
Result CopyFile(const std::string& destination, const std::string& source, int* flag);

/// Moves source to destination, a directory onto one of the same name entry by entry. Never leaves
/// the file system.
Result MoveFile(const std::string& destination, const std::string& source, int* flag);
