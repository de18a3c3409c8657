#include "fnkfiles-delete.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <vector>

#include "fnkfiles-sync.h"
#include "fnkraii.h"
#include "fnkstring.h"
#include "fnkutil.h"

namespace {

/// An object by its directory and its name there; path is what messages call it.
struct Place {
    int directory;
    const std::string& name;
    const std::string& path;
};

std::string WithoutSlash(std::string path)
{
    if (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

bool IsDirectoryAt(const Place& place)
{
    struct stat st = {};
    return fstatat(place.directory, place.name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode);
}

Result Step()
{
    return static_cast<Result>(UpdateProgress());
}

/// Reports that the object cannot be deleted; RESULT_OK to skip it.
Result ReportUndeleted(const std::string& path, int error)
{
    return MessageBox(_("Error"), FormatPathMessage(_("Cannot delete file %s\ncause:%s"), path, error), STYLE_SKIP);
}

Result RemoveObject(const Place& place, StepCount counted)
{
    struct stat st = {};
    if (fstatat(place.directory, place.name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        return kDone;
    }
    const bool is_directory = S_ISDIR(st.st_mode);
    bool skipped = false;
    // Somebody else may be quicker; what is gone is gone.
    if (unlinkat(place.directory, place.name.c_str(), is_directory ? AT_REMOVEDIR : 0) != 0 && errno != ENOENT) {
        if (ReportUndeleted(place.path, errno) == RESULT_CANCEL) {
            return RESULT_CANCEL;
        }
        skipped = true;
    }
    NoteChange();
    const Result progress = !is_directory && counted == STEP_COUNTED ? Step() : kDone;
    return progress != kDone ? progress : skipped ? RESULT_OK : kDone;
}

/// Read whole before anything is deleted: file systems differ in what a directory that is being
/// read makes of its entries' removal.
bool ListEntries(DIR* stream, std::vector<std::string>& names)
{
    errno = 0;
    while (const struct dirent* const entry = readdir(stream)) {
        if (!IsDotOrDotDot(entry->d_name)) {
            names.emplace_back(entry->d_name);
        }
    }
    return errno == 0;
}

/// Asks before the first directory that is not empty. kDone: it may be emptied.
Result AskOnce(const std::string& path, Result* answer)
{
    if (*answer != RESULT_CANCEL) {
        return kDone;
    }
    const Result given = DeleteMessageBox(path);
    switch (given) {
    case RESULT_OK:
    case RESULT_YES_ALL:
        *answer = given;
        return kDone;
    case RESULT_CANCEL:
        return RESULT_OK;  // This one stays; the next is asked about again.
    default:
        return RESULT_CANCEL;
    }
}

Result RemoveTree(const Place& place, Result* answer);

/// Deletes what is in the open directory. RESULT_OK when something of it stays.
Result EmptyDirectory(DIR* stream, const std::string& path, Result* answer)
{
    std::vector<std::string> names;
    if (!ListEntries(stream, names)) {
        return RESULT_CANCEL;
    }
    bool something_stays = false;
    for (const std::string& name : names) {
        if (const Result asked = AskOnce(path, answer); asked != kDone) {
            return asked;
        }
        const std::string entry_path = WithSlash(path) + name;
        const Result result = entry_path.size() > kMaxPathBytes ? ReportUndeleted(entry_path, ENAMETOOLONG)
                                                                : RemoveTree({dirfd(stream), name, entry_path}, answer);
        if (result == RESULT_CANCEL) {
            return RESULT_CANCEL;
        }
        something_stays = something_stays || result == RESULT_OK;
    }
    return something_stays ? RESULT_OK : kDone;
}

Result RemoveTree(const Place& place, Result* answer)
{
    if (!IsDirectoryAt(place)) {
        return RemoveObject(place, STEP_COUNTED);
    }
    Descriptor descriptor(
        openat(place.directory, place.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    const DirectoryStream stream(descriptor ? fdopendir(descriptor.Get()) : nullptr);
    if (stream == nullptr) {
        return RESULT_CANCEL;
    }
    descriptor.Release();  // The stream closes it.
    const Result emptied = EmptyDirectory(stream.get(), place.path, answer);
    return emptied != kDone ? emptied : RemoveObject(place, STEP_NOT_COUNTED);
}

/// Calls remove with the object's place; an object whose directory cannot be entered is not there.
template <typename Remove>
Result AtPlace(const std::string& path, Remove remove)
{
    const std::string bare = WithoutSlash(path);
    const std::string name = GetLastPath(bare);
    const Descriptor parent(open(GetParentDirectory(bare).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    return parent && !name.empty() ? remove(Place{parent.Get(), name, path}) : kDone;
}

}  // namespace

Result RemoveFileInternal(const std::string& path, StepCount counted)
{
    return AtPlace(path, [counted](const Place& place) { return RemoveObject(place, counted); });
}

Result RemoveFile(const std::string& path, Result* answer)
{
    return AtPlace(path, [answer](const Place& place) { return RemoveTree(place, answer); });
}

Result FileErrorMessage(OperationKind kind, const std::string& path, int error)
{
    const char* const format =
        kind == OPERATION_COPY ? _("Cannot copy file %s\ncause:%s") : _("Cannot move file %s\ncause:%s");
    if (MessageBox(_("Error"), FormatPathMessage(format, path, error), STYLE_SKIP) == RESULT_CANCEL) {
        return RESULT_CANCEL;
    }
    return Step();
}
