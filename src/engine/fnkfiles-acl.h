#pragma once
// Access control lists of files.

#include <sys/stat.h>

/// Copies the ACL of an open file or directory, if it has one. Returns the permission bits that target
/// should get afterwards. With an ACL, the group bits of mode are its mask: where target keeps no ACL,
/// they are limited to what the group itself may do.
mode_t CopyAcl(int source, int target, mode_t mode);
