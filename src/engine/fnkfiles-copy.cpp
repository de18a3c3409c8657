#include "engine/fnkfiles-copy.h"

#include <fcntl.h>
#include <limits.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "core/fnkfiles-newfile.h"
#include "core/fnkfiles-place.h"
#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-acl.h"
#include "engine/fnkfiles-content.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-directory.h"
#include "engine/fnkfiles-inside.h"
#include "engine/fnkfiles-report.h"
#include "engine/fnkfiles-sync.h"

namespace {

struct ObjectId {
    dev_t device;
    ino_t inode;
    bool operator==(const ObjectId&) const = default;
};

struct HashObjectId {
    std::size_t operator()(const ObjectId& id) const { return std::hash<ino_t>()(id.inode ^ (id.device << 40)); }
};

/// What the command of this thread has put in place. On a file system that ignores case, the next name
/// may lead to one of these, which must not be overwritten.
thread_local std::unordered_set<ObjectId, HashObjectId> made_by_command;

void NoteMade(const struct stat& st)
{
    made_by_command.insert({st.st_dev, st.st_ino});
}

/// What all objects of one item share.
struct Command {
    OperationKind kind;
    struct stat target_root;  ///< Status of the directory made for the item; zero until then.
};

/// One object that is copied or moved.
struct Transfer {
    const Command& command;
    Place source;
    Place target;
    struct stat st;  ///< Status of the source.
    /// The target did not exist, so the user was not asked. Do not overwrite what has appeared since.
    bool must_not_replace = false;
};

/// Sets error to an errno if it cannot tell, else to 0.
bool AreInSameDirectory(const Place& one, const Place& other, int* error)
{
    struct stat one_directory = {};
    struct stat other_directory = {};
    const bool known = fstat(one.directory, &one_directory) == 0 && fstat(other.directory, &other_directory) == 0;
    *error = known ? 0 : errno;
    return known && IsSameObject(one_directory, other_directory);
}

/// The errno with which deleting an object other than a directory would fail, else 0. Renaming over
/// the object fails in the same cases, but that errno does not tell which object is the cause.
int DeletionError(const Place& place, const struct stat& st)
{
    if (faccessat(place.directory, ".", W_OK | X_OK, AT_EACCESS) != 0) {
        return errno;
    }
    struct statx attributes = {};
    if (statx(place.directory, "", AT_EMPTY_PATH, 0, &attributes) == 0 &&
        (attributes.stx_attributes & STATX_ATTR_APPEND) != 0) {
        return EPERM;
    }
    struct stat directory = {};
    const uid_t user = geteuid();
    const bool is_sticky = fstat(place.directory, &directory) == 0 && (directory.st_mode & S_ISVTX) != 0;
    return is_sticky && user != 0 && user != st.st_uid && user != directory.st_uid ? EPERM : 0;
}

/// Makes way for an object at its target. Deletes an empty directory there, and creates it again
/// unless Commit is called. Any other object stays until it is replaced. The constructor reports an
/// object that cannot be removed.
class ClearedTarget {
public:
    explicit ClearedTarget(const Transfer& transfer) : target_(transfer.target)
    {
        const Place& target = transfer.target;
        must_replace_ = !transfer.must_not_replace && ReadStatus(target, &st_);
        if (!must_replace_) {
            return;
        }
        if (!IsSameObject(st_, transfer.st) && made_by_command.contains({st_.st_dev, st_.st_ino})) {
            is_own_ = true;
        } else if (S_ISDIR(st_.st_mode)) {
            result_ = RemoveFileInternal(target, STEP_NOT_COUNTED);
            must_replace_ = false;
            must_restore_ = result_ == RESULT_DONE;
        } else if (const int error = DeletionError(target, st_); error != 0) {
            result_ = ReportDeleteFailure(target.path, error);
        }
    }
    ClearedTarget(const ClearedTarget&) = delete;
    ClearedTarget& operator=(const ClearedTarget&) = delete;
    ~ClearedTarget()
    {
        if (must_restore_ && mkdirat(target_.directory, target_.name.c_str(), st_.st_mode & kPermissionBits) == 0) {
            // If this fails as well, nothing more can be done.
            std::ignore =
                fchmodat(target_.directory, target_.name.c_str(), st_.st_mode & kPermissionBits, AT_SYMLINK_NOFOLLOW);
        }
    }

