// The same commands while the system fails them, the disk is full, or the process dies under them.
// What was there before may only be gone if the command was to replace or delete it; no content is
// cut or mixed, no temporary stays behind, and nothing is left undone without a word.

#include "faults.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <functional>
#include <set>

#include "disk.h"
#include "core/fnkfiles-settings.h"
#include "engine/fnkfiles-sync.h"
#include "modes.h"
#include "scratch.h"

namespace {

constexpr const char* kTemporary = ".fennick-";

struct CallErrors {
    const char* call;
    std::vector<int> errors;
};

/// What the calls may really fail with. That a thing that is there were not is no failure but a lie.
const std::vector<int>& PlausibleErrors(const std::string& call)
{
    static const std::vector<CallErrors> kErrors = {
        {"pwrite", {ENOSPC, EIO, EDQUOT, EINTR, EFBIG}},
        {"pread", {EIO, EINTR}},
        {"copy_file_range", {ENOSPC, EXDEV, EINVAL, EIO}},
        {"lseek", {EINVAL, EIO}},
        {"ftruncate", {ENOSPC, EIO, EFBIG}},
        {"fdatasync", {EIO, ENOSPC, EDQUOT}},
        {"O_TMPFILE", {EACCES, ENOSPC, EMFILE, EROFS, EOPNOTSUPP}},
        {"linkat", {ENOSPC, EIO, EACCES, EMLINK, EEXIST}},
        {"symlinkat", {ENOSPC, EIO, EACCES, EPERM}},
        {"mkdirat", {ENOSPC, EIO, EACCES, EMLINK}},
        {"renameat", {EXDEV, EACCES, EBUSY, EIO, ENOSPC}},
        {"renameat2", {EXDEV, EACCES, EBUSY, EIO, ENOSPC, EINVAL}},
        {"unlinkat", {EACCES, EBUSY, EROFS, EIO}},
        {"chmod", {EPERM, EROFS, EIO}},
        {"fchmod", {EPERM, EROFS, EIO}},
        {"fchmodat", {EPERM, EROFS, EIO}},
        {"readdir", {EIO}},
    };
    static const std::vector<int> kOthers = {EIO, EACCES, ENOMEM};
    const auto known =
        std::find_if(kErrors.begin(), kErrors.end(), [&](const CallErrors& errors) { return call == errors.call; });
    return known != kErrors.end() ? known->errors : kOthers;
}

void CollectContents(const NodePointer& directory, std::set<std::string>& contents)
{
    for (const auto& [name, node] : directory->entries) {
        if (node->type == S_IFREG) {
            contents.insert(node->content);
        }
        CollectContents(node, contents);
    }
}

/// Takes the temporaries out of the tree, and says how many there were.
int TakeTemporaries(const NodePointer& directory)
{
    int found = 0;
    for (auto entry = directory->entries.begin(); entry != directory->entries.end();) {
        found += TakeTemporaries(entry->second);
        const bool is_temporary = entry->first.starts_with(kTemporary);
        found += is_temporary ? 1 : 0;
        entry = is_temporary ? directory->entries.erase(entry) : std::next(entry);
    }
    return found;
}

/// The same without what a failed chmod, a new object or a directory made anew may change.
std::string ComparePlainly(const NodePointer& model, const NodePointer& disk)
{
    const auto strip = [](const auto& self, const NodePointer& node) -> void {
        node->mode = 0;
        node->inode = 0;
        node->owner = 0;
        for (const auto& [name, child] : node->entries) {
            self(self, child);
        }
    };
    strip(strip, model);
    strip(strip, disk);
    return Compare(model, disk, "");
}

/// A path that means the same before and after the command must mean that whatever fails; but of
/// what is to go, more may go when something else does not come in between.
std::string CompareUntouched(const NodePointer& before, const NodePointer& after, const NodePointer& disk,
                             const NodePointer& going, const std::string& path)
{
    std::string differences;
    for (const auto& [name, node] : before->entries) {
        const auto later = after->entries.find(name);
        if (node == going || later == after->entries.end() || later->second->type != node->type ||
            later->second->content != node->content) {
            continue;
        }
        const auto there = disk->entries.find(name);
        const std::string inner = path + "/" + name;
        if (there == disk->entries.end() || there->second->type != node->type ||
            there->second->content != node->content) {
            differences += Printable(inner) + " is none of the command's\n";
        } else {
            differences += CompareUntouched(node, later->second, there->second, going, inner);
        }
    }
    return differences;
}

/// One command, and what is there before and after it when nothing fails.
class Rehearsal {
public:
    Rehearsal(std::uint64_t seed, std::string root_path)
        : root_path_(std::move(root_path)),
          random_(seed, root_path_, geteuid()),
          before_(random_.MakeTree()),
          after_(before_),
          command_(random_, before_)
    {
        // Of several, one may only be there, or be reached, because another failed.
        command_.sources.resize(std::min<std::size_t>(1, command_.sources.size()));
        command_.script = Answers();
        command_.script.to_messages = {RESULT_OK};
        command_.script.to_deletes = {RESULT_YES_ALL};
        faults.is_old_file_system = seed % 4 == 0;
        after_.root = before_.Clone();
        result_ = command_.RunModel(after_);
        asked_ = answers.asked;
        CollectContents(before_.root, contents_);
        contents_.insert("");  // Of pipes.
        CollectContents(after_.root, kept_);
    }

