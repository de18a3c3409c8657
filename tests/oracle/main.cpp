// Random commands on random trees. judge.h tells what each may do to the disk; a run without a fault
// tells what it should do.
//
//   oracle MODE SEQUENCES [SEED] [--user]
//
// Each sequence has a seed, SEED for the first, which is printed when it goes wrong.

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>

#include "core/fnktable.h"
#include "engine/fnkfiles-sync.h"
#include "faults.h"
#include "judge.h"
#include "scratch.h"

namespace {

/// One command, and what it does when nothing fails.
struct Rehearsal {
    Rehearsal(std::uint64_t seed, std::string top_path)
        : top(std::move(top_path)),
          random(seed),
          names(RandomNames(random)),
          tree(RandomDisk(random, top, names)),
          command(random, top, names, Prepare())
    {
        faults.is_old_file_system = seed % 4 == 0;
        reach = Reach::Find(command, top);
        result = command.Run();
        asked = answers.asked;
        after = ReadDisk(top);
    }

    bool HasLinkOnTheWay() const
    {
        return (reach->HasSource() && !command.source.starts_with(top + reach->source)) ||
               (reach->HasTarget() && !(top + reach->target).starts_with(command.destination));
    }
    Disk Prepare() const
    {
        EmptyDisk(top);
        WriteDisk(top, tree);
        return ReadDisk(top);
    }
    std::string Story(const std::string& wrong) const
    {
        return wrong.empty() ? ""
                             : Describe(tree) + command.Describe() + wrong + "The disk:\n" + Describe(ReadDisk(top));
    }

    std::string top;
    Random random;
    Names names;
    Disk tree;
    Command command;
    std::optional<Reach> reach;
    Result result;
    std::vector<std::string> asked;
    Disk after;
};

/// Takes the temporaries out of the tree, and returns how many there were.
std::size_t TakeTemporaries(Disk& disk)
{
    return std::erase_if(disk, [](const auto& entry) { return entry.first.find(".fennick-") != std::string::npos; });
}

bool HasSameContents(const Disk& one, const Disk& other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](const auto& a, const auto& b) {
        return a.first == b.first && a.second.type == b.second.type && a.second.content == b.second.content;
    });
}

/// Whether the command breaks off without a fault. How far it gets depends on the order of the entries.
bool BreaksOffAnyway(const Rehearsal& plan)
{
    return plan.result == RESULT_CANCEL ||
           std::any_of(plan.asked.begin(), plan.asked.end(),
                       [](const std::string& asked) { return asked.ends_with("[Skip]"); });
}

/// Whether the command left something undone and said no word more than it says without a fault.
bool IsSilent(const Rehearsal& plan, Result result, const Disk& disk)
{
    if (BreaksOffAnyway(plan) || plan.command.script.to_messages.front() != RESULT_OK || result == RESULT_CANCEL ||
        answers.asked != plan.asked) {
        return false;
    }
    // The old file may only go once the new one is safe.
    return faults.failed_call == "fdatasync" || !HasSameContents(disk, plan.after);
}

/// Nothing fails, but the user may refuse.
std::string RunPlain(std::uint64_t seed, const std::string& top)
{
    Rehearsal plan(seed, top);
    std::string wrong;
    for (const Result answer : {RESULT_OK, RESULT_CANCEL}) {
        const Disk before = plan.Prepare();
        plan.command.script.to_messages = plan.command.script.to_deletes = {answer};
        plan.command.Run();
        wrong += plan.reach ? plan.Story(Judge(before, ReadDisk(top), *plan.reach, false)) : "";
    }
    return wrong;
}

/// Runs the command with its call-th call failing; false when it makes fewer.
bool RunFailing(const Rehearsal& plan, int call, int error, std::string* wrong)
{
    const Disk before = plan.Prepare();
    faults.Arm(call, error);
    const Result result = plan.command.Run();
    const bool has_failed = faults.calls_made >= call;
    faults.Disarm();
    const Disk disk = ReadDisk(plan.top);
    *wrong = Judge(before, disk, *plan.reach, true);
    if (has_failed && IsSilent(plan, result, disk)) {
        *wrong += "Not a word about it\n";
    }
    // What the engine gets around by itself.
    const bool is_harmless = error == EINTR || error == EINVAL || error == EOPNOTSUPP ||
                             (error == EEXIST && faults.failed_call == "O_TMPFILE");
    if (has_failed && is_harmless && !BreaksOffAnyway(plan) && !HasSameContents(disk, plan.after)) {
        *wrong += "It gives up\n";
    }
    if (!wrong->empty()) {
        *wrong = plan.Story("Call " + std::to_string(call) + ", " + faults.failed_call +
                            ", failed: " + std::strerror(error) + "\n" + *wrong);
    }
    return has_failed;
}

/// Errors that a call may really give. ENOENT for what exists would be a lie.
const std::vector<int>& PlausibleErrors(const std::string& call)
{
    using Errors = std::pair<const std::string, std::vector<int>>;
    static const std::map<std::string, std::vector<int>> kErrors = {Errors("pwrite", {ENOSPC, EINTR}),
                                                                    Errors("pread", {EINTR}),
                                                                    Errors("copy_file_range", {ENOSPC, EXDEV, EINVAL}),
                                                                    Errors("lseek", {EINVAL}),
                                                                    Errors("ftruncate", {ENOSPC}),
                                                                    Errors("fdatasync", {ENOSPC}),
                                                                    Errors("linkat", {ENOSPC, EEXIST}),
                                                                    Errors("mkdirat", {EACCES}),
                                                                    Errors("O_TMPFILE", {EACCES, EOPNOTSUPP}),
                                                                    Errors("renameat", {EXDEV, EBUSY}),
                                                                    Errors("renameat2", {EXDEV, EINVAL}),
                                                                    Errors("readdir", {})};
    static const std::vector<int> kOthers = {EACCES};
    const auto known = kErrors.find(call);
    return known != kErrors.end() ? known->second : kOthers;
}