    /// RESULT_DONE, or the user's answer after a reported failure.
    Result RemovalResult() const { return result_; }
    /// Whether the command itself has put there what is there.
    bool IsOwn() const { return is_own_; }
    /// Whether an object is still there and must be replaced atomically.
    bool MustReplace() const { return must_replace_; }
    const struct stat& Status() const { return st_; }
    /// Call it once the new object is in place.
    void Commit() { must_restore_ = false; }

private:
    const Place& target_;
    struct stat st_ = {};
    bool must_replace_ = false;
    bool must_restore_ = false;
    bool is_own_ = false;
    Result result_ = RESULT_DONE;
};

/// Reports a step and returns result, or RESULT_CANCEL if the user pressed Cancel.
Result StepAndReturn(Result result)
{
    return ReportStep() == RESULT_CANCEL ? RESULT_CANCEL : result;
}

/// Ends the transfer of an object that is now in place; made is its status.
Result Finish(ClearedTarget& cleared, const struct stat& made)
{
    cleared.Commit();
    NoteMade(made);
    NoteChange();
    return ReportStep();
}

/// Makes a copy of the source link at the target. 0 or an errno.
int MakeLink(const Transfer& transfer, bool replace)
{
    char text[PATH_MAX];
    const ssize_t length = readlinkat(transfer.source.directory, transfer.source.name.c_str(), text, sizeof text);
    if (length < 0) {
        return errno;
    }
    ExpectChange(transfer.target.directory);
    if (const int error = CheckMayChange(); error != 0) {
        return error;
    }
    const std::string link(text, static_cast<std::size_t>(length));
    if (replace) {
        return ReplaceByLink(transfer.target.directory, transfer.target.name, link, CheckMayChange);
    }
    return symlinkat(link.c_str(), transfer.target.directory, transfer.target.name.c_str()) == 0 ? 0 : errno;
}

Result CopyLink(const Transfer& transfer, ClearedTarget& cleared)
{
    const int error = MakeLink(transfer, cleared.MustReplace());
    struct stat made = {};
    if (error != 0) {
        return FileErrorMessage(OPERATION_COPY, transfer.target.path, error);
    }
    static_cast<void>(ReadStatus(transfer.target, &made));
    return Finish(cleared, made);
}

/// The file to copy from; not open if there is no content to copy.
struct Source {
    Descriptor file;
    struct stat st;
    int error = 0;
};

/// Opens only regular files: a pipe would block, and opening a device may have side effects.
Source OpenSource(const Transfer& transfer)
{
    Source source{{}, transfer.st};
    if (!S_ISREG(transfer.st.st_mode)) {
        return source;
    }
    source.file = Descriptor(openat(transfer.source.directory, transfer.source.name.c_str(),
                                    O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!source.file) {
        // An empty file can be copied without permission to read it.
        source.error = transfer.st.st_size == 0 && errno == EACCES ? 0 : errno;
        return source;
    }
    if (fstat(source.file.Get(), &source.st) != 0) {
        source.error = errno;
    } else if (!S_ISREG(source.st.st_mode)) {
        source.file = Descriptor();  // The file was replaced meanwhile.
    }
    return source;
}

/// The permission bits of a copy. Set-id bits would lend the rights of another user to the program.
mode_t CopiedMode(const struct stat& source, const struct stat& made)
{
    const mode_t mode = source.st_mode & kPermissionBits;
    if (made.st_uid != source.st_uid) {
        return mode & ~static_cast<mode_t>(S_ISUID | S_ISGID);
    }
    return made.st_gid == source.st_gid ? mode : mode & ~static_cast<mode_t>(S_ISGID);
}

/// Gives the complete file the source's permission bits and its final name, and reads its status. 0 or an
/// errno.
int Publish(NewFile& file, const Source& source, const std::string& name, bool replace, struct stat* made)
{
    if (fstat(file.Get(), made) != 0) {
        return errno;
    }
    const mode_t mode = CopiedMode(source.st, *made);
    // Some file systems store no permission bits, so ignore failures.
    static_cast<void>(fchmod(file.Get(), source.file ? CopyAcl(source.file.Get(), file.Get(), mode) : mode));
    // An old file must stay until the new one would survive a crash.
    if (replace && fdatasync(file.Get()) != 0) {
        return errno;
    }
    int error = CheckMayChange();
    if (error == 0 && replace) {
        error = file.Prepare();
    }
    error = error != 0 ? error : CheckMayChange();
    if (error != 0) {
        return error;
    }
    return replace ? file.CommitOver(name) : file.CommitAs(name);
}

Result CopyRegular(const Transfer& transfer, ClearedTarget& cleared)
{
    const Source source = OpenSource(transfer);
    if (source.error != 0) {
        return FileErrorMessage(OPERATION_COPY, transfer.source.path, source.error);
    }
    NewFile file(transfer.target.directory);
    int error = file.Error();
    ExpectChange(transfer.target.directory, file ? file.Get() : -1);
    if (file && source.file) {
        switch (CopyContent(source.file.Get(), source.st, file.Get(), &error)) {
        case CONTENT_CANCELLED:
            return RESULT_CANCEL;
        case CONTENT_READ_FAILED:
            return FileErrorMessage(OPERATION_COPY, transfer.source.path, error);
        case CONTENT_WRITE_FAILED:
        case CONTENT_COPIED:
            break;
        }
    }
    struct stat made = {};
    if (error == 0) {
        error = Publish(file, source, transfer.target.name, cleared.MustReplace(), &made);
    }
    return error == 0 ? Finish(cleared, made) : FileErrorMessage(OPERATION_COPY, transfer.target.path, error);
}

/// Whether the directory of both places lists both names. If the file system ignores case, two names
/// may be one entry.
bool HaveSeparateEntries(const Place& one, const Place& other)
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

/// Whether source and target are hard links to one file. rename() then succeeds without effect, so
/// the old name has to be removed instead. If both names are one entry, because the file system
/// ignores case, removing it would lose the file.
bool IsNoOpRename(const Transfer& transfer, const ClearedTarget& cleared, bool in_same_directory)
{
    return cleared.MustReplace() && IsSameObject(transfer.st, cleared.Status()) && transfer.st.st_nlink > 1 &&
           (!in_same_directory || HaveSeparateEntries(transfer.source, transfer.target));
}

/// Moves one object within its file system. 0 or an errno.
int Rename(const Transfer& transfer, const ClearedTarget& cleared, bool in_same_directory)
{
    const Place& source = transfer.source;
    const Place& target = transfer.target;
    const bool is_no_op = IsNoOpRename(transfer, cleared, in_same_directory);
    ExpectChange(target.directory);
    if (const int error = CheckMayChange(); error != 0) {
        return error;
    }
    if (!cleared.MustReplace()) {
        return RenameIfFree(source, target);
    }
    if (is_no_op) {
        return unlinkat(source.directory, source.name.c_str(), 0) == 0 ? 0 : errno;
    }
    return renameat(source.directory, source.name.c_str(), target.directory, target.name.c_str()) == 0 ? 0 : errno;
}

/// Copies an object other than a directory, or renames any object. A directory is renamed only if
/// its target does not exist.
Result TransferWhole(const Transfer& transfer)
{
    const OperationKind kind = transfer.command.kind;
    const std::string target_path = WithoutSlash(transfer.target.path);
    int error = 0;
    const bool in_same_directory = AreInSameDirectory(transfer.source, transfer.target, &error);
    if (error != 0) {
        return FileErrorMessage(kind, target_path, error);
    }
    if (in_same_directory && transfer.source.name == transfer.target.name) {
        return ReportStep();
    }
    ClearedTarget cleared(transfer);
    if (cleared.IsOwn()) {
        return FileErrorMessage(kind, target_path, EEXIST);
    }
    if (cleared.RemovalResult() != RESULT_DONE) {
        return StepAndReturn(cleared.RemovalResult());
    }
    if (kind == OPERATION_COPY) {
        return S_ISLNK(transfer.st.st_mode) ? CopyLink(transfer, cleared) : CopyRegular(transfer, cleared);
    }
    error = Rename(transfer, cleared, in_same_directory);
    return error == 0 ? Finish(cleared, transfer.st) : FileErrorMessage(kind, target_path, error);
}

Result TransferEntry(const Command& command, const Place& source, const Place& target);

/// Copies or moves the entries of a directory into the open target directory.
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
        // When a move has to leave an entry behind, the rest of the directory stays with it.
        if (result == RESULT_CANCEL || (transfer.command.kind == OPERATION_MOVE && result != RESULT_DONE)) {
            return result;
        }
    }
    return RESULT_DONE;
}