    bool IsUsable() const { return !after_.has_left_root; }
    Command& GetCommand() { return command_; }
    std::string Story() const { return Describe(before_.root, "") + command_.Describe(); }
    std::string DescribeDisk() const { return ::Describe(ReadDisk(root_path_), ""); }
    void Prepare() const
    {
        EmptyOnDisk(root_path_);
        MakeOnDisk(root_path_, before_.root);
    }

    /// What is wrong with the disk after the command failed somewhere.
    std::string Judge(int allowed_temporaries) const
    {
        const NodePointer disk = ReadDisk(root_path_);
        std::string wrong;
        if (TakeTemporaries(disk) > allowed_temporaries) {
            wrong += "Temporaries stay\n";
        }
        std::set<std::string> found;
        CollectContents(disk, found);
        for (const std::string& content : contents_) {
            if (kept_.count(content) > found.count(content) && !content.empty()) {
                wrong += "Lost: " + Printable(content) + "\n";
            }
        }
        for (const std::string& content : found) {
            if (contents_.count(content) == 0) {
                wrong += "Cut or mixed: " + Printable(content) + "\n";
            }
        }
        const bool is_going = command_.kind == COMMAND_MOVE || command_.kind == COMMAND_DELETE;
        const NodePointer going = is_going ? before_.Find(command_.sources.front()).node : nullptr;
        return wrong + CompareUntouched(before_.root, after_.root, disk, going, "");
    }
    /// The same when the program has survived: then it has also told what it did not do.
    std::string JudgeReport(Result result) const
    {
        Model expected = after_;
        expected.root = after_.Clone();
        const NodePointer disk = ReadDisk(root_path_);
        // One report may look like another.
        const bool is_reported = std::any_of(asked_.begin(), asked_.end(),
                                             [](const std::string& asked) { return asked.ends_with("[Skip]"); });
        const bool is_told = is_reported || answers.asked != asked_ || result == RESULT_CANCEL ||
                             result_ == RESULT_CANCEL || command_.script.to_messages.front() == RESULT_CANCEL;
        const std::string undone = is_told ? "" : ComparePlainly(expected.root, disk);
        return undone.empty() ? "" : "Without a word:\n" + undone;
    }

private:
    std::string root_path_;
    Generator random_;
    Model before_;
    Model after_;
    Command command_;
    Result result_ = RESULT_DONE;
    std::vector<std::string> asked_;
    std::set<std::string> contents_;  ///< That there may be.
    std::set<std::string> kept_;      ///< That there must be, if it was there.
};

/// Runs the command with its call-th call failing; false when it has no so many.
bool RunFailing(const Rehearsal& rehearsal, const Command& command, int call, int error, std::string* wrong)
{
    rehearsal.Prepare();
    faults.Arm(call, error);
    const Result result = command.RunEngine();
    const bool has_failed = faults.calls_made >= call;
    faults.Disarm();
    if (!has_failed) {
        return false;
    }
    *wrong = rehearsal.Judge(0) + (faults.disk_is_full ? "" : rehearsal.JudgeReport(result));
    if (!wrong->empty()) {
        *wrong = rehearsal.Story() + "Call " + std::to_string(call) + ", " + faults.failed_call + ", failed with " +
                 std::to_string(error) + (faults.disk_is_full ? " on a full disk" : "") +
                 (faults.is_old_file_system ? " on an old file system" : "") + "\n" + *wrong + "The disk:\n" +
                 rehearsal.DescribeDisk();
    }
    return true;
}

}  // namespace

