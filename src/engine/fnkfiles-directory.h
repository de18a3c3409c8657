#pragma once
// Creating directories.

#include <sys/stat.h>

#include <string>

#include "core/fnkfiles-place.h"
#include "engine/fnkmessage.h"

/// What to do with a symbolic link where a directory has to be created.
enum LinkRule {
    LINK_ASK,      ///< Ask whether to replace it.
    LINK_REPLACE,  ///< Replace it; the user has already agreed.
};

/// Creates a directory at place unless there is one, and opens it with O_PATH into directory.
/// Any other object there is deleted first. A new directory has mode 0700 until SetDirectoryMode.
/// RESULT_DONE; RESULT_OK if the user keeps a link; RESULT_CANCEL after a reported failure.
Result MakeDirectory(const Place& place, LinkRule rule, Descriptor* directory);

/// The same for an absolute path that ends in "/". Missing parents are created with mode 0775 less
/// the umask. path is destination or below it. Links to directories are followed only above
/// destination.
Result CreateDirectoryEx(const std::string& path, const std::string& destination, LinkRule rule, Descriptor* directory);

/// Sets the permission bits of an open directory. Ignores failures, because some file systems have no
/// such bits.
void SetDirectoryMode(const Descriptor& directory, mode_t mode);