/// Copies the permission bits of a directory to the open target directory, and copies or moves the
/// contents there. Removes the source after a complete move.
Result TransferContents(const Transfer& transfer, const Descriptor& directory)
{
    const DirectoryStream stream = OpenDirectory(transfer.source);
    const int error = stream == nullptr ? errno : 0;
    const Descriptor target(openat(directory.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const mode_t mode = transfer.st.st_mode;
    SetDirectoryMode(directory, stream != nullptr && target ? CopyAcl(dirfd(stream.get()), target.Get(), mode) : mode);
    if (error != 0) {
        return FileErrorMessage(transfer.command.kind, transfer.source.path, error);
    }
    const Result result = TransferEntries(transfer, stream.get(), directory);
    if (result == RESULT_DONE && transfer.command.kind == OPERATION_MOVE) {
        RemoveFileInternal(transfer.source, STEP_NOT_COUNTED);
    }
    return OnEngine.IsCancelled() ? RESULT_CANCEL : result;
}

/// Whether TransferWhole can handle the source; otherwise its entries are transferred one by one.
bool IsTransferredWhole(const Transfer& transfer)
{
    struct stat st = {};
    return !S_ISDIR(transfer.st.st_mode) ||
           (transfer.command.kind == OPERATION_MOVE && !ReadStatus(transfer.target, &st));
}

/// Copying a directory into itself would never end.
void ReportTargetInsideSource()
{
    OnEngine.MessageBox(_("Error"), _("Cannot move to a sub directory."), STYLE_ERROR);
}

Result ReportMissing(const std::string& path)
{
    OnEngine.MessageBox(_("Error"), FormatPathMessage(_("%s does not exist."), path), STYLE_ERROR);
    return ReportStep();
}

/// Copies or moves an entry of a directory, with its contents.
Result TransferEntry(const Command& command, const Place& source, const Place& target)
{
    Transfer transfer{command, source, target, {}, false};
    for (const Place& place : {source, target}) {
        if (place.path.size() > kMaxPathBytes) {
            return FileErrorMessage(command.kind, place.path, ENAMETOOLONG);
        }
    }
    if (!ReadStatus(source, &transfer.st)) {
        return ReportMissing(source.path);
    }
    if (IsTransferredWhole(transfer)) {
        return TransferWhole(transfer);
    }
    struct stat there = {};
    if (ReadStatus(target, &there) && IsSameObject(there, transfer.st)) {
        return ReportStep();  // A bind mount shows the same directory in both places.
    }
    if (IsSameObject(transfer.st, command.target_root)) {
        ReportTargetInsideSource();
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
    OVERWRITE_ALLOWED,    ///< By the settings or by an earlier item.
    OVERWRITE_CONFIRMED,  ///< By the user.
    OVERWRITE_DECLINED,
    OVERWRITE_NOT_NEEDED,  ///< Nothing exists at the target.
    OVERWRITE_UNKNOWN,     ///< What exists there cannot be seen; errno says why.
};

Overwriting ConfirmOverwrite(const std::string& target, const int* flag)
{
    if (!pGTable->ConfilmOverwrite || *flag != 0) {
        return OVERWRITE_ALLOWED;
    }
    struct stat st = {};
    if (lstat(target.c_str(), &st) != 0) {
        return errno == ENOENT || errno == ENOTDIR ? OVERWRITE_NOT_NEEDED : OVERWRITE_UNKNOWN;
    }
    return AskToOverwrite(target) ? OVERWRITE_CONFIRMED : OVERWRITE_DECLINED;
}

/// Copies or moves a directory to target, which is destination or inside it.
Result TransferDirectory(OperationKind kind, const PathPlace& source, const struct stat& st, const std::string& target,
                         const std::string& destination, LinkRule rule)
{
    Descriptor directory;
    switch (const Result made = CreateDirectoryEx(target + "/", destination, rule, &directory)) {
    case RESULT_DONE: {
        Command command{kind, {}};
        const PathPlace target_place(target);
        return fstat(directory.Get(), &command.target_root) == 0
                   ? TransferContents({command, source.Get(), target_place.Get(), st, false}, directory)
                   : FileErrorMessage(kind, target, errno);
    }
    case RESULT_OK:
        return ReportStep();
    default:
        return made;
    }
}

/// destination without its "/", so that lstat does not follow a link. RootDir keeps its "/": even if
/// it is a link, the user sees it as a directory.
std::string DestinationPath(const std::string& destination)
{
    return IsRootDirectory(destination) ? pGTable->RootDir : WithoutSlash(destination);
}

/// The path to which source goes, without a "/" at the end: inside destination if into_directory is
/// set, else destination itself.
std::string ProofDstPath(const std::string& destination, const std::string& source, bool into_directory)
{
    return WithoutSlash(into_directory ? WithSlash(destination) + GetLastPath(source) : destination);
}

/// Copies or moves one item of a command.
Result TransferItem(OperationKind kind, const std::string& destination, const std::string& source, int* flag)
{
    if (destination.empty() || source.empty() || flag == nullptr) {
        return RESULT_NO_ARGUMENT;
    }
    if (*flag == 0) {
        made_by_command.clear();  // No item has gone ahead yet.
    }
    if (destination == source) {
        return ReportStep();
    }
    const PathPlace source_place(source);
    struct stat st = {};
    if (!source_place || !ReadStatus(source_place.Get(), &st)) {
        return ReportMissing(source);
    }
    struct stat destination_st = {};
    const bool exists = lstat(DestinationPath(destination).c_str(), &destination_st) == 0;
    if (!exists && errno != ENOENT && errno != ENOTDIR && errno != ENAMETOOLONG) {
        return FileErrorMessage(kind, destination, errno);  // It may still be a directory.
    }
    const bool is_directory = exists && S_ISDIR(destination_st.st_mode);
    if (!is_directory && destination.ends_with('/') && !S_ISDIR(st.st_mode)) {
        // The directory may have vanished. Each of several files would then replace the one before.
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
    if (overwriting == OVERWRITE_UNKNOWN) {
        return FileErrorMessage(kind, target, errno);
    }
    const PathPlace target_place = is_directory ? PathPlace(target, DestinationPath(destination)) : PathPlace(target);
    const Command command{kind, {}};
    const Transfer transfer{command, source_place.Get(), target_place.Get(), st, overwriting == OVERWRITE_NOT_NEEDED};
    if (!IsTransferredWhole(transfer)) {
        // RootDir may be a link. Passing target lets CreateDirectoryEx follow it.
        const std::string& kept = IsRootDirectory(destination) ? target : destination;
        return TransferDirectory(kind, source_place, st, target, kept,
                                 overwriting == OVERWRITE_CONFIRMED ? LINK_REPLACE : LINK_ASK);
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
    *error = is_directory ? CheckIsInside(target, source, &is_inside) : 0;
    if (is_inside) {
        ReportTargetInsideSource();
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
