#include "model/fnkdirtree-scan.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "core/fnkfiles-place.h"
#include "core/fnkthread.h"
#include "core/fnkutil.h"

namespace {

bool IsShownDirectory(int directory, const struct dirent& entry, std::size_t max_name_bytes)
{
    const char* const name = entry.d_name;
    if (IsDotOrDotDot(name) || CheckFileName(name) == 0) {
        return false;
    }
    return IsDirectoryEntry(directory, entry) && std::strlen(name) <= max_name_bytes;
}

/// The longest name with which the path of a subdirectory still fits. path_length is the length of
/// the parent's path; both paths end in "/".
std::size_t MaxNameBytesBelow(std::size_t path_length)
{
    return path_length < kMaxPathBytes ? kMaxPathBytes - path_length - 1 : 0;
}

std::string FindFirstSubdirectory(int parent, const std::string& name, std::size_t max_name_bytes)
{
    const DirectoryStream stream = OpenDirectory({parent, name, name});
    if (stream == nullptr) {
        return {};
    }
    while (const struct dirent* const entry = readdir(stream.get())) {
        if (IsShownDirectory(dirfd(stream.get()), *entry, max_name_bytes)) {
            return entry->d_name;
        }
    }
    return {};
}

}  // namespace

ScanResult ScanSubdirectories(const std::string& directory, std::vector<Subdirectory>& found)
{
    const std::atomic<bool> stopped = false;
    const ScanResult result = ScanNames(directory, found, stopped);
    LookAhead(directory, found, stopped);
    return result;
}

ScanResult ScanNames(const std::string& directory, std::vector<Subdirectory>& found, const std::atomic<bool>& stopped)
{
    const DirectoryStream stream(opendir(directory.c_str()));
    if (stream == nullptr) {
        return errno == EACCES ? SCAN_DONE : SCAN_FAILED;
    }
    // A directory that may be read but not entered has nothing to show, as the list has nothing of it.
    struct stat st = {};
    if (fstatat(dirfd(stream.get()), ".", &st, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == EACCES ? SCAN_DONE : SCAN_FAILED;
    }
    const std::size_t max_name_bytes = MaxNameBytesBelow(WithSlash(directory).size());
    while (const struct dirent* const entry = stopped ? nullptr : readdir(stream.get())) {
        if (IsShownDirectory(dirfd(stream.get()), *entry, max_name_bytes)) {
            found.push_back({entry->d_name, std::nullopt});
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return SCAN_DONE;
}

void LookAhead(const std::string& directory, std::vector<Subdirectory>& found, const std::atomic<bool>& stopped)
{
    const Descriptor parent(open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const std::size_t length = WithSlash(directory).size();
    ForEachIndex(found.size(), stopped, [&](std::size_t i) {
        Subdirectory& below = found[i];
        below.any_child =
            FindFirstSubdirectory(parent.Get(), below.name, MaxNameBytesBelow(length + below.name.size() + 1));
    });
}