std::string RunWithFaults(std::uint64_t seed, const std::string& root_path)
{
    Rehearsal rehearsal(seed, root_path);
    std::string wrong;
    for (const Result answer : {RESULT_OK, RESULT_CANCEL}) {
        rehearsal.GetCommand().script.to_messages = {answer};
        for (int call = 1; rehearsal.IsUsable() && wrong.empty(); ++call) {
            // With the first error the name of the call is known, and with that the others.
            if (!RunFailing(rehearsal, rehearsal.GetCommand(), call, EIO, &wrong)) {
                break;
            }
            const std::vector<int> errors = PlausibleErrors(faults.failed_call);
            for (std::size_t i = 0; i < errors.size() && wrong.empty(); ++i) {
                RunFailing(rehearsal, rehearsal.GetCommand(), call, errors[i], &wrong);
            }
        }
    }
    return wrong;
}

std::string RunOnFullDisk(std::uint64_t seed, const std::string& root_path)
{
    Rehearsal rehearsal(seed, root_path);
    std::string wrong;
    faults.disk_is_full = true;
    for (int call = 1; rehearsal.IsUsable() && wrong.empty(); ++call) {
        if (!RunFailing(rehearsal, rehearsal.GetCommand(), call, ENOSPC, &wrong)) {
            break;
        }
    }
    faults.disk_is_full = false;
    return wrong;
}

namespace {

/// Runs work in a child that is killed at its call-th call; false when it ended before.
bool RunKilled(int call, const std::function<void()>& work)
{
    std::fflush(nullptr);
    FlushChanges();  // The thread that does that holds nothing now that the child would miss.
    const pid_t child = fork();
    if (child == 0) {
        faults.at_call = [] { raise(SIGKILL); };
        faults.Arm(call, 0);
        work();
        _exit(EXIT_SUCCESS);
    }
    int status = 0;
    Require(child > 0 && waitpid(child, &status, 0) == child, "child");
    Require(WIFEXITED(status) || WTERMSIG(status) == SIGKILL, "child");
    return WIFSIGNALED(status);
}

}  // namespace

std::string RunKilledEverywhere(std::uint64_t seed, const std::string& root_path)
{
    Rehearsal rehearsal(seed, root_path);
    const Command& command = rehearsal.GetCommand();
    std::string wrong;
    for (int call = 1; rehearsal.IsUsable() && wrong.empty(); ++call) {
        rehearsal.Prepare();
        const bool is_killed = RunKilled(call, [&] { command.RunEngine(); });
        wrong = rehearsal.Judge(1);
        // A later start can work with what it finds.
        Command later = command;
        later.kind = COMMAND_DELETE;
        later.sources.clear();
        const NodePointer left = ReadDisk(root_path);
        for (const auto& [name, node] : left->entries) {
            later.sources.push_back(root_path + name);
        }
        if (geteuid() == 0 && (later.RunEngine() != RESULT_DONE || !ReadDisk(root_path)->entries.empty())) {
            wrong += "What stays cannot be deleted\n";
        }
        if (!wrong.empty()) {
            wrong = rehearsal.Story() + "Killed at call " + std::to_string(call) + "\n" + wrong;
        }
        if (!is_killed) {
            break;
        }
    }
    return wrong;
}

std::string RunSettingsKilled(std::uint64_t seed, const std::string& root_path)
{
    setenv("HOME", root_path.c_str(), 1);
    const auto write = [&](int number) {
        pGTable->WindowX = number;
        pGTable->DirHistory.assign(1 + static_cast<std::size_t>(number) % 10, std::string(1 + seed % 2000, 'h'));
        SetGTable();
    };
    const auto read = [&] {
        std::string text;
        ReadFile(root_path + ".fennick", &text);
        return text;
    };
    const int number = static_cast<int>(seed % 1000);
    write(number + 1);
    const std::string fresh = read();
    for (int call = 1;; ++call) {
        write(number);
        const std::string old = read();
        const bool is_killed = RunKilled(call, [&] { write(number + 1); });
        if (const std::string text = read(); text != fresh && (text != old || !is_killed)) {
            return "Killed at call " + std::to_string(call) + ": " + text;
        }
        if (!is_killed) {
            break;
        }
    }
    // Only from linking to renaming the new file has a name of its own.
    const std::size_t left = ReadDisk(root_path)->entries.size();
    return left <= 2 ? "" : std::to_string(left) + " files stay in the home\n";
}
