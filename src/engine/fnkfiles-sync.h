#pragma once
// Flushing changes to the disk. Every thread that changes files does so for itself.

#include <optional>
#include <string>

/// Call it before a change in an open directory. The kernel reports a failed write once, and only to
/// descriptors that were open before it. file, unless negative, stands in for a directory that cannot
/// be read.
void ExpectChange(int directory, int file = -1);
/// The same for a change of the directory that holds path.
void ExpectChangeOf(const std::string& path);

/// Notes a change. Its file system is flushed within 250 ms.
void NoteChange();

struct FlushFailure {
    std::string mount_point;
    int error;  ///< An errno.
};

/// Waits until all changes of this thread are on the disk. Every command ends with this call. Returns
/// the first failure, if any.
std::optional<FlushFailure> FlushChanges();
