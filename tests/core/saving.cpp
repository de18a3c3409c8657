// Replacing a file: whatever goes wrong, its name stands for the old file or the new one, whole.

#include <fcntl.h>
#include <sys/resource.h>

#include <csignal>

#include "child.h"
#include "core/fnkfiles.h"
#include "disk.h"
#include "faults.h"
#include "tabletest.h"

namespace {

using Names = std::vector<std::string>;

class Saving : public TableTest {
protected:
    Saving() { faults.spares_disk = true; }

    FileResult Write(const std::string& name, const std::string& text = "new") const
    {
        return WriteFile(files.At(name), text);
    }
    mode_t Mode(const std::string& name) const { return files.Status(name).st_mode & 07777; }
};

TEST_F(Saving, ModeAndOwnerAreKept)
{
    umask(0);
    EXPECT_EQ(Write("file"), FILE_DONE);
    EXPECT_EQ(Mode("file"), 0600U);
    umask(0077);
    const uid_t owner = geteuid() == 0 ? 65534 : geteuid();  // Only the super-user writes for others.
    for (const mode_t mode : {0640U, 0666U}) {
        Require(chown(files.File("file", "old", mode).c_str(), owner, getegid()) == 0, "chown");
        EXPECT_EQ(Write("file"), FILE_DONE);
        EXPECT_EQ(Mode("file"), mode);
        EXPECT_EQ(files.Status("file").st_uid, owner);
        EXPECT_EQ(files.Contents("file"), "new");
    }
    EXPECT_EQ(files.Names(), Names{"file"});
}

TEST_F(Saving, LinksAreFollowedAndStay)
{
    files.File("conf/real", "old", 0640);
    files.Link("conf/second", "real");
    files.Link("link", "conf/second");
    EXPECT_EQ(Write("link"), FILE_DONE);
    EXPECT_TRUE(S_ISLNK(files.Status("link").st_mode) && S_ISLNK(files.Status("conf/second").st_mode));
    EXPECT_EQ(files.Contents("conf/real"), "new");
    EXPECT_EQ(Mode("conf/real"), 0640U);
    files.Remove("conf/real");
    EXPECT_EQ(Write("link"), FILE_DONE);
    EXPECT_EQ(files.Contents("conf/real"), "new");
    files.Link("loop", "loop");
    files.Link("nowhere", "missing/file");
    EXPECT_EQ(Write("loop"), FILE_NOT_OPENED);
    EXPECT_EQ(Write("nowhere"), FILE_NOT_OPENED);
    EXPECT_EQ(files.Names().size() + files.Names("conf").size(), 6U);
}

TEST_F(Saving, WhatIsNoFileStaysAndDoesNotHang)
{
    files.Node("pipe", S_IFIFO);
    files.Directory("directory");
    EXPECT_EQ(RunInChild([this] {
                  for (const char* const name : {"pipe", "directory"}) {
                      std::string text = "untouched";
                      EXPECT_NE(ReadFile(files.At(name), &text), FILE_DONE) << name;
                      EXPECT_EQ(text, "untouched");
                      EXPECT_EQ(Write(name), FILE_NOT_OPENED) << name;
                  }
              }),
              CHILD_PASSED);
    EXPECT_EQ(files.Names(), (Names{"directory", "pipe"}));
    EXPECT_TRUE(S_ISFIFO(files.Status("pipe").st_mode));
}

TEST_F(Saving, OnlyWithPermissionTheOldFileGoes)
{
    using Case = std::tuple<mode_t, mode_t, FileResult>;
    for (const auto& [file_mode, directory_mode, result] :
         {Case(0444, 0755, FILE_NOT_OPENED), Case(0000, 0755, FILE_NOT_OPENED), Case(0666, 0555, FILE_DONE),
          Case(0666, 0755, FILE_DONE)}) {
        files.File("file", "old", file_mode);  // Another user's, where the super-user makes it.
        EXPECT_EQ(RunInChild([&, mode = directory_mode, expected = result] {
                      BecomeOrdinaryUser(files);
                      files.SetMode("", mode);
                      EXPECT_EQ(Write("file"), expected);
                      files.SetMode("", 0755);
                  }),
                  CHILD_PASSED);
        EXPECT_EQ(Mode("file"), file_mode);
        files.SetMode("file", 0600);
        EXPECT_EQ(files.Contents("file"), result == FILE_DONE ? "new" : "old");
        files.Remove("file");
    }
}

TEST_F(Saving, WhatCannotBeReplacedIsWrittenInPlace)
{
    files.File("file", "the old one, which is longer", 0640);
    const ino_t inode = files.Status("file").st_ino;
    const auto work = [this, inode] {
        MountSmallDisk(files.Directory("disk"), "size=1m");
        Require(mount(files.At("file").c_str(), files.At("file").c_str(), nullptr, MS_BIND, nullptr) == 0, "mount");
        EXPECT_EQ(Write("file"), FILE_DONE);
        EXPECT_EQ(files.Contents("file"), "new");
        EXPECT_EQ(files.Status("file").st_ino, inode);
        const std::string texts[] = {"new", std::string(100'000, 'x')};
        for (int call = 1; call == 1 || faults.calls_made >= call - 1; ++call) {
            const std::string old = files.Contents("file");
            const std::string& fresh = texts[old == texts[0] ? 1 : 0];
            faults.Arm(call, EIO);
            const FileResult result = Write("file", fresh);
            faults.Disarm();
            EXPECT_TRUE(files.Contents("file") == fresh || (result != FILE_DONE && files.Contents("file") == old))
                << faults.failed_call;
        }
    };
    const ChildResult result = RunInChild(work);
    EXPECT_TRUE(result == CHILD_PASSED || (result == CHILD_SKIPPED && geteuid() != 0)) << result;
}

/// Each call in turn fails, and the process is killed at it: the new file is whole and reported, or
/// the old one is.
TEST_F(Saving, WhateverFails)
{
    for (const bool is_killed : {false, true}) {
        bool has_failed = true;
        for (int call = 1; has_failed; ++call) {
            EmptyDisk(files.Path());
            files.File("file", "old");
            FileResult result = FILE_NOT_WRITTEN;
            const auto write = [&] {
                faults.at_call = is_killed ? [] { raise(SIGKILL); } : std::function<void()>();
                faults.Arm(call, EIO);
                result = Write("file");
                has_failed = faults.calls_made >= call;
                faults.Disarm();
            };
            if (is_killed) {
                has_failed = RunInChild(write) == CHILD_DIED;
            } else {
                write();
                EXPECT_TRUE(result != FILE_DONE || faults.failed_call != "fsync") << "a failing disk is ignored";
                EXPECT_EQ(files.Contents("file"), result == FILE_DONE ? "new" : "old") << faults.failed_call;
            }
            const std::string text = files.Contents("file");
            EXPECT_TRUE(text == "new" || (text == "old" && has_failed)) << text << " at call " << call;
            // Only between linking and renaming the new file has a name of its own.
            EXPECT_LE(files.Names().size(), is_killed ? 2U : 1U) << faults.failed_call;
        }
    }
}

TEST_F(Saving, TheNewFileIsOnTheDiskBeforeAndAfterItTakesTheName)
{
    const int syncs = faults.syncs;
    faults.log.clear();
    faults.is_logging = true;
    EXPECT_EQ(Write(files.File("file", "old").substr(files.Path().size())), FILE_DONE);
    faults.is_logging = false;
    EXPECT_LT(faults.log.find(" fsync "), faults.log.find(" renameat ")) << faults.log;
    EXPECT_GT(faults.syncs, syncs);
}

TEST_F(Saving, WholeFilesAreRead)
{
    std::string text = "untouched";
    EXPECT_EQ(ReadFile(files.At("missing"), &text), FILE_MISSING);
    EXPECT_EQ(ReadFile(files.Link("dangling", "gone"), &text), FILE_NOT_OPENED);
    EXPECT_EQ(text, "untouched");
    for (const std::string& contents : {std::string(200'000, 'x') + "end", std::string("a\0b", 3), std::string()}) {
        EXPECT_EQ(ReadFile(files.File("file", contents), &text), FILE_DONE);
        EXPECT_EQ(text, contents.c_str());
    }
}

}  // namespace
