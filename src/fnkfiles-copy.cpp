#include "fnkfiles-copy.h"

#include <fcntl.h>
#include <limits.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <tuple>
#include <vector>

#include "fnkfiles-content.h"
#include "fnkfiles-delete.h"
#include "fnkfiles-directory.h"
#include "fnkfiles-inside.h"
#include "fnkfiles-newfile.h"
#include "fnkfiles-place.h"
#include "fnkfiles-sync.h"
#include "fnkstring.h"
#include "fnkutil.h"

namespace {

/// What the objects of an item have in common.
struct Command {
    OperationKind kind;
    struct stat made;  ///< The directory that stands for the whole item at its target, once it is there.
};

/// One object on its way.
struct Transfer {
    const Command& command;
    Place source;
    Place target;
    struct stat st;  ///< Of the source.
    /// Nobody was asked, because nothing was there: what appears meanwhile is not to be overwritten.
    bool to_free_name = false;
};

/// Sets error to an errno when that cannot be told.
bool AreInOneDirectory(const Place& one, const Place& other, int* error)
{
    struct stat one_directory = {};
    struct stat other_directory = {};
    const bool known = fstat(one.directory, &one_directory) == 0 && fstat(other.directory, &other_directory) == 0;
    *error = known ? 0 : errno;
    return known && IsSameObject(one_directory, other_directory);
}

/// What deleting the object, no directory, would fail with; 0 when it would not. Renaming over it
/// fails alike, but does not say on whose account.
int DeletionError(const Place& place, const struct stat& st)
{
    if (faccessat(place.directory, ".", W_OK | X_OK, AT_EACCESS) != 0) {
        return errno;
    }
    struct stat directory = {};
    const uid_t user = geteuid();
    const bool is_sticky = fstat(place.directory, &directory) == 0 && (directory.st_mode & S_ISVTX) != 0;
    return is_sticky && user != 0 && user != st.st_uid && user != directory.st_uid ? EPERM : 0;
}

/// Makes way for a file or link at a target. An empty directory that goes for it comes back if
/// nothing takes its place.
class ClearedTarget {
public:
    explicit ClearedTarget(const Transfer& transfer) : target_(transfer.target)
    {
        const Place& target = transfer.target;
        exists_ = !transfer.to_free_name && GetStatus(target, &st_);
        if (!exists_) {
            return;
        }
        if (S_ISDIR(st_.st_mode)) {
            result_ = RemoveFileInternal(target, STEP_NOT_COUNTED);
            exists_ = false;
            removed_ = result_ == RESULT_DONE;
        } else if (const int error = DeletionError(target, st_); error != 0) {
            result_ = ReportUndeleted(target.path, error);
        }
    }
    ClearedTarget(const ClearedTarget&) = delete;
    ClearedTarget& operator=(const ClearedTarget&) = delete;
    ~ClearedTarget()
    {
        if (removed_ && mkdirat(target_.directory, target_.name.c_str(), st_.st_mode & 07777) == 0) {
            // Nothing is left to do where even this fails; hardened builds want that said.
            std::ignore = fchmodat(target_.directory, target_.name.c_str(), st_.st_mode & 07777, AT_SYMLINK_NOFOLLOW);
        }
    }

