#include "engine/fnkfiles-directory.h"

#include <fcntl.h>

#include <cerrno>

#include "core/fnkstring.h"
#include "core/fnkutil-text.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-report.h"
#include "engine/fnkfiles-sync.h"

namespace {

constexpr mode_t kNewDirectoryMode = 0775;
/// For a directory that gets the permission bits of its source later.
constexpr mode_t kPrivateMode = 0700;

Descriptor OpenPlace(const Place& place, int flags)
{
    return Descriptor(openat(place.directory, place.name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC | flags));
}

Result ReportMakeFailure(const std::string& path, int error)
{
    OnEngine.MessageBox(_("Error"), FormatPathMessage(_("Cannot create directory %s\ncause:%s"), path, error),
                        STYLE_ERROR);
    return RESULT_CANCEL;
}

/// Whether the object in the way may be deleted. Asks about a link: the user may have meant the
/// directory it points to.
bool MayReplace(const Place& place, const struct stat& st, LinkRule rule)
{
    return !S_ISLNK(st.st_mode) || rule == LINK_REPLACE || AskToOverwrite(place.path);
}

Result MakeDirectoryOfMode(const Place& place, mode_t mode, LinkRule rule, Descriptor* directory)
{
    struct stat st = {};
    if (ReadStatus(place, &st) && !S_ISDIR(st.st_mode)) {
        if (!MayReplace(place, st, rule)) {
            return RESULT_OK;
        }
        // If this fails, mkdirat below fails as well and stops the command.
        RemoveFileInternal(place, STEP_NOT_COUNTED);
    }
    if (!S_ISDIR(st.st_mode)) {
        ExpectChange(place.directory);
        int error = CheckMayChange();
        if (error == 0 && mkdirat(place.directory, place.name.c_str(), mode) != 0) {
            error = errno;
        }
        if (error != 0) {
            return ReportMakeFailure(place.path, error);
        }
        NoteChange();
    }
    *directory = OpenPlace(place, O_NOFOLLOW);
    return *directory ? RESULT_DONE : ReportMakeFailure(place.path, errno);
}

}  // namespace

Result MakeDirectory(const Place& place, LinkRule rule, Descriptor* directory)
{
    return MakeDirectoryOfMode(place, kPrivateMode, rule, directory);
}

Result CreateDirectoryEx(const std::string& path, const std::string& destination, LinkRule rule, Descriptor* directory)
{
    Descriptor parent(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    const char* const text = path.c_str();
    const char* begin = text + 1;
    for (const char* slash = CharNext(begin, '/'); slash != nullptr; slash = CharNext(begin, '/')) {
        const std::string name(begin, slash);
        const std::string prefix(text, slash);
        begin = slash + 1;
        if (name.empty()) {
            continue;
        }
        const bool is_above_destination = prefix.size() < WithoutSlash(destination).size();
        const Place place{parent.Get(), name, prefix};
        Descriptor next = OpenPlace(place, is_above_destination ? 0 : O_NOFOLLOW);
        if (!next && errno != ENOENT && errno != ENOTDIR && errno != ELOOP) {
            // There may still be a directory, or a link to one; do not replace it.
            return ReportMakeFailure(prefix, errno);
        }
        if (!next) {
            const bool is_last = *begin == '\0';
            const Result made = is_last ? MakeDirectory(place, rule, &next)
                                        : MakeDirectoryOfMode(place, kNewDirectoryMode, LINK_ASK, &next);
            if (made != RESULT_DONE) {
                return made;
            }
        }
        parent = std::move(next);
    }
    *directory = std::move(parent);
    return RESULT_DONE;
}

void SetDirectoryMode(const Descriptor& directory, mode_t mode)
{
    if (CheckMayChange() != 0) {
        return;
    }
    ExpectChange(directory.Get());
    if (SetModeBits(directory.Get(), mode & kPermissionBits)) {
        NoteChange();
    }
}
