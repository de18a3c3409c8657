#pragma once
// User and group names, and changes of mode and owner, for the property dialog.
// Changes never follow a symbolic link.

#include <sys/types.h>

#include <optional>
#include <string>

#include "core/fnktable.h"

/// Empty when the id has no name.
std::string FindUserName(uid_t user);
std::string FindGroupName(gid_t group);
std::optional<uid_t> FindUserId(const std::string& name);
std::optional<gid_t> FindGroupId(const std::string& name);

/// The groups to offer for a file of group file_group: every group for root; for anyone else
/// file_group first, then their own groups. Groups without a name are left out.
History ListOfferedGroups(gid_t file_group);

/// Sets the permission bits of path to those of mode. Fails without a change if path is a symbolic
/// link or not of the file type in mode. Also fails if the system drops some of the bits.
bool ChangeMode(const std::string& path, mode_t mode);

/// Changes the owner and group of path, or of the link itself. The system clears set-id bits then, and
/// they stay so: they would lend the new owner's rights.
bool ChangeOwner(const std::string& path, uid_t owner, gid_t group);
