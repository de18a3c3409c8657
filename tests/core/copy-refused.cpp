// Copying and moving where the system does not let it: what is said, and that the old files stay.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "engine/fnkprogress-count.h"
#include "child.h"
#include "enginetest.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-inside.h"
#include "core/fnkutil-launch.h"
#include "core/fnkutil.h"

namespace {

using CopyRefused = EngineTest;

TEST_F(CopyRefused, WhatCannotBeReadOrWrittenIsReportedAndTheRestGoesOn)
{
    ASSERT_EQ(
        RunInChild([this] {
            BecomeOrdinaryUser(files);
            answers.to_messages = {RESULT_OK};
            files.File("from/secret", "x", 0);
            files.File("from/secret-but-empty", "", 0);
            files.File("from/locked/x", "x");
            files.File("from/open", "x");
            files.SetMode("from/locked", 0);
            files.File("to/from/secret", "old");
            EXPECT_EQ(Copy("to", {"from/"}), RESULT_DONE);
            EXPECT_EQ(Asked({answers.asked.begin() + 1, answers.asked.end()}).size(), 2U);
            EXPECT_EQ(Describe("to/from"), (Tree{{"secret", "file 644 old"},
                                                 {"secret-but-empty", "file 0 "},
                                                 {"locked", "directory 0 "},
                                                 {"open", "file 644 x"}}));
            files.SetMode("from/locked", 0755);
            files.SetMode("to/from/locked", 0755);

            // A directory that forbids changes keeps what it has, whatever is to replace it.
            files.File("fixed/open", "old");
            files.SetMode("fixed", 0555);
            for (const bool move : {false, true}) {
                answers = Answers();
                answers.to_messages = {RESULT_OK};
                EXPECT_EQ(move ? Move("fixed", {"from/open"}) : Copy("fixed", {"from/open"}), RESULT_OK);
                EXPECT_EQ(answers.asked,
                          (Asked{Question("fixed/open"), Failure("delete", "fixed/open", "Permission denied")}));
                EXPECT_EQ(files.Contents("fixed/open") + files.Contents("from/open"), "oldx");
                answers = Answers();
                EXPECT_EQ(move ? Move("fixed/new", {"from/open"}) : Copy("fixed/new", {"from/open"}), RESULT_CANCEL);
                EXPECT_EQ(answers.asked, Asked{Failure(move ? "move" : "copy", "fixed/new", "Permission denied")});
            }

            // A source directory without the right to write makes a copy without it.
            files.File("read-only/x", "x");
            files.SetMode("read-only", 0555);
            answers = Answers();
            answers.to_messages = {RESULT_OK};
            EXPECT_EQ(Copy("copy", {"read-only/"}), RESULT_DONE);
            EXPECT_EQ(answers.asked, Asked{Failure("copy", "copy/x", "Permission denied")});
            EXPECT_EQ(DescribeObject("copy"), "directory 555 ");
            files.SetMode("read-only", 0755);
            files.SetMode("fixed", 0755);
        }),
        CHILD_PASSED);
}

TEST_F(CopyRefused, InADirectoryThatAllShareTheFilesOfOthersStay)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "takes two users";
    }
    files.File("shared/file", "theirs");
    files.SetMode("shared", 01777);
    ASSERT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser(files);
                  answers.to_messages = {RESULT_OK};
                  files.File("file", "mine");
                  for (const bool move : {false, true}) {
                      answers.asked.clear();
                      EXPECT_EQ(move ? Move("shared", {"file"}) : Copy("shared", {"file"}), RESULT_OK);
                      EXPECT_EQ(answers.asked, (Asked{Question("shared/file"),
                                                      Failure("delete", "shared/file", "Operation not permitted")}));
                  }
                  EXPECT_EQ(files.Contents("shared/file") + files.Contents("file"), "theirsmine");
                  EXPECT_EQ(TemporariesIn("shared"), Tree());
              }),
              CHILD_PASSED);
}

