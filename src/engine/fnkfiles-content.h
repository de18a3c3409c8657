#pragma once
// Copying the content of files.

#include <sys/stat.h>

enum ContentResult { CONTENT_COPIED, CONTENT_CANCELLED, CONTENT_READ_FAILED, CONTENT_WRITE_FAILED };

/// Copies the regular file source, whose status is st, into the empty file target. Holes stay holes.
/// On failure error is set to an errno.
ContentResult CopyContent(int source, const struct stat& st, int target, int* error);
