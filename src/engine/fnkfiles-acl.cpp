#include "engine/fnkfiles-acl.h"

#include <acl/libacl.h>
#include <sys/acl.h>

#include <memory>
#include <type_traits>

namespace {

struct FreeAcl {
    void operator()(acl_t acl) const { acl_free(acl); }
};
using Acl = std::unique_ptr<std::remove_pointer_t<acl_t>, FreeAcl>;

/// As the group bits of a mode.
mode_t GroupBits(acl_entry_t entry)
{
    acl_permset_t permissions = nullptr;
    if (acl_get_permset(entry, &permissions) != 0) {
        return 0;
    }
    return (acl_get_perm(permissions, ACL_READ) == 1 ? S_IRGRP : 0U) |
           (acl_get_perm(permissions, ACL_WRITE) == 1 ? S_IWGRP : 0U) |
           (acl_get_perm(permissions, ACL_EXECUTE) == 1 ? S_IXGRP : 0U);
}

}  // namespace

mode_t CopyAcl(int source, int target, mode_t mode)
{
    const Acl acl(acl_get_fd(source));
    if (acl == nullptr || acl_equiv_mode(acl.get(), nullptr) <= 0 || acl_set_fd(target, acl.get()) == 0) {
        return mode;
    }
    acl_entry_t entry = nullptr;
    for (int which = ACL_FIRST_ENTRY; acl_get_entry(acl.get(), which, &entry) == 1; which = ACL_NEXT_ENTRY) {
        acl_tag_t tag = ACL_UNDEFINED_TAG;
        if (acl_get_tag_type(entry, &tag) == 0 && (tag == ACL_GROUP_OBJ || tag == ACL_MASK)) {
            mode &= GroupBits(entry) | ~static_cast<mode_t>(S_IRWXG);
        }
    }
    return mode;
}