    /// RESULT_DONE, or that the user was told that it cannot be deleted.
    Result Refusal() const { return result_; }
    /// Whether there is something that is to be replaced in one step.
    bool Exists() const { return exists_; }
    const struct stat& Status() const { return st_; }
    void Taken() { removed_ = false; }

private:
    const Place& target_;
    struct stat st_ = {};
    bool exists_ = false;
    bool removed_ = false;
    Result result_ = RESULT_DONE;
};

/// A step that came to that result, unless Cancel was pressed.
Result StepAndReturn(Result result)
{
    return ReportStep() == RESULT_CANCEL ? RESULT_CANCEL : result;
}

/// The new object stands.
Result Finish(ClearedTarget& cleared)
{
    cleared.Taken();
    NoteChange();
    return ReportStep();
}

int MakeLink(const Transfer& transfer, bool replace)
{
    char text[PATH_MAX];
    const ssize_t length = readlinkat(transfer.source.directory, transfer.source.name.c_str(), text, sizeof text);
    if (length < 0) {
        return errno;
    }
    const std::string link(text, static_cast<std::size_t>(length));
    if (replace) {
        return ReplaceByLink(transfer.target.directory, transfer.target.name, link);
    }
    return symlinkat(link.c_str(), transfer.target.directory, transfer.target.name.c_str()) == 0 ? 0 : errno;
}

Result CopyLink(const Transfer& transfer, ClearedTarget& cleared)
{
    const int error = MakeLink(transfer, cleared.Exists());
    return error == 0 ? Finish(cleared) : FileErrorMessage(OPERATION_COPY, transfer.target.path, error);
}

/// The source's content, opened, or nothing where there is none to be copied.
struct Source {
    Descriptor file;
    struct stat st;
    int error = 0;
};

/// Only regular files are opened: a pipe would wait for its other end, a device might act.
Source OpenSource(const Transfer& transfer)
{
    Source source{{}, transfer.st};
    if (!S_ISREG(transfer.st.st_mode)) {
        return source;
    }
    source.file = Descriptor(openat(transfer.source.directory, transfer.source.name.c_str(),
                                    O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!source.file) {
        // There is nothing in it that would have to be read.
        source.error = transfer.st.st_size == 0 && errno == EACCES ? 0 : errno;
        return source;
    }
    if (fstat(source.file.Get(), &source.st) != 0) {
        source.error = errno;
    } else if (!S_ISREG(source.st.st_mode)) {
        source.file = Descriptor();  // It has been exchanged meanwhile.
    }
    return source;
}

/// Gives the complete file the source's bits and the target's name. 0 or an errno.
int Publish(NewFile& file, const Source& source, const std::string& name, bool replace)
{
    // Where the file system keeps no such bits the file has those of all files there.
    static_cast<void>(fchmod(file.Get(), source.st.st_mode & 07777));
    if (!replace) {
        return file.TakeName(name);
    }
    // What is replaced must not be gone before the new one is safe from a failing machine.
    const int error = WriteOut(file.Get());
    return error != 0 ? error : file.TakeNameOf(name);
}

Result CopyRegular(const Transfer& transfer, ClearedTarget& cleared)
{
    const Source source = OpenSource(transfer);
    if (source.error != 0) {
        return FileErrorMessage(OPERATION_COPY, transfer.source.path, source.error);
    }
    NewFile file(transfer.target.directory);
    int error = file.Error();
    if (file && source.file) {
        switch (CopyContent(source.file.Get(), source.st, file.Get(), &error)) {
        case CONTENT_CANCELLED:
            return RESULT_CANCEL;
        case CONTENT_NOT_READ:
            return FileErrorMessage(OPERATION_COPY, transfer.source.path, error);
        case CONTENT_NOT_WRITTEN:
        case CONTENT_COPIED:
            break;
        }
    }
    if (error == 0) {
        error = Publish(file, source, transfer.target.name, cleared.Exists());
    }
    return error == 0 ? Finish(cleared) : FileErrorMessage(OPERATION_COPY, transfer.target.path, error);
}

/// Whether the directory of both places has an entry for each, and not one for two spellings of it.
bool HasEntryForEach(const Place& one, const Place& other)
{
    const std::string itself = ".";
    std::vector<std::string> names;
    const DirectoryStream stream = OpenDirectory({one.directory, itself, one.path});
    if (stream == nullptr || !ListEntries(stream.get(), names)) {
        return strcasecmp(one.name.c_str(), other.name.c_str()) != 0;
    }
    return std::find(names.begin(), names.end(), one.name) != names.end() &&
           std::find(names.begin(), names.end(), other.name) != names.end();
}

/// Two names of one inode: renaming the one to the other does nothing, so the old name is removed.
/// A file system that ignores case finds one entry under two names, and that must stay.
bool LeavesOldName(const Transfer& transfer, const ClearedTarget& cleared, bool in_one_directory)
{
    return cleared.Exists() && IsSameObject(transfer.st, cleared.Status()) && transfer.st.st_nlink > 1 &&
           (!in_one_directory || HasEntryForEach(transfer.source, transfer.target));
}

/// 0 or an errno.
int Rename(const Transfer& transfer, const ClearedTarget& cleared, bool in_one_directory)
{
    const Place& source = transfer.source;
    const Place& target = transfer.target;
    if (!cleared.Exists()) {
        return RenameIfFree(source, target);
    }
    if (LeavesOldName(transfer, cleared, in_one_directory)) {
        return unlinkat(source.directory, source.name.c_str(), 0) == 0 ? 0 : errno;
    }
    return renameat(source.directory, source.name.c_str(), target.directory, target.name.c_str()) == 0 ? 0 : errno;
}

/// Copies anything but a directory, or renames one object, a directory only to a free name.
Result TransferWhole(const Transfer& transfer)
{
    const OperationKind kind = transfer.command.kind;
    const std::string target_path = WithoutSlash(transfer.target.path);
    int error = 0;
    const bool in_one_directory = AreInOneDirectory(transfer.source, transfer.target, &error);
    if (error != 0) {
        return FileErrorMessage(kind, target_path, error);
    }
    if (in_one_directory && transfer.source.name == transfer.target.name) {
        return ReportStep();
    }
    ClearedTarget cleared(transfer);
    if (cleared.Refusal() != RESULT_DONE) {
        return StepAndReturn(cleared.Refusal());
    }
    if (kind == OPERATION_COPY) {
        return S_ISLNK(transfer.st.st_mode) ? CopyLink(transfer, cleared) : CopyRegular(transfer, cleared);
    }
    error = Rename(transfer, cleared, in_one_directory);
    return error == 0 ? Finish(cleared) : FileErrorMessage(kind, target_path, error);
}

Result TransferEntry(const Command& command, const Place& source, const Place& target);

/// Copies or moves every entry of a directory into the open one that stands for it at the target.
Result TransferEntries(const Transfer& transfer, DIR* stream, const Descriptor& directory)
{
    std::vector<std::string> names;
    if (!ListEntries(stream, names)) {
        return FileErrorMessage(transfer.command.kind, transfer.source.path, errno);
    }
    for (const std::string& name : names) {
        std::string source_path = WithSlash(transfer.source.path) + name;
        std::string target_path = WithSlash(transfer.target.path) + name;
        if (IsDirectory({dirfd(stream), name, source_path})) {
            source_path += '/';
            target_path += '/';
        }
        const Result result =
            TransferEntry(transfer.command, {dirfd(stream), name, source_path}, {directory.Get(), name, target_path});
        // A move that had to leave something behind leaves the rest of the directory with it.
        if (result == RESULT_CANCEL || (transfer.command.kind == OPERATION_MOVE && result != RESULT_DONE)) {
            return result;
        }
    }
    return RESULT_DONE;
}

/// Copies or moves what is in a directory into the open one, which it makes its like.
Result TransferContents(const Transfer& transfer, const Descriptor& directory)
{
    SetDirectoryMode(directory, transfer.st.st_mode);
    const DirectoryStream stream = OpenDirectory(transfer.source);
    if (stream == nullptr) {
        return FileErrorMessage(transfer.command.kind, transfer.source.path, errno);
    }
    const Result result = TransferEntries(transfer, stream.get(), directory);
    if (result == RESULT_DONE && transfer.command.kind == OPERATION_MOVE) {
        RemoveFileInternal(transfer.source, STEP_NOT_COUNTED);
    }
    return KeepPainting() ? RESULT_CANCEL : result;
}

/// Whether the source is dealt with by itself, not entry by entry.
bool GoesWhole(const Transfer& transfer)
{
    struct stat st = {};
    return !S_ISDIR(transfer.st.st_mode) ||
           (transfer.command.kind == OPERATION_MOVE && !GetStatus(transfer.target, &st));
}

/// A directory would go into itself, and then on for ever.
void ReportInside()
{
    MessageBox(_("Error"), _("Cannot move to a sub directory."), STYLE_ERROR);
}

Result ReportMissing(const std::string& path)
{
    MessageBox(_("Error"), FormatPathMessage(_("%s does not exist."), path), STYLE_ERROR);
    return ReportStep();
}

/// An entry of a directory that is being copied or moved.
Result TransferEntry(const Command& command, const Place& source, const Place& target)
{
    Transfer transfer{command, source, target, {}, false};
    for (const Place& place : {source, target}) {
        if (place.path.size() > kMaxPathBytes) {
            return FileErrorMessage(command.kind, place.path, ENAMETOOLONG);
        }
    }
    if (!GetStatus(source, &transfer.st)) {
        return ReportMissing(source.path);
    }
    if (GoesWhole(transfer)) {
        return TransferWhole(transfer);
    }
    struct stat there = {};
    if (GetStatus(target, &there) && IsSameObject(there, transfer.st)) {
        return ReportStep();  // A mount shows one directory in both places.
    }
    if (IsSameObject(transfer.st, command.made)) {
        ReportInside();
        return ReportStep();
    }
    const std::string target_name = WithoutSlash(target.path);
    Descriptor directory;
    switch (const Result made = MakeDirectory({target.directory, target.name, target_name}, LINK_ASK, &directory)) {
    case RESULT_DONE:
        return TransferContents(transfer, directory);
    case RESULT_OK:
        return ReportStep();
    default:
        return made;
    }
}

enum Overwriting {
    OVERWRITE_ALLOWED,  ///< By the settings, or by an item before.
    OVERWRITE_AGREED,   ///< The user was asked.
    OVERWRITE_DECLINED,
    OVERWRITE_NOTHING,  ///< Nothing is there.
};

Overwriting ConfirmOverwrite(const std::string& target, const int* flag)
{
    if (!pGTable->ConfilmOverwrite || *flag != 0) {
        return OVERWRITE_ALLOWED;
    }
    struct stat st = {};
    if (lstat(target.c_str(), &st) != 0 && (errno == ENOENT || errno == ENOTDIR)) {
        return OVERWRITE_NOTHING;
    }
    return AskToOverwrite(target) ? OVERWRITE_AGREED : OVERWRITE_DECLINED;
}

/// A directory that is to be at target, below or at destination.
Result TransferDirectory(OperationKind kind, const PathPlace& source, const struct stat& st, const std::string& target,
                         const std::string& destination, LinkRule rule)
{
    Descriptor directory;
    switch (const Result made = CreateDirectoryEx(target + "/", destination, rule, &directory)) {
    case RESULT_DONE: {
        Command command{kind, {}};
        const PathPlace target_place(target);
        return fstat(directory.Get(), &command.made) == 0
                   ? TransferContents({command, source.Get(), target_place.Get(), st, false}, directory)
                   : FileErrorMessage(kind, target, errno);
    }
    case RESULT_OK:
        return ReportStep();
    default:
        return made;
    }
}

/// A link at the end is not followed, but for that of the root: it stands for the directory that
/// the user sees as the top of everything.
std::string PlaceOfDestination(const std::string& destination)
{
    return IsRootDirectory(destination) ? pGTable->RootDir : WithoutSlash(destination);
}

/// Where source goes: into destination when that is a directory, else to that very name. Without a
/// "/" at the end.
std::string ProofDstPath(const std::string& destination, const std::string& source, bool into_directory)
{
    return WithoutSlash(into_directory ? WithSlash(destination) + GetLastPath(source) : destination);
}

/// An item of a command.
Result TransferItem(OperationKind kind, const std::string& destination, const std::string& source, int* flag)
{
    if (destination.empty() || source.empty() || flag == nullptr) {
        return RESULT_NO_ARGUMENT;
    }
    if (destination == source) {
        return ReportStep();
    }
    const PathPlace source_place(source);
    struct stat st = {};
    if (!source_place || !GetStatus(source_place.Get(), &st)) {
        return ReportMissing(source);
    }
    struct stat destination_st = {};
    const bool exists = lstat(PlaceOfDestination(destination).c_str(), &destination_st) == 0;
    if (!exists && errno != ENOENT && errno != ENOTDIR && errno != ENAMETOOLONG) {
        return FileErrorMessage(kind, destination, errno);  // Better than to take a directory for none.
    }
    const bool is_directory = exists && S_ISDIR(destination_st.st_mode);
    if (!is_directory && destination.ends_with('/') && !S_ISDIR(st.st_mode)) {
        // Of several items, each would replace the one before under the name of what has gone.
        return FileErrorMessage(kind, destination, exists ? ENOTDIR : ENOENT);
    }
    const std::string target = ProofDstPath(destination, source, is_directory);
    if (target.size() > kMaxPathBytes) {
        return FileErrorMessage(kind, target, ENAMETOOLONG);
    }
    if (int error = 0; CheckSrcSubDirectory(target, source, st.st_mode, &error) != RESULT_DONE) {
        return error != 0 ? FileErrorMessage(kind, target, error) : ReportStep();
    }
    const Overwriting overwriting = ConfirmOverwrite(target, flag);
    if (overwriting == OVERWRITE_DECLINED) {
        return ReportStep();
    }
    *flag = 1;
    const PathPlace target_place =
        is_directory ? PathPlace(target, PlaceOfDestination(destination)) : PathPlace(target);
    const Command command{kind, {}};
    const Transfer transfer{command, source_place.Get(), target_place.Get(), st, overwriting == OVERWRITE_NOTHING};
    if (!GoesWhole(transfer)) {
        const std::string& kept = IsRootDirectory(destination) ? target : destination;
        return TransferDirectory(kind, source_place, st, target, kept,
                                 overwriting == OVERWRITE_AGREED ? LINK_REPLACE : LINK_ASK);
    }
    return target_place ? TransferWhole(transfer) : FileErrorMessage(kind, target, target_place.Error());
}

}  // namespace

Result CheckSrcSubDirectory(const std::string& target, const std::string& source, mode_t mode, int* error)
{
    struct stat source_st = {};
    struct stat target_st = {};
    const bool is_directory = S_ISDIR(mode);
    const bool is_same_directory = is_directory && lstat(WithoutSlash(source).c_str(), &source_st) == 0 &&
                                   lstat(target.c_str(), &target_st) == 0 && IsSameObject(source_st, target_st);
    if (target == source || target == WithoutSlash(source) || is_same_directory) {
        return RESULT_CANCEL;
    }
    bool is_inside = false;
    *error = is_directory ? LookInside(target, source, &is_inside) : 0;
    if (is_inside) {
        ReportInside();
    }
    return is_inside || *error != 0 ? RESULT_CANCEL : RESULT_DONE;
}

Result CopyFile(const std::string& destination, const std::string& source, int* flag)
{
    return TransferItem(OPERATION_COPY, destination, source, flag);
}

Result MoveFile(const std::string& destination, const std::string& source, int* flag)
{
    return TransferItem(OPERATION_MOVE, destination, source, flag);
}
