#include "engine/fnkfiles-delete.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "core/fnkutil.h"
#include "engine/fnkfiles-report.h"
#include "engine/fnkfiles-sync.h"

namespace {

/// Ends the deletion of an object: reports error unless it is 0, and counts a step if asked to.
/// RESULT_OK if the object stays.
Result FinishDeletion(const std::string& path, int error, StepCount counted)
{
    if (error != 0 && ReportDeleteFailure(path, error) == RESULT_CANCEL) {
        return RESULT_CANCEL;
    }
    NoteChange();
    const Result progress = counted == STEP_COUNTED ? ReportStep() : RESULT_DONE;
    return progress != RESULT_DONE ? progress : error != 0 ? RESULT_OK : RESULT_DONE;
}

/// Ends the deletion after a failed look-up. RESULT_DONE if the object is already gone; after any
/// other error it may still exist.
Result FinishUnlessGone(const std::string& path, int error, StepCount counted)
{
    return error == ENOENT || error == ENOTDIR ? RESULT_DONE : FinishDeletion(path, error, counted);
}

Result RemoveObject(const Place& place, bool is_directory, StepCount counted)
{
    const int flags = is_directory ? AT_REMOVEDIR : 0;
    ExpectChange(place.directory);
    int error = CheckMayChange();
    if (error == 0 && unlinkat(place.directory, place.name.c_str(), flags) != 0 && errno != ENOENT) {
        error = errno;
    }
    return FinishDeletion(place.path, error, is_directory ? STEP_NOT_COUNTED : counted);
}

/// Asks whether to delete the contents of path, unless the user has agreed before. RESULT_DONE to
/// delete them, RESULT_OK to keep them, RESULT_CANCEL to stop.
Result AskBeforeEmptying(const std::string& path, Result* answer)
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
        return RESULT_OK;  // Keep this one, and ask again about the next.
    default:
        return RESULT_CANCEL;
    }
}

Result RemoveTree(const Place& place, Result* answer);

/// Deletes an entry of a directory. An entry whose path is too long is reported and stays.
Result RemoveEntry(const Place& place, Result* answer)
{
    if (place.path.size() <= kMaxPathBytes) {
        return RemoveTree(place, answer);
    }
    return FinishDeletion(place.path, ENAMETOOLONG, IsDirectory(place) ? STEP_NOT_COUNTED : STEP_COUNTED);
}

/// Deletes the contents of an open directory. RESULT_OK if something stays.
Result EmptyDirectory(DIR* stream, const std::string& path, Result* answer)
{
    std::vector<std::string> names;
    if (!ListEntries(stream, names)) {
        return FinishDeletion(path, errno, STEP_NOT_COUNTED);
    }
    bool something_stays = false;
    for (const std::string& name : names) {
        if (const Result asked = AskBeforeEmptying(path, answer); asked != RESULT_DONE) {
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
        return FinishUnlessGone(place.path, errno, STEP_COUNTED);
    }
    if (!S_ISDIR(st.st_mode)) {
        return RemoveObject(place, false, STEP_COUNTED);
    }
    const DirectoryStream stream = OpenDirectory(place);
    if (stream == nullptr) {
        return FinishUnlessGone(place.path, errno, STEP_NOT_COUNTED);
    }
    const Result emptied = EmptyDirectory(stream.get(), place.path, answer);
    return emptied != RESULT_DONE ? emptied : RemoveObject(place, true, STEP_NOT_COUNTED);
}

}  // namespace

Result RemoveFileInternal(const Place& place, StepCount counted)
{
    struct stat st = {};
    return ReadStatus(place, &st) ? RemoveObject(place, S_ISDIR(st.st_mode), counted)
                                  : FinishUnlessGone(place.path, errno, counted);
}

Result RemoveFileInternal(const std::string& path, StepCount counted)
{
    const PathPlace place(path);
    return place ? RemoveFileInternal(place.Get(), counted) : FinishUnlessGone(path, place.Error(), counted);
}

Result RemoveFile(const std::string& path, Result* answer)
{
    const PathPlace place(path);
    return place ? RemoveTree(place.Get(), answer) : FinishUnlessGone(path, place.Error(), STEP_COUNTED);
}
