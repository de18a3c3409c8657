// Replacing a file: whatever goes wrong, its name stands for the old file or the new one, whole.

#include <fcntl.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>

#include "child.h"
#include "fnkfiles-settings.h"
#include "tabletest.h"

namespace {

constexpr const char* kOld = "[Setting]\nShowHidden=yes\n";

class Saving : public TableTest {
protected:
    using Names = std::vector<std::string>;

    void ExpectOldFileAlone() const
    {
        EXPECT_EQ(home.Contents(".fennick"), kOld);
        EXPECT_EQ(home.Names(), Names{".fennick"});
    }
    mode_t Permissions(const std::string& name) const { return home.Status(name).st_mode & 07777; }
    bool IsWrittenAs(const std::string& name) const { return home.Contents(name).starts_with("#\n# Fennick\n"); }
};

TEST_F(Saving, PermissionsAreKept)
{
    const mode_t old_mask = umask(0);
    EXPECT_EQ(SetGTable(), FILE_DONE);
    EXPECT_EQ(Permissions(".fennick"), 0600U);
    for (const mode_t mode : {0640U, 0666U, 0600U}) {
        home.File(".fennick", kOld, mode);
        EXPECT_EQ(SetGTable(), FILE_DONE);
        EXPECT_EQ(Permissions(".fennick"), mode);
        EXPECT_TRUE(IsWrittenAs(".fennick"));
    }
    EXPECT_EQ(home.Names(), Names{".fennick"});
    umask(old_mask);
}

TEST_F(Saving, LinksAreFollowedAndStay)
{
    home.File("conf/real", kOld, 0640);
    home.Link("conf/second", "real");
    home.Link(".fennick", "conf/second");
    Require(GetGTable() == FILE_DONE, "read");
    EXPECT_EQ(table.ShowHidden, 1);
    EXPECT_EQ(SetGTable(), FILE_DONE);
    EXPECT_TRUE(S_ISLNK(home.Status(".fennick").st_mode));
    EXPECT_TRUE(S_ISLNK(home.Status("conf/second").st_mode));
    EXPECT_TRUE(S_ISREG(home.Status("conf/real").st_mode));
    EXPECT_TRUE(IsWrittenAs("conf/real"));
    EXPECT_EQ(Permissions("conf/real"), 0640U);
    EXPECT_EQ(home.Names("conf"), (Names{"real", "second"}));

    unlink(home.At("conf/real").c_str());
    EXPECT_EQ(SetGTable(), FILE_DONE);
    EXPECT_TRUE(IsWrittenAs("conf/real"));
    EXPECT_EQ(Permissions("conf/real"), 0600U);

    unlink(home.At(".fennick").c_str());
    home.Link(".fennick", home.At("loop"));
    home.Link("loop", ".fennick");
    EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
    unlink(home.At("loop").c_str());
    home.Link("loop", "missing/settings");
    EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
    EXPECT_EQ(home.Names(), (Names{".fennick", "conf", "loop"}));
}

TEST_F(Saving, WhatIsNoFileStaysAndDoesNotHang)
{
    files.File("target", "x");
    for (const mode_t kind : {mode_t{S_IFIFO}, mode_t{S_IFSOCK}, mode_t{S_IFDIR}}) {
        if (kind == S_IFDIR) {
            home.Directory(".fennick");
        } else {
            home.Node(".fennick", kind);
        }
        EXPECT_EQ(RunInChild([this] {
                      table.ShowHidden = 1;
                      EXPECT_EQ(GetGTable(), FILE_DONE);
                      EXPECT_EQ(table.ShowHidden, 0);
                      EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
                  }),
                  CHILD_PASSED);
        EXPECT_EQ(home.Status(".fennick").st_mode & S_IFMT, kind);
        EXPECT_EQ(home.Names(), Names{".fennick"});
        remove(home.At(".fennick").c_str());
    }
}

TEST_F(Saving, UnwritableFileStays)
{
    home.File(".fennick", kOld, 0444);
    EXPECT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser({&home});
                  EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
              }),
              CHILD_PASSED);
    ExpectOldFileAlone();
    EXPECT_EQ(Permissions(".fennick"), 0444U);
}

TEST_F(Saving, UnreadableFileGivesDefaultsAndStays)
{
    home.File(".fennick", kOld, 0000);
    EXPECT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser({&home});
                  EXPECT_EQ(GetGTable(), FILE_DONE);
                  EXPECT_EQ(table.ShowHidden, 0);
              }),
              CHILD_PASSED);
    chmod(home.At(".fennick").c_str(), 0600);
    ExpectOldFileAlone();
}

TEST_F(Saving, UnwritableDirectoryKeepsTheOldFile)
{
    home.File(".fennick", kOld, 0666);
    EXPECT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser({&home});
                  chmod(home.Path().c_str(), 0555);
                  EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
                  chmod(home.Path().c_str(), 0755);
              }),
              CHILD_PASSED);
    ExpectOldFileAlone();
}

