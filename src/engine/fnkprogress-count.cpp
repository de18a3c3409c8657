#include "engine/fnkprogress-count.h"

#include <fcntl.h>

#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"
#include "engine/fnkmessage.h"

namespace {

/// Walks by descriptor, so that a directory replaced by a link meanwhile does not lead elsewhere.
int CountBelow(int parent, const std::string& name)
{
    const DirectoryStream stream = OpenDirectory({parent, name, name});
    if (stream == nullptr) {
        return 0;
    }
    const int directory = dirfd(stream.get());
    int count = 0;
    while (const struct dirent* const entry = readdir(stream.get())) {
        if (IsDotOrDotDot(entry->d_name)) {
            continue;
        }
        count += IsDirectoryEntry(directory, *entry) ? CountBelow(directory, entry->d_name) : 1;
        if (OnEngine.KeepPainting()) {
            break;
        }
    }
    return count;
}

}  // namespace

int CountOperationFile(const std::string& path)
{
    if (!IsDirectory(path)) {
        return 1;
    }
    // With a "/" at the end, a link that has replaced the directory would be followed.
    return CountBelow(AT_FDCWD, WithoutSlash(path));
}
