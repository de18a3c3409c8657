#pragma once
// Making directories for the file engine.

#include <sys/stat.h>

#include <string>

#include "core/fnkfiles-place.h"
#include "engine/fnkmessage.h"

/// What becomes of a symbolic link where a directory is to be made.
enum LinkRule {
    LINK_ASK,      ///< Replaced, if the user agrees.
    LINK_REPLACE,  ///< Replaced: the user has agreed.
};

/// Makes sure that there is a directory at place and opens it, for use as a place only, into
/// directory. Anything else that is there is deleted first. A new one is for its owner alone until
/// it gets its bits. RESULT_DONE; RESULT_OK when the user keeps a link that is in the way; RESULT_CANCEL
/// after a failure, which has been reported.
Result MakeDirectory(const Place& place, LinkRule rule, Descriptor* directory);

/// The same for an absolute path, with all the directories on the way to its last "/"; of these
/// the missing ones are made for everybody, as far as the umask lets them. Links to directories
/// above destination, which path begins with, are kept and followed.
Result CreateDirectoryEx(const std::string& path, const std::string& destination, LinkRule rule, Descriptor* directory);

/// Gives an open directory the permission bits; where the file system knows none, nothing happens.
void SetDirectoryMode(const Descriptor& directory, mode_t mode);
