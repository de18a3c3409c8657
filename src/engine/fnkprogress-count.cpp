#include "engine/fnkprogress-count.h"

#include <fcntl.h>

#include <vector>

#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"
#include "engine/fnkmessage.h"

int CountOperationFile(const std::string& path)
{
    if (!IsDirectory(path)) {
        return 1;
    }
    // Walks by descriptor, so that a directory replaced by a link meanwhile does not lead elsewhere.
    // With a "/" at the end, a link that has replaced the top directory would be followed.
    const std::string top = WithoutSlash(path);
    std::vector<DirectoryStream> streams;
    streams.push_back(OpenDirectory({AT_FDCWD, top, top}));
    int count = 0;
    while (!streams.empty() && !OnEngine.IsCancelled()) {
        DIR* const stream = streams.back().get();
        const struct dirent* const entry = stream != nullptr ? readdir(stream) : nullptr;
        if (entry == nullptr) {
            streams.pop_back();
        } else if (IsDotOrDotDot(entry->d_name)) {
            continue;
        } else if (IsDirectoryEntry(dirfd(stream), *entry)) {
            const std::string name = entry->d_name;
            streams.push_back(OpenDirectory({dirfd(stream), name, name}));
        } else {
            ++count;
        }
    }
    return count;
}
