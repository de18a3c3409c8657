// Copying, moving and deleting at the limits: large files, full and read-only disks, mounts, the
// longest paths, a process that ends.

#include <acl/libacl.h>
#include <fcntl.h>
#include <sys/acl.h>
#include <sys/resource.h>
#include <sys/xattr.h>

#include <csignal>
#include <cstring>

#include "child.h"
#include "core/fnkfiles.h"
#include "core/fnkraii.h"
#include "core/fnkutil-launch.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-sync.h"
#include "engine/fnkprogress-count.h"
#include "enginetest.h"

static const pid_t tests = getpid();

/// A sanitizer asks this when a process ends. To a forked child everything looks lost that only the
/// threads of its parent refer to.
extern "C" int __lsan_is_turned_off()
{
    return getpid() != tests;
}

namespace {

using Asked = std::vector<std::string>;

class EngineLimits : public EngineTest {
protected:
    void Bind(const std::string& what, const std::string& where) const
    {
        Require(mount(files.At(what).c_str(), files.At(where).c_str(), nullptr, MS_BIND, nullptr) == 0, where);
    }
    /// A chain of directories of that name; the innermost one.
    Descriptor MakeDeep(const std::string& name, std::size_t levels) const
    {
        Descriptor place(open(files.Directory(name).c_str(), O_PATH));
        for (std::size_t i = 1; i < levels; ++i) {
            Require(mkdirat(place.Get(), name.c_str(), 0755) == 0, name);
            place = Descriptor(openat(place.Get(), name.c_str(), O_PATH));
        }
        return place;
    }
    /// In a child that sees a disk of that size under that path.
    void OnDisk(const std::string& path, const char* size, const std::function<void()>& body)
    {
        const ChildResult result = RunInChild([&] {
            MountSmallDisk(path, size);
            Answer("y");
            body();
        });
        if (result == CHILD_SKIPPED) {
            GTEST_SKIP() << "no mounts allowed here";
        }
        EXPECT_EQ(result, CHILD_PASSED);
    }
};

TEST_F(EngineLimits, MountsHideNoObjectFromItself)
{
    OnDisk(files.Directory("disk"), "size=8m", [this] {
        Make({{"disk/t/sub/leaf", "x"},
              {"disk/one", "x"},
              {"disk/two", "y"},
              {"disk/there", "/"},
              {"disk/t/window", "/"},
              {"disk/a/both/x", "x"},
              {"disk/b/a/both", "/"},
              {"whole", "/"},
              {"part with\tblank", "/"},
              {"disk2", "/"},
              {"disk3", "/"}});
        Bind("disk/t", "whole");
        Bind("disk/t/sub", "part with\tblank");
        const Tree before = Show("disk/");
        for (const std::string to : {"whole", "whole/new", "part with\tblank", "part with\tblank/new"}) {
            int flag = 0;
            CopyFile(files.At(to), files.At("disk/t/"), &flag);
            EXPECT_EQ(Hear(), (Said{{Inside()}, 1})) << to;
            EXPECT_EQ(Show("disk/"), before);
        }
        // The destination shows up inside the source.
        Bind("disk/there", "disk/t/window");
        Run("copy disk/t/ > disk/there");
        EXPECT_EQ(Hear(), (Said{{Inside()}, 2}));
        EXPECT_EQ(files.Contents("disk/there/t/sub/leaf"), "x");
        // One directory is in both trees, or one file has two names.
        Bind("disk/a/both", "disk/b/a/both");
        Bind("disk/one", "disk/two");
        Run("move disk/a/ > disk/b !");
        EXPECT_EQ(Hear().second, 1);
        Run("move disk/one > disk/two !");
        EXPECT_EQ(files.Contents("disk/a/both/x") + files.Contents("disk/one"), "xx");
        EXPECT_EQ(Hear().first.size(), 1U);
        // Two disks number their files alike.
        for (const std::string disk : {"disk2", "disk3"}) {
            Require(mount("none", files.At(disk).c_str(), "tmpfs", 0, "size=1m") == 0, disk);
            Make({{disk + "/x", disk}, {disk + "/y", "= " + disk + "/x"}});
        }
        Run("move disk2/x > disk3 !");
        EXPECT_EQ(files.Contents("disk2/x") + files.Contents("disk3/x"), "disk2disk3");
        Hear();
    });
}

TEST_F(EngineLimits, FullDisksAndOtherDisksLeaveTheOldFile)
{
    OnDisk(files.Directory("disk"), "size=2m", [this] {
        Make({{"big", std::string(8 << 20, 'x')}, {"disk/big", "old"}});
        EXPECT_EQ(Run("copy big > disk !"), RESULT_DONE);
        EXPECT_EQ(Hear(), (Said{{Failure("copy disk/big", "No space left on device")}, 1}));
        EXPECT_EQ(files.Contents("disk/big"), "old");
        // Nothing moves to another disk, and an empty directory in the way comes back.
        Make({{"t/big", "new"}, {"disk/empty/t/big", "0777 /"}});
        const Tree before = Show();
        for (const auto& [command, target] : {std::pair("move t/big > disk !", "disk/big"),
                                              {"move t/ > disk/new", "disk/new"},
                                              {"move t/big > disk/empty/t !", "disk/empty/t/big"}}) {
            Run(command);
            EXPECT_EQ(Hear(), (Said{{Failure(std::string("move ") + target, "Invalid cross-device link")}, 1}));
            EXPECT_EQ(Show(), before);
        }
        Require(mount("none", files.At("disk").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0, "remount");
        const std::string cause = "Read-only file system";
        EXPECT_EQ(Run("copy t/big > disk/new"), RESULT_DONE);
        EXPECT_EQ(Run("copy t/big > disk !"), RESULT_OK);
        EXPECT_EQ(Run("copy t/ > disk/tree"), RESULT_CANCEL);
        EXPECT_EQ(Hear(), (Said{{Failure("copy disk/new", cause), Failure("delete disk/big", cause),
                                 "Error: Cannot create directory disk/tree cause:" + cause},
                                2}));
        EXPECT_EQ(Show(), before);
    });
}

TEST_F(EngineLimits, ContentsArriveWhole)
{
    std::string content(9'000'001, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) {
        content[i] = static_cast<char>(i * i >> 5);
    }
    constexpr off_t kSize = 64 << 20;
    Make({{"large", content}, {"holes", "begin"}});
    files.Node("socket", S_IFSOCK);
    const Descriptor holes(open(files.At("holes").c_str(), O_WRONLY));
    Require(pwrite(holes.Get(), "middle", 6, kSize / 2) == 6 && ftruncate(holes.Get(), kSize) == 0, "holes");
    for (const char* const command : {"copy large > large2", "copy holes > holes2", "copy socket > socket2"}) {
        EXPECT_EQ(Run(command), RESULT_DONE);
    }
    EXPECT_TRUE(files.Contents("large2") == content);
    EXPECT_TRUE(files.Contents("holes2") == files.Contents("holes"));
    EXPECT_LE(files.Status("holes2").st_blocks, files.Status("holes").st_blocks + 16);
    EXPECT_EQ(files.Contents("socket2"), "");
    int flag = 0;
    EXPECT_EQ(CopyFile(files.At("status"), "/proc/self/status", &flag), RESULT_DONE) << "says that it has 0 bytes";
    EXPECT_TRUE(files.Contents("status").starts_with("Name:"));
}

TEST_F(EngineLimits, AnOldFileGoesOnlyWhenTheNewOneIsOnTheDisk)
{
    Make({{"file", "new"}, {"to/file", "old"}});
    for (const bool is_old_file_system : {false, true}) {
        faults.is_old_file_system = is_old_file_system;
        faults.log.clear();
        faults.is_logging = true;
        Run("copy file > to !");
        faults.is_logging = false;
        const auto synced = faults.log.find(" fdatasync ");
        EXPECT_LT(synced, faults.log.find(" renameat ")) << faults.log;
        EXPECT_GT(synced, faults.log.find(" pwrite ")) << faults.log;
    }
    const int before = faults.syncs;
    EXPECT_FALSE(FlushChanges());
    EXPECT_GT(faults.syncs, before) << "and the command ends when the names are";
    faults.flush_error = EIO;
    Run("copy file > to !");
    const std::optional<FlushFailure> failure = FlushChanges();
    faults.flush_error = 0;
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->error, EIO);
    EXPECT_TRUE(files.Path().starts_with(failure->mount_point)) << failure->mount_point;
}

TEST_F(EngineLimits, WhatOthersDoMeanwhile)
{
    for (const std::string command : {"copy x > to", "move x > to", "delete d/"}) {
        bool is_disturbed = true;
        for (int call = 1; is_disturbed; ++call) {
            for (const bool is_old_file_system : {true, false}) {
                EmptyDisk(files.Path());
                Make({{"x", "mine"}, {"to", "/"}, {"d/gone", "x"}});
                Answer("n");
                faults.is_old_file_system = is_old_file_system;
                bool is_taken = false;
                faults.at_call = [&] {
                    is_taken = !std::filesystem::exists(files.At("to/x"));
                    std::filesystem::remove(files.At("d/gone"));
                    is_taken ? files.File("to/x", "theirs") : std::string();
                };
                faults.Arm(call, 0);
                Run(command);
                is_disturbed = faults.calls_made >= call;
                faults.Disarm();
                // An old file system leaves a moment between the look and the renaming.
                const bool is_too_late = is_old_file_system && faults.failed_call == "renameat";
                EXPECT_TRUE(!is_taken || is_too_late || files.Contents("to/x") == "theirs") << command << call;
                const Said said = Hear();
                EXPECT_TRUE(command != "delete d/" || said.first.empty() || said.first == Asked{"Delete - d/"}) << call;
            }
        }
    }
}

TEST_F(EngineLimits, CancelInsideALargeFileLeavesNothingOfIt)
{
    Make({{"large", std::string(128 << 20, 'x')}, {"to/large", "old"}});
    answers.is_cancelled = true;
    EXPECT_EQ(Run("copy large > to !"), RESULT_CANCEL);
    EXPECT_EQ(Show("to/"), (Tree{{"large", "old"}}));
    std::filesystem::resize_file(files.At("large"), 1);
    for (int i = 0; i < 5; ++i) {
        Make({{"d/" + std::to_string(i) + "/x", "x"}});
    }
    EXPECT_LT(CountOperationFile(files.At("d/")), 5) << "counting stops too";
    answers.is_cancelled = false;
    faults.is_old_file_system = true;
    EXPECT_EQ(CountOperationFile(files.At("d/")), 5);
    files.Link("link", "d");
    EXPECT_EQ(CountOperationFile(files.At("link/")), 0) << "a link since it was chosen";
}

TEST_F(EngineLimits, TheDeepestTreeArrivesAndGoes)
{
    const auto work = [this] {
        const struct rlimit limit = {256, 4096};
        Require(setrlimit(RLIMIT_NOFILE, &limit) == 0, "setrlimit");
        RaiseOpenFileLimit();
        const std::string destination = files.Directory("to-another-place");
        const std::size_t levels = (kMaxPathBytes - destination.size()) / 2 - 4;
        const Descriptor place = MakeDeep("d", levels);
        Require(mknodat(place.Get(), "f", S_IFREG | 0640, 0) == 0, "mknodat");
        EXPECT_EQ(Run("copy d/ > to-another-place"), RESULT_DONE);
        EXPECT_EQ(Hear(), (Said{{}, 1}));
        EXPECT_EQ(CountOperationFile(destination + "/"), 1);
        Answer("y", "Y");
        EXPECT_EQ(Run("delete to-another-place/ d/"), RESULT_DONE);
        EXPECT_EQ(files.Names(), Asked());
    };
    EXPECT_EQ(RunInChild(work), CHILD_PASSED);
}

TEST_F(EngineLimits, PathsThatGrowTooLongAreReportedAndStay)
{
    const std::string name(200, 'd');
    const std::size_t levels = (kMaxPathBytes - files.Path().size()) / (name.size() + 1);
    const Descriptor directory = MakeDeep(name, levels);
    Require(mkdirat(directory.Get(), name.c_str(), 0755) == 0 &&
                mknodat(directory.Get(), std::string(200, 'f').c_str(), S_IFREG | 0644, 0) == 0,
            name);
    Make({{"file", "x"}});
    const std::string too_long = "name too long [Skip]";
    Answer("y", "y");
    EXPECT_EQ(Run("delete " + name + "/"), RESULT_OK);
    const Said said = Hear();
    ASSERT_EQ(said.first.size(), 3U);
    EXPECT_TRUE(said.first[1].ends_with(too_long) && said.first[2].ends_with(too_long)) << said.first[1];
    EXPECT_EQ(said.second, 1) << "the file";
    EXPECT_EQ(Run("copy file > " + std::string(kMaxPathBytes - files.Path().size() - 10, 'd') + "/name-too-long"),
              RESULT_DONE);
    EXPECT_EQ(Run("move file > " + std::string(256, 'x')), RESULT_DONE);
    const Said refused = Hear();
    ASSERT_EQ(refused.first.size(), 2U) << "nothing is there to be overwritten";
    EXPECT_TRUE(refused.first[0].ends_with(too_long) && refused.first[1].ends_with(too_long)) << refused.first[0];
    EXPECT_EQ(Run("copy " + name + "/ > to-a-longer-path"), RESULT_DONE);
    EXPECT_EQ(Hear().first.size(), 2U);
    const std::string begin(118, 'a');
    const std::string end(118, 'c');
    EXPECT_EQ(FormatPathMessage("%s: %s", begin + std::string(300, 'b') + end, EIO),
              begin + "…" + end + ": Input/output error");
}

TEST_F(EngineLimits, WhatAKilledProcessLeavesGoesWithTheNextCommand)
{
    Make({{"file", "new"}, {"to/file", "old"}, {"to/.fennick-1", "not ours"}});
    const auto kill_it = [this] {
        faults.at_call = [] { faults.failed_call == "fdatasync" ? raise(SIGKILL) : 0; };
        faults.is_old_file_system = true;
        for (int call = 1;; ++call) {
            faults.Arm(call, 0);
            Run("copy file > to !");
        }
    };
    ASSERT_EQ(RunInChild(kill_it), CHILD_DIED);
    std::vector<std::string> names = files.Names("to");
    ASSERT_EQ(names.size(), 3U);
    EXPECT_EQ(Run("copy file > to !"), RESULT_DONE);
    names = files.Names("to");
    const bool has_marks = setxattr(files.At("file").c_str(), "user.x", "", 0, 0) == 0;
    EXPECT_EQ(names.size(), has_marks ? 2U : 3U);
    EXPECT_EQ(files.Contents("to/.fennick-1") + files.Contents("to/file"), "not oursnew");
    EXPECT_LT(getxattr(files.At("to/file").c_str(), "user.fennick.temporary", nullptr, 0), 0);
}

TEST_F(EngineLimits, AccessControlListsAreCopied)
{
    Make({{"file", "0600 x"}});
    const std::unique_ptr<std::remove_pointer_t<acl_t>, int (*)(void*)> acl(
        acl_from_text("u::rw-,u:1000:rw-,g::---,m::rw-,o::---"), acl_free);
    if (acl_set_file(files.At("file").c_str(), ACL_TYPE_ACCESS, acl.get()) != 0) {
        GTEST_SKIP() << "no such lists here";
    }
    Run("copy file > copy");
    const decltype(acl) copied(acl_get_file(files.At("copy").c_str(), ACL_TYPE_ACCESS), acl_free);
    EXPECT_EQ(acl_cmp(acl.get(), copied.get()), 0);
    EXPECT_EQ(files.Status("copy").st_mode & 07777U, 0660U);
}

TEST_F(EngineLimits, SetIdBitsStayWithTheirOwner)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the super-user has files of others";
    }
    Make({{"mine", "06755 x"}, {"theirs", "06755 x"}, {"group", "06755 x"}});
    Require(chown(files.At("theirs").c_str(), 1000, 0) == 0 && chown(files.At("group").c_str(), 0, 1000) == 0, "chown");
    files.SetMode("theirs", 06755);
    files.SetMode("group", 06755);
    for (const auto& [name, mode] : {std::pair("mine", "06755 x"), {"theirs", "0755 x"}, {"group", "04755 x"}}) {
        Run(std::string("copy ") + name + " > " + name + "2");
        EXPECT_EQ(Show().at(name + std::string("2")), mode);
    }
}

