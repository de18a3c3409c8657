// Searching for names: what a search finds, where it goes, and that it can be stopped.

#include "child.h"
#include "model/fnkeditmenu-find-walk.h"
#include "scratch.h"

namespace {

using Paths = std::vector<std::string>;

class Find : public ::testing::Test {
protected:
    /// Everything in the tree in the order of the rows; directories end in "/".
    static void List(const FoundTree& tree, std::uint32_t index, const std::string& prefix, Paths& paths)
    {
        const FoundEntry& entry = tree.Entry(index);
        for (std::uint32_t child = entry.first_child; child < entry.first_child + entry.child_count; ++child) {
            EXPECT_EQ(tree.Entry(child).parent, index);
            const std::string path = prefix + tree.Name(child) + (tree.Entry(child).is_directory ? "/" : "");
            paths.push_back(path);
            List(tree, child, path, paths);
        }
    }
    static Paths Search(const FindRequest& request)
    {
        FindProgress progress;
        const FoundTree tree = FindFile(request, progress);
        EXPECT_EQ(tree.Name(FoundTree::kTop), request.StartPath);
        Paths paths;
        List(tree, FoundTree::kTop, "", paths);
        return paths;
    }
    Paths Below(const std::string& pattern) const { return Search({files.Path(), pattern, true}); }

    ScratchDirectory files;
};

TEST_F(Find, WhatMatchesAndTheWayThere)
{
    for (const char* const name :
         {"a.c", "B.c", "mad\xFF.c", "sub/b.c", "sub/deep/er/z.c", "sub/deep/note", "x.c/none", ".h.c"}) {
        files.File(name);
    }
    files.Directory("empty");
    files.Link("link.c", "sub");
    files.Link("loop", ".");
    EXPECT_EQ(Search({files.Path(), "*.c", false}), (Paths{".h.c", "B.c", "a.c", "link.c", "mad\xFF.c", "x.c/"}));
    EXPECT_EQ(Below("*.c"), (Paths{".h.c", "B.c", "a.c", "link.c", "mad\xFF.c", "sub/", "sub/b.c", "sub/deep/",
                                   "sub/deep/er/", "sub/deep/er/z.c", "x.c/"}));
    EXPECT_EQ(Below("e*"), (Paths{"empty/", "sub/", "sub/deep/", "sub/deep/er/"}));
    EXPECT_EQ(Below("[!a-z]*"), (Paths{".h.c", "B.c"}));
    EXPECT_EQ(Below("A.C"), Paths());
    EXPECT_EQ(Search({files.At("sub/deep/"), "*", true}), (Paths{"er/", "er/z.c", "note"}));
    EXPECT_EQ(Search({"/", "proc", false}), Paths{"proc/"});
    EXPECT_EQ(Search({files.At("gone/"), "*", true}), Paths());
    EXPECT_EQ(Search({files.At("loop/"), "*", true}), Paths()) << "exchanged for a link";
}

TEST_F(Find, UnreadableDirectoriesArePassedOver)
{
    files.File("open/a.c");
    files.File("shut.c/a.c");
    files.File("shut/a.c");
    files.SetMode("shut", 0);
    files.SetMode("shut.c", 0);
    EXPECT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser(files);
                  EXPECT_EQ(Below("*.c"), (Paths{"open/", "open/a.c", "shut.c/"}));
              }),
              CHILD_PASSED);
}

TEST_F(Find, OtherDisksAreEnteredButNothingTwiceOnOnePath)
{
    files.Directory("disk");
    files.Directory("twin");
    files.File("note");
    const ChildResult result = RunInChild([this] {
        MountSmallDisk(files.At("disk"), "size=1m");
        files.File("disk/note");
        Require(mount(files.Path().c_str(), files.At("twin").c_str(), nullptr, MS_BIND, nullptr) == 0, "mount");
        EXPECT_EQ(Below("note"), (Paths{"disk/", "disk/note", "note"}));
        EXPECT_EQ(Below("twin"), (Paths{"twin/"}));
    });
    if (result == CHILD_SKIPPED) {
        GTEST_SKIP() << "no mounts allowed here";
    }
    EXPECT_EQ(result, CHILD_PASSED);
}

}  // namespace
