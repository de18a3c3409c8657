#pragma once
// What is copied from one file into another.

#include <sys/stat.h>

enum ContentResult { CONTENT_COPIED, CONTENT_CANCELLED, CONTENT_NOT_READ, CONTENT_NOT_WRITTEN };

/// Copies what the regular file source, of status st, holds into the empty file target; holes stay
/// holes. Whatever takes long happens in the background. Sets error to an errno when it fails.
ContentResult CopyContent(int source, const struct stat& st, int target, int* error);

/// Puts a file on the disk, in the background. 0 or an errno.
int WriteOut(int file);