/// Every call fails in turn, with each error that it may really fail with.
std::string RunWithFaults(std::uint64_t seed, const std::string& top)
{
    Rehearsal plan(seed, top);
    std::string wrong;
    for (const Result answer : {RESULT_OK, RESULT_CANCEL}) {
        plan.command.script.to_messages = {answer};
        for (int call = 1; plan.reach && wrong.empty() && RunFailing(plan, call, EIO, &wrong); ++call) {
            std::vector<int> errors = PlausibleErrors(faults.failed_call);
            if (faults.is_old_file_system && faults.failed_call == "O_TMPFILE") {
                errors = {EACCES, EEXIST};
            }
            for (const int error : errors) {
                if (wrong.empty()) {
                    RunFailing(plan, call, error, &wrong);
                }
            }
        }
    }
    return wrong;
}

/// Runs work in a child that is killed at its call-th call; false when it ended before.
bool RunKilled(int call, const std::function<void()>& work)
{
    std::fflush(nullptr);
    // Once a change has been flushed, the thread that does so waits, and holds no lock that the child
    // would find taken forever.
    NoteChange();
    FlushChanges();
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

std::string RunKilledEverywhere(std::uint64_t seed, const std::string& top)
{
    const Rehearsal plan(seed, top);
    std::string wrong;
    bool is_killed = plan.reach.has_value();
    for (int call = 1; is_killed && wrong.empty(); ++call) {
        const Disk before = plan.Prepare();
        is_killed = RunKilled(call, [&] { plan.command.Run(); });
        Disk disk = ReadDisk(top);
        wrong = TakeTemporaries(disk) > 1 ? "More than one temporary stays\n" : "";
        wrong = plan.Story(wrong + Judge(before, disk, *plan.reach, true));
    }
    return wrong;
}

/// Between two calls a directory becomes a link to its like outside, where nothing may change.
std::string RunSwapped(std::uint64_t seed, const std::string& top)
{
    const Rehearsal plan(seed, top);
    const std::string outside = top + "../outside/";
    const std::string aside = top + "../aside";
    EmptyDisk(outside);
    WriteDisk(outside, plan.tree);
    const Disk before = ReadDisk(outside);
    // A link above an item is followed.
    const auto is_above = [&](const std::string& directory, const std::string& item) {
        return item.starts_with(top + directory + "/") && item != top + directory + "/";
    };
    for (const auto& [name, object] : plan.tree) {
        if (!plan.reach || plan.HasLinkOnTheWay() || !object.IsDirectory() || is_above(name, plan.command.source) ||
            is_above(name, plan.command.destination)) {
            continue;
        }
        faults.at_call = [&, path = top + name, other = outside + name] {
            std::error_code error;
            const bool is_directory = std::filesystem::is_directory(std::filesystem::symlink_status(path, error));
            if (is_directory && rename(path.c_str(), aside.c_str()) == 0) {
                std::filesystem::create_symlink(other, path);
            }
        };
        bool is_swapped = true;
        for (int call = 1; is_swapped; ++call) {
            plan.Prepare();
            faults.Arm(call, 0);
            plan.command.Run();
            is_swapped = faults.calls_made >= call;
            faults.Disarm();
            if (std::filesystem::exists(aside)) {
                chmod(aside.c_str(), 0700);
                EmptyDisk(aside + "/");
                std::filesystem::remove(aside);
            }
            if (ReadDisk(outside) != before) {
                faults.at_call = nullptr;
                return plan.Story(Printable(name) + " was swapped at call " + std::to_string(call) + "\nOutside:\n" +
                                  Describe(ReadDisk(outside)));
            }
        }
        faults.at_call = nullptr;
    }
    return {};
}

}  // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, std::string (*)(std::uint64_t seed, const std::string& top)> kModes = {
        {"plain", RunPlain}, {"faults", RunWithFaults}, {"kill", RunKilledEverywhere}, {"swap", RunSwapped}};
    std::vector<std::string> words(argv + 1, argv + argc);
    if (std::erase(words, "--user") > 0) {
        Require(geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0), "user");
    }
    Require(words.size() >= 2, "a mode and a number of sequences are needed");
    const auto run = kModes.at(words[0]);
    const std::uint64_t sequences = std::stoull(words[1]);
    const std::uint64_t first = words.size() > 2 ? std::stoull(words[2]) : 1;
    std::setlocale(LC_ALL, "C.UTF-8");
    umask(022);
    faults.spares_disk = true;
    const ScratchDirectory files;
    // So deep that no link made from the tree's names leads out of the scratch directory.
    const std::string top = files.Directory("deep/er/top") + "/";
    files.Directory("deep/er/outside");
    GTable table;
    table.RootDir = table.CurrentDir = top;
    pGTable = &table;
    int failures = 0;
    for (std::uint64_t seed = first; seed < first + sequences && failures < 3; ++seed) {
        EmptyDisk(top);
        const std::string wrong = run(seed, top);
        if (!wrong.empty()) {
            std::printf("seed %llu\n%s\n", static_cast<unsigned long long>(seed), wrong.c_str());
            ++failures;
        }
    }
    EmptyDisk(top);
    EmptyDisk(files.At("deep/er/outside/"));
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