TEST_F(Saving, OwnerIsKept)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the super-user can write for somebody else";
    }
    home.File(".fennick", kOld, 0640);
    Require(chown(home.At(".fennick").c_str(), 65534, 65533) == 0, "chown");
    EXPECT_EQ(SetGTable(), FILE_DONE);
    EXPECT_EQ(home.Status(".fennick").st_uid, 65534U);
    EXPECT_EQ(home.Status(".fennick").st_gid, 65533U);
    EXPECT_EQ(Permissions(".fennick"), 0640U);
}

TEST_F(Saving, FailedWriteKeepsTheOldFile)
{
    home.File(".fennick", kOld);
    EXPECT_EQ(RunInChild([] {
                  signal(SIGXFSZ, SIG_IGN);
                  struct rlimit limit = {};
                  getrlimit(RLIMIT_FSIZE, &limit);
                  limit.rlim_cur = 100;
                  Require(setrlimit(RLIMIT_FSIZE, &limit) == 0, "setrlimit");
                  const FileResult result = SetGTable();
                  limit.rlim_cur = limit.rlim_max;
                  setrlimit(RLIMIT_FSIZE, &limit);
                  EXPECT_EQ(result, FILE_NOT_WRITTEN);
              }),
              CHILD_PASSED);
    ExpectOldFileAlone();
}

TEST_F(Saving, FullDiskKeepsTheOldFile)
{
    const ChildResult result = RunInChild([this] {
        MountSmallDisk(home.Path(), "64k");
        table.LocationDirHistory.assign(10, "/" + std::string(1000, 'x') + "/");
        EXPECT_EQ(SetGTable(), FILE_DONE);
        const std::string old = home.Contents(".fennick");
        const int filler = open(home.At("filler").c_str(), O_WRONLY | O_CREAT, 0600);
        const std::string page(4096, 'x');
        ssize_t pages = 0;
        while (write(filler, page.data(), page.size()) > 0) {
            ++pages;
        }
        Require(ftruncate(filler, (pages - 1) * 4096) == 0, "ftruncate");
        close(filler);
        table.ShowHidden = 1;
        EXPECT_EQ(SetGTable(), FILE_NOT_WRITTEN);
        EXPECT_EQ(home.Contents(".fennick"), old);
        EXPECT_EQ(home.Names(), (Names{".fennick", "filler"}));
    });
    if (result == CHILD_SKIPPED) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(result, CHILD_PASSED);
}

// A reader sees one of the two texts at any time, and so does whoever comes after a violent end.
TEST_F(Saving, KilledWhileWriting)
{
    const std::string texts[] = {std::string(300, 'a'), std::string(500000, 'b')};
    const auto is_whole = [&texts](const std::string& text) { return text == texts[0] || text == texts[1]; };
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 12; ++round) {
        home.File(".fennick", texts[0]);
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            for (int turn = 1;; ++turn) {
                WriteFile(home.At(".fennick"), texts[turn % 2]);
            }
        }
        bool whole = true;
        const struct stat before = home.Status(".fennick");
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (home.Status(".fennick").st_ino == before.st_ino && std::chrono::steady_clock::now() < deadline) {
            whole = whole && is_whole(home.Contents(".fennick"));
        }
        for (std::size_t reads = random.Below(40); reads > 0; --reads) {
            whole = whole && is_whole(home.Contents(".fennick"));
        }
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        EXPECT_TRUE(whole && is_whole(home.Contents(".fennick"))) << "in round " << round;
    }
}

TEST_F(Saving, ReadingWholeFiles)
{
    std::string text = "untouched";
    EXPECT_EQ(ReadFile(files.At("missing"), &text), FILE_MISSING);
    EXPECT_EQ(ReadFile(files.Directory("dir"), &text), FILE_NOT_READ);
    EXPECT_EQ(ReadFile(files.Node("socket", S_IFSOCK), &text), FILE_NOT_OPENED);
    EXPECT_EQ(ReadFile(files.Link("dangling", "gone"), &text), FILE_NOT_OPENED);
    EXPECT_EQ(ReadFile(files.At("missing"), nullptr), FILE_NO_ARGUMENT);
    EXPECT_EQ(WriteFile("", "x"), FILE_NO_ARGUMENT);
    EXPECT_EQ(WriteFile(files.At("none"), {}), FILE_NO_ARGUMENT);
    EXPECT_EQ(text, "untouched");
    files.File("long", std::string(200000, 'x') + "end");
    EXPECT_EQ(ReadFile(files.Link("link", "long"), &text), FILE_DONE);
    EXPECT_EQ(text, std::string(200000, 'x') + "end");
    EXPECT_EQ(ReadFile(files.File("nul", std::string("a\0b", 3)), &text), FILE_DONE);
    EXPECT_EQ(text, "a");
    EXPECT_EQ(ReadFile(files.File("empty"), &text), FILE_DONE);
    EXPECT_EQ(text, "");
    EXPECT_EQ(WriteFile(files.At("empty"), ""), FILE_DONE);
    EXPECT_EQ(files.Contents("empty"), "");
}

}  // namespace