TEST_F(EngineLimits, PrivateFilesAreNeverReadableByOthers)
{
    Make({{"from", "0700 /"}, {"from/secret", "0600 x"}, {"from/d", "0700 /"}, {"from/d/secret", "0640 x"}});
    umask(0);
    answers.at_step = [this] {
        const Tree source = Show("from/");
        for (const auto& [path, text] : Show("to/")) {
            EXPECT_EQ(text, source.at(path)) << path;
        }
    };
    EXPECT_EQ(Run("copy from/ > to"), RESULT_DONE);
    EXPECT_EQ(Show("to/"), Show("from/"));
}

/// The user leaves it at any call, which may still take effect.
TEST_F(EngineLimits, ACommandThatIsLeftChangesNothingMore)
{
    for (const std::string command :
         {"copy x > to !", "copy l > to !", "copy t/ > to", "move x > to !", "move t/ > to", "delete t/"}) {
        bool is_left = true;
        for (int call = 1; is_left; ++call) {
            EmptyDisk(files.Path());
            Make({{"x", "new"},
                  {"l", "-> x"},
                  {"t/a", "x"},
                  {"t/d/b", "x"},
                  {"to/x", "old"},
                  {"to/l", "-> a"},
                  {"to/t/d/b", "old"}});
            Answer("y");
            std::string at_call;
            faults.at_call = [&] {
                at_call = faults.failed_call;
                answers.is_left = faults.is_logging = true;
                faults.log = " ";
            };
            faults.Arm(call, 0);
            Run(command);
            is_left = faults.calls_made >= call;
            faults.Disarm();
            faults.is_logging = false;
            if (const std::size_t brief = faults.log.find(" linkat unlinkat "); brief != std::string::npos) {
                faults.log.erase(brief, 7);  // A temporary file that is gone at once.
            }
            for (const char* const change : {"mkdirat", "linkat", "symlinkat", "renameat", "renameat2", "fchmodat"}) {
                EXPECT_FALSE(is_left && faults.log.find(std::string(" ") + change + " ") != std::string::npos)
                    << command << " left at " << at_call << ":" << faults.log;
            }
            for (const auto& [path, object] : ReadDisk(files.Path())) {
                EXPECT_EQ(path.find(".fennick-"), std::string::npos) << command << " left at " << at_call;
            }
        }
    }
}

}  // namespace
