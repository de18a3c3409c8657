#include <fcntl.h>

#include "fnkprogress.h"
#include "fnkraii.h"
#include "fnkutil.h"

namespace {

/// Walks by descriptor, so that a directory exchanged for a link under way leads nowhere else.
int CountBelow(int parent, const char* name)
{
    Descriptor descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    const DirectoryStream stream(descriptor ? fdopendir(descriptor.Get()) : nullptr);
    if (stream == nullptr) {
        return 0;
    }
    descriptor.Release();  // The stream closes it.
    const int directory = dirfd(stream.get());
    int count = 0;
    while (const struct dirent* const entry = readdir(stream.get())) {
        if (IsDotOrDotDot(entry->d_name)) {
            continue;
        }
        count += IsDirectoryEntry(directory, *entry) ? CountBelow(directory, entry->d_name) : 1;
        if (KeepPainting()) {
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
    // Its "/" at the end would have a link followed that took the directory's place.
    const bool has_slash = path.size() > 1 && path.back() == '/';
    return CountBelow(AT_FDCWD, (has_slash ? path.substr(0, path.size() - 1) : path).c_str());
}
