#include "engine/fnkfiles-delete.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "core/fnkutil.h"
#include "engine/fnkfiles-report.h"
#include "engine/fnkfiles-sync.h"

namespace {

/// An object has gone, or it stays because of the error, which the user is told.
Result Conclude(const std::string& path, int error, StepCount counted)
{
    if (error != 0 && ReportUndeleted(path, error) == RESULT_CANCEL) {
        return RESULT_CANCEL;
    }
    NoteChange();
    const Result progress = counted == STEP_COUNTED ? ReportStep() : RESULT_DONE;
    return progress != RESULT_DONE ? progress : error != 0 ? RESULT_OK : RESULT_DONE;
}

/// Somebody else may be quicker; what is gone is gone. Anything else that keeps an object from
/// being seen does not mean that there is none.
Result ConcludeUnlessGone(const std::string& path, int error, StepCount counted)
{
    return error == ENOENT || error == ENOTDIR ? RESULT_DONE : Conclude(path, error, counted);
}

Result RemoveObject(const Place& place, bool is_directory, StepCount counted)
{
    const int flags = is_directory ? AT_REMOVEDIR : 0;
    const int error = unlinkat(place.directory, place.name.c_str(), flags) == 0 || errno == ENOENT ? 0 : errno;
    return Conclude(place.path, error, is_directory ? STEP_NOT_COUNTED : counted);
}

/// Asks before the first directory that is not empty. RESULT_DONE: it may be emptied.
Result AskOnce(const std::string& path, Result* answer)
{
    if (*answer != RESULT_CANCEL) {
        return RESULT_DONE;
    }
    const Result given = OnEngine.DeleteMessageBox(path);
    switch (given) {
    case RESULT_OK:
    case RESULT_YES_ALL:
        *answer = given;
        return RESULT_DONE;
    case RESULT_CANCEL:
        return RESULT_OK;  // This one stays; the next is asked about again.
    default:
        return RESULT_CANCEL;
    }
}

Result RemoveTree(const Place& place, Result* answer);

/// An entry whose path is too long to work with stays, as one that cannot be deleted does.
Result RemoveEntry(const Place& place, Result* answer)
{
    if (place.path.size() <= kMaxPathBytes) {
        return RemoveTree(place, answer);
    }
    return Conclude(place.path, ENAMETOOLONG, IsDirectory(place) ? STEP_NOT_COUNTED : STEP_COUNTED);
}

/// Deletes what is in the open directory. RESULT_OK when something of it stays.
Result EmptyDirectory(DIR* stream, const std::string& path, Result* answer)
{
    std::vector<std::string> names;
    if (!ListEntries(stream, names)) {
        return RESULT_CANCEL;
    }
    bool something_stays = false;
    for (const std::string& name : names) {
        if (const Result asked = AskOnce(path, answer); asked != RESULT_DONE) {
            return asked;
        }
        const std::string entry_path = WithSlash(path) + name;
        const Result result = RemoveEntry({dirfd(stream), name, entry_path}, answer);
        if (result == RESULT_CANCEL) {
            return RESULT_CANCEL;
        }
        something_stays = something_stays || result == RESULT_OK;
    }
    return something_stays ? RESULT_OK : RESULT_DONE;
}

Result RemoveTree(const Place& place, Result* answer)
{
    struct stat st = {};
    if (!ReadStatus(place, &st)) {
        return ConcludeUnlessGone(place.path, errno, STEP_COUNTED);
    }
    if (!S_ISDIR(st.st_mode)) {
        return RemoveObject(place, false, STEP_COUNTED);
    }
    const DirectoryStream stream = OpenDirectory(place);
    if (stream == nullptr) {
        return RESULT_CANCEL;
    }
    const Result emptied = EmptyDirectory(stream.get(), place.path, answer);
    return emptied != RESULT_DONE ? emptied : RemoveObject(place, true, STEP_NOT_COUNTED);
}

}  // namespace

Result RemoveFileInternal(const Place& place, StepCount counted)
{
    struct stat st = {};
    return ReadStatus(place, &st) ? RemoveObject(place, S_ISDIR(st.st_mode), counted)
                                  : ConcludeUnlessGone(place.path, errno, counted);
}

Result RemoveFileInternal(const std::string& path, StepCount counted)
{
    const PathPlace place(path);
    return place ? RemoveFileInternal(place.Get(), counted) : ConcludeUnlessGone(path, place.Error(), counted);
}

Result RemoveFile(const std::string& path, Result* answer)
{
    const PathPlace place(path);
    return place ? RemoveTree(place.Get(), answer) : ConcludeUnlessGone(path, place.Error(), STEP_COUNTED);
}
