// Replacing a file: whatever goes wrong, its name stands for the old file or the new one, whole.

#include <fcntl.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>

#include "child.h"
#include "core/fnkfiles-settings.h"
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

TEST_F(Saving, PermissionsAndOwnerAreKept)
{
    const mode_t old_mask = umask(0);
    EXPECT_EQ(SetGTable(), FILE_DONE);
    EXPECT_EQ(Permissions(".fennick"), 0600U);
    umask(0077);
    const uid_t owner = geteuid() == 0 ? 65534 : geteuid();  // Only the super-user can write for others.
    for (const mode_t mode : {0640U, 0666U, 0600U}) {
        Require(chown(home.File(".fennick", kOld, mode).c_str(), owner, getegid()) == 0, "chown");
        EXPECT_EQ(SetGTable(), FILE_DONE);
        EXPECT_EQ(Permissions(".fennick"), mode);
        EXPECT_EQ(home.Status(".fennick").st_uid, owner);
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
    EXPECT_TRUE(IsWrittenAs("conf/real"));
    EXPECT_EQ(Permissions("conf/real"), 0640U);
    EXPECT_EQ(home.Names("conf"), (Names{"real", "second"}));

    home.Remove("conf/real");
    EXPECT_EQ(SetGTable(), FILE_DONE);
    EXPECT_TRUE(IsWrittenAs("conf/real"));
    EXPECT_EQ(Permissions("conf/real"), 0600U);

    home.Remove(".fennick");
    home.Link(".fennick", home.At("loop"));
    home.Link("loop", ".fennick");
    EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
    home.Remove("loop");
    home.Link("loop", "missing/settings");
    EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
    EXPECT_EQ(home.Names(), (Names{".fennick", "conf", "loop"}));
}

TEST_F(Saving, WhatIsNoFileStaysAndDoesNotHang)
{
    for (const mode_t kind : {S_IFIFO, S_IFSOCK, S_IFDIR}) {
        kind == S_IFDIR ? home.Directory(".fennick") : home.Node(".fennick", kind);
        const auto read_and_write = [this] {
            table.ShowHidden = 1;
            EXPECT_EQ(GetGTable(), FILE_DONE);
            EXPECT_EQ(table.ShowHidden, 0);
            EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
        };
        EXPECT_EQ(RunInChild(read_and_write), CHILD_PASSED);
        EXPECT_EQ(home.Status(".fennick").st_mode & S_IFMT, kind);
        EXPECT_EQ(home.Names(), Names{".fennick"});
        home.Remove(".fennick");
    }
}

TEST_F(Saving, WithoutPermissionTheOldFileStays)
{
    const std::tuple<mode_t, mode_t, int> cases[] = {{0444, 0755, 1}, {0000, 0755, 0}, {0666, 0555, 1}};
    for (const auto& [file_mode, directory_mode, hidden_flag_read] : cases) {
        home.File(".fennick", kOld, file_mode);
        const auto read_and_write = [&, mode = directory_mode, flag = hidden_flag_read] {
            BecomeOrdinaryUser(home);
            home.SetMode("", mode);
            EXPECT_EQ(GetGTable(), FILE_DONE);
            EXPECT_EQ(table.ShowHidden, flag);
            EXPECT_EQ(SetGTable(), FILE_NOT_OPENED);
            home.SetMode("", 0755);
        };
        EXPECT_EQ(RunInChild(read_and_write), CHILD_PASSED) << std::oct << file_mode << " in " << directory_mode;
        EXPECT_EQ(Permissions(".fennick"), file_mode);
        home.SetMode(".fennick", 0600);
        ExpectOldFileAlone();
        home.Remove(".fennick");
    }
}

TEST_F(Saving, FailedWriteKeepsTheOldFile)
{
    home.File(".fennick", kOld);
    const auto write_beyond_limit = [] {
        signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit = {100, RLIM_INFINITY};
        const struct rlimit no_limit = {RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limit);
        const FileResult result = SetGTable();
        setrlimit(RLIMIT_FSIZE, &no_limit);
        EXPECT_EQ(result, FILE_NOT_WRITTEN);
    };
    EXPECT_EQ(RunInChild(write_beyond_limit), CHILD_PASSED);
    ExpectOldFileAlone();
}

TEST_F(Saving, FullDiskKeepsTheOldFile)
{
    const auto fill_and_write = [this] {
        MountSmallDisk(home.Path(), "size=64k,mode=0777");
        home.File(".fennick", kOld);
        std::ofstream filler(home.At("filler"));
        while (filler << 'x' << std::flush) {
        }
        EXPECT_EQ(SetGTable(), FILE_NOT_WRITTEN);
        home.Remove("filler");
        ExpectOldFileAlone();
    };
    const ChildResult result = RunInChild(fill_and_write);
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
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (home.Status(".fennick").st_ino == before.st_ino && std::chrono::steady_clock::now() < deadline) {
            whole = whole && is_whole(home.Contents(".fennick"));
        }
        for (std::size_t reads = random.Below(40); reads > 0; --reads) {
            whole = whole && is_whole(home.Contents(".fennick"));
        }
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        ASSERT_TRUE(whole && is_whole(home.Contents(".fennick"))) << "in round " << round;
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
