// Copying and moving: what arrives, what stays, who is asked, on a real file system.

#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>

#include "child.h"
#include "enginetest.h"
#include "core/fnkraii.h"

namespace {

class CopyTest : public EngineTest {
protected:
    /// One of everything, in directories of several modes.
    void MakeTree(const std::string& name) const
    {
        files.File(name + "/plain", "one", 0640);
        files.File(name + "/program", "#!", 04755);
        files.File(name + "/sub/deep/leaf", "two");
        files.File(name + "/sub/new\nline and \xFF bytes", "three", 0600);
        files.File(name + "/empty", "");
        files.Directory(name + "/hollow");
        files.Link(name + "/link", "sub/deep");
        files.Link(name + "/dangling", "/no where\n");
        files.SetMode(name + "/sub", 0710);
    }
};

TEST_F(CopyTest, ATreeArrivesExactlyAndTheSourceStays)
{
    MakeTree("tree");
    files.Directory("there");
    const Tree before = Describe("tree");
    EXPECT_EQ(Copy("there", {"tree/"}), RESULT_DONE);
    EXPECT_EQ(Describe("there/tree"), before);
    EXPECT_EQ(Describe("tree"), before);
    EXPECT_EQ(Copy("as/yet/missing", {"tree/"}), RESULT_DONE) << "to a new name, with parents";
    EXPECT_EQ(Describe("as/yet/missing"), before);
    EXPECT_EQ(answers.steps, 14) << "one for everything but directories";
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_EQ(Copy("there/renamed", {"tree/plain"}), RESULT_DONE);
    EXPECT_EQ(DescribeObject("there/renamed"), "file 640 one");
}

TEST_F(CopyTest, ATreeMovesInOneStep)
{
    MakeTree("tree");
    files.Directory("there");
    const Tree before = Describe("tree");
    const ino_t inode = files.Status("tree").st_ino;
    EXPECT_EQ(Move("there", {"tree/"}), RESULT_DONE);
    EXPECT_EQ(Describe("there/tree"), before);
    EXPECT_EQ(files.Status("there/tree").st_ino, inode);
    EXPECT_FALSE(Exists("tree"));
    EXPECT_EQ(answers.steps, 1);
}

TEST_F(CopyTest, DirectoriesMerge)
{
    for (const bool move : {false, true}) {
        answers = Answers();
        answers.to_messages = {RESULT_OK};
        const std::string root = move ? "moving" : "copying";
        files.File(root + "/from/d/same", "new");
        files.File(root + "/from/d/sub/own", "new");
        files.File(root + "/to/d/same", "old", 0600);
        files.File(root + "/to/d/sub/other", "old");
        files.File(root + "/to/d/only", "old");
        files.SetMode(root + "/from/d", 0750);
        const std::vector<std::string> source = {root + "/from/d/"};
        EXPECT_EQ(move ? Move(root + "/to", source) : Copy(root + "/to", source), RESULT_DONE);
        EXPECT_EQ(Describe(root + "/to/d"), (Tree{{"same", "file 644 new"},
                                                  {"only", "file 644 old"},
                                                  {"sub", "directory 755 "},
                                                  {"sub/own", "file 644 new"},
                                                  {"sub/other", "file 644 old"}}));
        EXPECT_EQ(files.Status(root + "/to/d").st_mode & 07777, 0750U) << "its bits are the source's";
        EXPECT_EQ(Exists(root + "/from/d"), !move);
        EXPECT_EQ(answers.asked, Asked{Question(root + "/to/d")});
        EXPECT_EQ(answers.steps, 2);
    }
}

TEST_F(CopyTest, OverwritingIsAskedOnceAndNoKeepsTheOld)
{
    files.File("a", "new");
    files.File("b", "new");
    files.File("to/a", "old");
    files.File("to/b", "old");
    answers.to_messages = {RESULT_CANCEL};
    EXPECT_EQ(Copy("to", {"a", "b"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, (Asked{Question("to/a"), Question("to/b")}));
    EXPECT_EQ(answers.steps, 2) << "declined items are steps too";
    EXPECT_EQ(files.Contents("to/a") + files.Contents("to/b"), "oldold");

    answers = Answers();
    answers.to_messages = {RESULT_OK};
    EXPECT_EQ(Copy("to", {"a", "b"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked{Question("to/a")});
    EXPECT_EQ(files.Contents("to/a") + files.Contents("to/b"), "newnew");

    // An item that meets nothing counts as the question passed.
    files.File("c", "fresh");
    files.File("to/b", "old");
    answers = Answers();
    EXPECT_EQ(Copy("to", {"c", "b"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_EQ(files.Contents("to/b"), "new");

    table.ConfilmOverwrite = 0;
    EXPECT_EQ(Move("to", {"a"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_FALSE(Exists("a"));
}

TEST_F(CopyTest, AnItemOntoItselfIsDoneAndStays)
{
    MakeTree("tree");
    files.File("file", "content");
    files.Link("alias", ".");
    const Tree before = Describe("");
    for (const char* const destination : {"file", "", "alias/file"}) {
        EXPECT_EQ(Copy(destination, {"file"}), RESULT_DONE);
        table.ConfilmOverwrite = 0;
        EXPECT_EQ(Move(destination, {"file"}), RESULT_DONE);
    }
    EXPECT_EQ(Move("tree", {"tree/"}), RESULT_DONE);
    answers.asked.clear();
    EXPECT_EQ(Move("", {"tree/"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_EQ(Describe(""), before);
}

TEST_F(CopyTest, ADirectoryDoesNotGoIntoItself)
{
    MakeTree("tree");
    files.Link("alias", "tree");
    files.Directory("tree2");
    const Tree before = Describe("");
    for (const char* const destination :
         {"tree", "tree/sub", "tree/new", "alias/sub", "alias/new", "tree2/../tree/x"}) {
        for (const bool move : {false, true}) {
            answers = Answers();
            EXPECT_EQ(move ? Move(destination, {"tree/"}) : Copy(destination, {"tree/"}), RESULT_DONE);
            EXPECT_EQ(answers.asked, Asked{"Error: Cannot move to a sub directory."}) << destination;
            EXPECT_EQ(answers.steps, 1);
        }
    }
    EXPECT_EQ(Describe(""), before);
    EXPECT_EQ(Copy("tree2", {"tree/"}), RESULT_DONE) << "a name that begins alike is another place";
    EXPECT_TRUE(Exists("tree2/tree/sub/deep/leaf"));
}

TEST_F(CopyTest, MountsHideNoDirectoryFromItself)
{
    const ChildResult result = RunInChild([this] {
        MountSmallDisk(files.Directory("disk"), "size=8m");
        MakeTree("disk/tree");
        const auto bind = [this](const std::string& what, const std::string& where) {
            Require(mount(files.At(what).c_str(), files.Directory(where).c_str(), nullptr, MS_BIND, nullptr) == 0,
                    where);
        };
        bind("disk/tree", "whole");
        bind("disk/tree/sub", "part with blank");
        for (const char* const destination : {"whole", "whole/new", "part with blank", "part with blank/new"}) {
            const Tree before = Describe("disk");
            answers = Answers();
            Copy(destination, {"disk/tree/"});
            EXPECT_EQ(answers.asked, Asked{"Error: Cannot move to a sub directory."}) << destination;
            EXPECT_EQ(Describe("disk"), before);
        }
        // The destination seen again inside the source.
        files.Directory("disk/there");
        bind("disk/there", "disk/tree/window");
        answers = Answers();
        Copy("disk/there", {"disk/tree/"});
        EXPECT_EQ(answers.asked, Asked{"Error: Cannot move to a sub directory."});
        EXPECT_TRUE(Exists("disk/there/tree/sub/deep/leaf"));
    });
    if (result == CHILD_SKIPPED) {
        GTEST_SKIP() << "no mounts allowed here";
    }
    EXPECT_EQ(result, CHILD_PASSED);
}

TEST_F(CopyTest, DirectoriesGetTheirBitsWhereThereIsNoProc)
{
    const ChildResult result = RunInChild([this] {
        MountSmallDisk("/proc", "size=4k");
        files.Directory("tree/sub");
        files.SetMode("tree/sub", 0505);
        files.SetMode("tree", 0751);
        EXPECT_EQ(Copy("copy", {"tree/"}), RESULT_DONE);
        EXPECT_EQ(Describe("copy"), Describe("tree"));
        EXPECT_EQ(files.Status("copy").st_mode, files.Status("tree").st_mode);
    });
    if (result == CHILD_SKIPPED) {
        GTEST_SKIP() << "no mounts allowed here";
    }
    EXPECT_EQ(result, CHILD_PASSED);
}

TEST_F(CopyTest, FilesAndLinksReplaceFilesAndLinks)
{
    table.ConfilmOverwrite = 0;
    files.File("outside", "outside");
    for (const bool move : {false, true}) {
        for (const char* const target : {"to/link", "to/file"}) {
            for (const char* const source : {"new", "new-link"}) {
                std::filesystem::remove(files.At(source));
                std::filesystem::remove_all(files.At("to"));
                files.Link("to/link", files.At("outside"));
                files.File("to/file", "old");
                source == std::string("new") ? files.File("new", "new", 0604) : files.Link("new-link", "text");
                const std::string before = DescribeObject(source);
                EXPECT_EQ(move ? Move(target, {source}) : Copy(target, {source}), RESULT_DONE);
                EXPECT_EQ(DescribeObject(target), before);
                EXPECT_EQ(Exists(source), !move);
                EXPECT_EQ(files.Names("to").size(), 2U);
            }
        }
    }
    EXPECT_EQ(files.Contents("outside"), "outside");
    EXPECT_EQ(answers.asked, Asked());
}

TEST_F(CopyTest, ADirectoryInTheWayOfAFileGoesOnlyIfEmpty)
{
    answers.to_messages = {RESULT_OK};
    files.File("from/x", "new");
    files.Directory("to/from/x");
    EXPECT_EQ(Copy("to", {"from/"}), RESULT_DONE);
    EXPECT_EQ(DescribeObject("to/from/x"), "file 644 new");

    files.Remove("to/from/x");
    files.File("to/from/x/kept", "old");
    answers.asked.clear();
    EXPECT_EQ(Move("to", {"from/"}), RESULT_OK) << "a move stops there";
    EXPECT_EQ(answers.asked.back(), Failure("delete", "to/from/x", "Directory not empty"));
    EXPECT_EQ(files.Contents("to/from/x/kept") + files.Contents("from/x"), "oldnew");
}

TEST_F(CopyTest, LinksWhereADirectoryIsToBeAreNotGivenUpUnnoticed)
{
    files.File("from/d/x", "new");
    files.File("elsewhere/x", "old");
    files.Link("to/from/d", files.At("elsewhere"));
    table.ConfilmOverwrite = 0;
    // No leaves the link, and what it leads to.
    answers.to_messages = {RESULT_CANCEL};
    EXPECT_EQ(Copy("to", {"from/"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked{Question("to/from/d")});
    EXPECT_EQ(answers.steps, 1);
    EXPECT_EQ(DescribeObject("to/from/d"), "link " + files.At("elsewhere"));
    // Yes puts a directory in its place.
    answers.to_messages = {RESULT_OK};
    EXPECT_EQ(Copy("to", {"from/"}), RESULT_DONE);
    EXPECT_EQ(DescribeObject("to/from/d/x"), "file 644 new");
    EXPECT_EQ(files.Contents("elsewhere/x"), "old");
    // On the way to the named place a link is a directory like any other.
    answers.asked.clear();
    files.Link("way", "elsewhere");
    EXPECT_EQ(Copy("way/copy", {"from/"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_EQ(DescribeObject("elsewhere/copy/d/x"), "file 644 new");
    // The question that overwriting asks anyway is enough.
    table.ConfilmOverwrite = 1;
    EXPECT_EQ(Copy("way", {"from/"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked{Question("way")});
    EXPECT_EQ(DescribeObject("way"), "directory 755 ");
    // Files in the way go without a word.
    answers.asked.clear();
    files.File("file", "old");
    EXPECT_EQ(Copy("file/below", {"from/"}), RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_TRUE(Exists("file/below/d/x"));
}

TEST_F(CopyTest, ARootThatIsReachedThroughALinkIsADirectory)
{
    files.File("from/d/x", "x");
    files.Directory("real");
    files.Link("root", "real");
    table.RootDir = files.At("root/");
    answers.to_messages = {RESULT_OK};
    EXPECT_EQ(Copy("root", {"from/d/x", "from/d/"}), RESULT_DONE);
    EXPECT_EQ(Move("root/", {"from/d/"}), RESULT_DONE);
    EXPECT_EQ(Describe("real"), (Tree{{"x", "file 644 x"}, {"d", "directory 755 "}, {"d/x", "file 644 x"}}));
    EXPECT_EQ(DescribeObject("root"), "link real");
    EXPECT_EQ(answers.asked, Asked{Question("root/d")});
    EXPECT_FALSE(Exists("from/d"));
}

TEST_F(CopyTest, SpecialFilesBecomeEmptyFilesAndAreNeverOpened)
{
    files.Node("from/pipe", S_IFIFO);
    files.Node("from/socket", S_IFSOCK);
    files.SetMode("from/pipe", 0620);
    EXPECT_EQ(Copy("to", {"from/"}), RESULT_DONE);
    EXPECT_EQ(Describe("to"), (Tree{{"pipe", "file 620 "}, {"socket", "file 644 "}}));
}

TEST_F(CopyTest, HolesStayHoles)
{
    constexpr off_t kSize = 64 << 20;
    files.File("sparse", "begin");
    const auto write_at = [this](off_t position, const char* text) {
        const Descriptor file(open(files.At("sparse").c_str(), O_WRONLY));
        Require(pwrite(file.Get(), text, std::strlen(text), position) > 0, "pwrite");
    };
    write_at(kSize / 2, "middle");
    Require(truncate(files.At("sparse").c_str(), kSize) == 0, "truncate");
    EXPECT_EQ(Copy("copy", {"sparse"}), RESULT_DONE);
    EXPECT_EQ(files.Status("copy").st_size, kSize);
    EXPECT_LE(files.Status("copy").st_blocks, files.Status("sparse").st_blocks + 16);
    EXPECT_TRUE(files.Contents("copy") == files.Contents("sparse"));
}

TEST_F(CopyTest, LargeFilesAndFilesThatSayTheyAreEmptyArriveWhole)
{
    std::string content(9'000'001, '\0');
    for (std::size_t i = 0; i < content.size(); ++i) {
        content[i] = static_cast<char>(i * i >> 5);
    }
    files.File("large", content);
    EXPECT_EQ(Copy("copy", {"large"}), RESULT_DONE);
    EXPECT_TRUE(files.Contents("copy") == content);
    int flag = 0;
    EXPECT_EQ(CopyFile(files.At("status"), "/proc/self/status", &flag), RESULT_DONE);
    EXPECT_TRUE(files.Contents("status").starts_with("Name:"));
}

TEST_F(CopyTest, CancelInsideALargeFileLeavesNothingOfIt)
{
    files.File("large", std::string(128 << 20, 'x'));
    files.File("to/large", "old");
    table.ConfilmOverwrite = 0;
    answers.cancel_when_painting = true;
    EXPECT_EQ(Copy("to", {"large"}), RESULT_CANCEL);
    EXPECT_EQ(Describe("to"), (Tree{{"large", "file 644 old"}}));
}

TEST_F(CopyTest, CancelCountsAtARefusedItemToo)
{
    table.ConfilmOverwrite = 0;
    files.File("a");
    files.File("b");
    files.File("to/a/full");
    answers.to_messages = {RESULT_OK};
    answers.cancel_at_step = 1;
    EXPECT_EQ(Copy("to", {"a", "b"}), RESULT_CANCEL);
    EXPECT_FALSE(Exists("to/b"));
}

TEST_F(CopyTest, NamesOfOneInode)
{
    table.ConfilmOverwrite = 0;
    files.File("one", "content");
    std::filesystem::create_hard_link(files.At("one"), files.At("two"));
    EXPECT_EQ(Copy("two", {"one"}), RESULT_DONE);
    EXPECT_EQ(files.Contents("one") + files.Contents("two"), "contentcontent");
    std::filesystem::create_hard_link(files.At("one"), files.At("three"));
    EXPECT_EQ(Move("three", {"one"}), RESULT_DONE);
    EXPECT_EQ(files.Names(), (std::vector<std::string>{"three", "two"}));
    EXPECT_EQ(files.Contents("three"), "content");

    // One name less also where both are alike.
    files.Directory("there");
    files.Remove("three");
    for (const char* const target : {"there/three", "Three"}) {
        std::filesystem::create_hard_link(files.At("two"), files.At("three"));
        std::filesystem::create_hard_link(files.At("two"), files.At(target));
        EXPECT_EQ(Move(target, {"three"}), RESULT_DONE);
        EXPECT_FALSE(Exists("three")) << target;
        EXPECT_EQ(files.Contents(target), "content");
    }
}

TEST_F(CopyTest, DirectoriesSwappedForLinksUnderWayHarmNothingOutside)
{
    const std::string sides[] = {"from", "to"};
    for (int swap_at = 1; swap_at <= 6; ++swap_at) {
        for (const std::string& side : sides) {
            for (const char* const below : {"/t", "/t/sub", "/t/sub/deep"}) {
                for (const bool move : {false, true}) {
                    for (const char* const name : {"from", "to", "outside", "aside"}) {
                        std::filesystem::remove_all(files.At(name));
                    }
                    for (const char* const root : {"from/t", "to/t", "outside", "outside/sub", "outside/sub/deep"}) {
                        MakeTree(root);
                        files.File(std::string(root) + "/sub/deep/leaf", root);
                    }
                    const Tree before = Describe("outside");
                    answers = Answers();
                    answers.to_messages = {RESULT_OK};
                    answers.at_step = [&] {
                        const std::string name = side + below;
                        if (answers.steps == swap_at && Exists(name)) {
                            std::filesystem::rename(files.At(name), files.At("aside"));
                            files.Link(name, files.At("outside"));
                        }
                    };
                    table.ConfilmOverwrite = 0;
                    move ? Move("to", {"from/t/"}) : Copy("to", {"from/t/"});
                    answers.at_step = nullptr;
                    EXPECT_EQ(Describe("outside"), before) << side << below << " at step " << swap_at << move;
                }
            }
        }
    }
}

TEST_F(CopyTest, PrivateFilesAreNeverReadableByOthers)
{
    // At every moment that another process could see, that is at each step and after it, no object
    // on the target side has a bit for others that its source has not.
    files.File("from/secret", "secret", 0600);
    files.File("from/d/secret2", "secret", 0640);
    files.SetMode("from/d", 0700);
    files.SetMode("from", 0700);
    const mode_t old_mask = umask(0);
    answers.at_step = [&] {
        for (const auto& [path, what] : Describe("to")) {
            EXPECT_EQ(what, Describe("from")[path]) << path;
        }
    };
    EXPECT_EQ(Copy("to", {"from/"}), RESULT_DONE);
    umask(old_mask);
    answers.at_step = nullptr;
    EXPECT_EQ(Describe("to"), Describe("from"));
}

}  // namespace