TEST_F(CopyRefused, FullDisksAndLimitsLeaveTheOldFile)
{
    const ChildResult result = RunInChild([this] {
        MountSmallDisk(files.Directory("disk"), "size=2m");
        table.ConfilmOverwrite = 0;
        answers.to_messages = {RESULT_OK};
        for (const std::size_t size : {std::size_t{40'000}, std::size_t{8 << 20}}) {
            files.File("big", std::string(size, 'x'));
            files.File("disk/big", "old");
            files.File("disk/filler", std::string(1'900'000, 'x'));
            files.File("disk/filler2", "");
            std::ofstream(files.At("disk/filler2")) << std::string(1 << 20, 'x');  // Until there is no more.
            answers.asked.clear();
            EXPECT_EQ(Copy("disk", {"big"}), RESULT_DONE);
            EXPECT_EQ(answers.asked, Asked{Failure("copy", "disk/big", "No space left on device")});
            EXPECT_EQ(files.Contents("disk/big"), "old");
            EXPECT_EQ(TemporariesIn("disk"), Tree());
            files.Remove("disk/filler");
        }
        // To another file system nothing moves, and nothing is lost.
        answers = Answers();
        answers.to_messages = {RESULT_OK};
        files.File("moving/big", "new");
        files.Directory("disk/empty/moving/big");
        EXPECT_EQ(Move("disk", {"moving/big"}), RESULT_DONE);
        EXPECT_EQ(Move("disk/fresh", {"moving/"}), RESULT_DONE);
        EXPECT_EQ(Move("disk/empty/moving", {"moving/big"}), RESULT_DONE);
        EXPECT_EQ(answers.asked, (Asked{Failure("move", "disk/big", "Invalid cross-device link"),
                                        Failure("move", "disk/fresh", "Invalid cross-device link"),
                                        Failure("move", "disk/empty/moving/big", "Invalid cross-device link")}));
        EXPECT_EQ(files.Contents("disk/big") + files.Contents("moving/big"), "oldnew");
        EXPECT_EQ(IsDirectory(files.At("disk/empty/moving/big")), 1) << "given back";

        // A file system that takes no changes.
        Require(mount("none", files.At("disk").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0, "remount");
        answers.asked.clear();
        EXPECT_EQ(Copy("disk/new", {"moving/big"}), RESULT_DONE);
        EXPECT_EQ(Copy("disk", {"moving/big"}), RESULT_OK);
        answers.to_messages = {RESULT_OK, RESULT_OK};
        EXPECT_EQ(Copy("disk/tree", {"moving/"}), RESULT_CANCEL);
        EXPECT_EQ(answers.asked,
                  (Asked{Failure("copy", "disk/new", "Read-only file system"),
                         Failure("delete", "disk/big", "Read-only file system"),
                         "Error: Cannot create directory " + files.At("disk/tree") + "\ncause:Read-only file system"}));
        EXPECT_EQ(files.Contents("disk/big") + files.Contents("moving/big"), "oldnew");

        // A limit on the size of files.
        std::signal(SIGXFSZ, SIG_IGN);
        files.File("wide", std::string(200'000, 'x'));
        files.File("narrow", "old");
        const struct rlimit limit = {100'000, 100'000};
        Require(setrlimit(RLIMIT_FSIZE, &limit) == 0, "setrlimit");
        answers.asked.clear();
        EXPECT_EQ(Copy("narrow", {"wide"}), RESULT_DONE);
        EXPECT_EQ(answers.asked, Asked{Failure("copy", "narrow", "File too large")});
        EXPECT_EQ(files.Contents("narrow"), "old");
    });
    if (result == CHILD_SKIPPED) {
        GTEST_SKIP() << "no mounts allowed here";
    }
    EXPECT_EQ(result, CHILD_PASSED);
}

TEST_F(CopyRefused, NothingToCopyOrNowhereToPutItIsSaid)
{
    answers.to_messages = {RESULT_OK};
    files.File("file", "x");
    EXPECT_EQ(Copy("to", {"missing", "missing/below"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, (Asked{"Error: " + files.At("missing") + " does not exist.",
                                    "Error: " + files.At("missing/below") + " does not exist."}));
    answers.asked.clear();
    EXPECT_EQ(Copy("no/such", {"file"}), RESULT_DONE);
    EXPECT_EQ(Copy("file/below", {"file"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, (Asked{Failure("copy", "no/such", "No such file or directory"),
                                    Failure("copy", "file/below", "Not a directory")}));
    answers.asked.clear();
    const std::string deep(kMaxPathBytes - files.Path().size() - 10, 'd');
    EXPECT_EQ(Copy(deep + "/name-too-long", {"file"}), RESULT_DONE);
    ASSERT_EQ(answers.asked.size(), 1U);
    EXPECT_TRUE(answers.asked[0].ends_with("cause:File name too long [Skip]"));
    int flag = 0;
    EXPECT_EQ(CopyFile("", files.At("file"), &flag), RESULT_NO_ARGUMENT);
    EXPECT_EQ(MoveFile(files.At("to"), files.At("file"), nullptr), RESULT_NO_ARGUMENT);
    // A "/" at the end means a directory: where that is gone, no file takes its name.
    answers.asked.clear();
    EXPECT_EQ(Copy("gone/", {"file"}), RESULT_DONE);
    EXPECT_EQ(Move("file/", {"file"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, (Asked{Failure("copy", "gone/", "No such file or directory"),
                                    Failure("move", "file/", "Not a directory")}));
    EXPECT_EQ(files.Names(), std::vector<std::string>{"file"});
}

// After chroot the mount table does not list the mount of the root directory.
TEST_F(CopyRefused, WhatIsInsideIsToldWhereTheRootIsNoMountPoint)
{
    const ChildResult result = RunInChild([this] {
        if (geteuid() != 0) {
            _exit(CHILD_SKIPPED);
        }
        files.Directory("moving");
        files.Directory("unsearchable");
        files.SetMode("", 0755);
        files.SetMode("unsearchable", 0644);
        MountSmallDisk(files.Directory("disk"), "size=1m");
        Require(mount("/proc", files.Directory("proc").c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0 &&
                    chroot(files.Path().c_str()) == 0 && chdir("/") == 0 && setresuid(65534, 65534, 65534) == 0,
                "chroot");
        bool is_inside = true;
        EXPECT_EQ(CheckIsInside("/unsearchable/new", "/moving/", &is_inside), EACCES) << "it may be anything";
        EXPECT_EQ(CheckIsInside("/unsearchable", "/moving/", &is_inside), 0);
        EXPECT_FALSE(is_inside);
        EXPECT_EQ(CheckIsInside("/disk/new", "/moving/", &is_inside), 0);
        EXPECT_FALSE(is_inside);
    });
    if (result == CHILD_SKIPPED) {
        GTEST_SKIP() << "no chroot allowed here";
    }
    EXPECT_EQ(result, CHILD_PASSED);
}

TEST_F(CopyRefused, TheDeepestTreeThereCanBeArrivesAndGoes)
{
    ASSERT_EQ(RunInChild([this] {
                  RaiseOpenFileLimit();
                  const std::string destination = files.Directory("to-another-place");
                  const std::size_t levels = (kMaxPathBytes - destination.size()) / 2 - 4;
                  Descriptor place(open(files.Directory("d").c_str(), O_PATH));
                  for (std::size_t i = 1; i < levels; ++i) {
                      Require(mkdirat(place.Get(), "d", 0755) == 0, "mkdirat");
                      place = Descriptor(openat(place.Get(), "d", O_PATH));
                  }
                  Require(mknodat(place.Get(), "f", S_IFREG | 0640, 0) == 0, "mknodat");
                  EXPECT_EQ(Copy("to-another-place", {"d/"}), RESULT_DONE);
                  EXPECT_EQ(answers.asked, Asked());
                  std::string leaf = destination;
                  for (std::size_t i = 0; i < levels; ++i) {
                      leaf += "/d";
                  }
                  struct stat st = {};
                  EXPECT_EQ(lstat((leaf + "/f").c_str(), &st), 0);
                  EXPECT_EQ(CountOperationFile(destination + "/"), 1);
                  Result answer = RESULT_YES_ALL;
                  EXPECT_EQ(RemoveFile(destination + "/", &answer), RESULT_DONE);
                  EXPECT_FALSE(Exists("to-another-place"));
              }),
              CHILD_PASSED);
}

}  // namespace
