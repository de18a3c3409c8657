// What the directory tree reads, and the numbered texts.

#include "child.h"
#include "model/fnkdirtree-scan.h"
#include "core/fnkstring.h"
#include "tabletest.h"

namespace {

class Subdirectories : public TableTest {
protected:
    using Names = std::vector<std::string>;

    Names Scan(const std::string& directory)
    {
        found.clear();
        EXPECT_EQ(ScanSubdirectories(directory, found), SCAN_DONE);
        Names names;
        for (const Subdirectory& child : found) {
            names.push_back(child.name);
        }
        return names;
    }

    std::vector<Subdirectory> found;
};

TEST_F(Subdirectories, SortedByBytesWithoutLinksAndHiddenOnes)
{
    const Names shown = {" ", "Zeta", "a", "a b", "alpha", "line\nfeed", "mad\xFE", "\xE6\x97\xA5"};
    for (const std::string& name : shown) {
        files.Directory(name);
    }
    for (const char* const name : {".hidden", "old.BAK", "old~"}) {
        files.Directory(name);
    }
    files.File("file");
    files.Node("fifo", S_IFIFO);
    files.Link("to-alpha", "alpha");
    EXPECT_EQ(Scan(files.Path()), shown);
    EXPECT_EQ(Scan(files.Path().substr(0, files.Path().size() - 1)), shown);
    table.ShowHidden = 1;
    EXPECT_EQ(Scan(files.Path()).size(), shown.size() + 1);
    table.ShowBackup = 1;
    EXPECT_EQ(Scan(files.Path()).size(), shown.size() + 3);
}

TEST_F(Subdirectories, LooksOneLevelAhead)
{
    files.Directory("a/only");
    files.File("b/file");
    files.Link("b/link", "../a");
    files.Directory("b/.hidden");
    for (int i = 0; i < 20; ++i) {
        files.Directory("c/child" + std::to_string(i));
        files.Directory("c/.hidden" + std::to_string(i));
    }
    const Names in_c = files.ReadingOrder("c");
    const auto first_shown = std::find_if(in_c.begin(), in_c.end(), [](const auto& name) { return name[0] != '.'; });
    EXPECT_EQ(Scan(files.Path()), (Names{"a", "b", "c"}));
    EXPECT_EQ(found[0].any_child, "only");
    EXPECT_EQ(found[1].any_child, "");
    EXPECT_EQ(found[2].any_child, *first_shown);
    table.ShowHidden = 1;
    Scan(files.Path());
    EXPECT_EQ(found[1].any_child, ".hidden");
    EXPECT_EQ(found[2].any_child, in_c[0]);
}

TEST_F(Subdirectories, ClosedOrGone)
{
    files.Directory("open/child");
    files.Directory("closed/child");
    files.SetMode("closed", 0000);
    const auto scan = [this] {
        BecomeOrdinaryUser(files);
        EXPECT_EQ(Scan(files.Path()), (Names{"closed", "open"}));
        EXPECT_EQ(found[0].any_child, "");
        EXPECT_EQ(found[1].any_child, "child");
    };
    EXPECT_EQ(RunInChild(scan), CHILD_PASSED);
    const auto scan_closed = [this] {
        Require(chown(files.At("closed").c_str(), 65533, 65533) == 0 || geteuid() != 0, "chown");
        BecomeOrdinaryUser(files);
        EXPECT_EQ(Scan(files.At("closed/")), Names());
    };
    EXPECT_EQ(RunInChild(scan_closed), CHILD_PASSED);
    files.SetMode("closed", 0700);
    EXPECT_EQ(ScanSubdirectories(files.At("missing/"), found), SCAN_FAILED);
    EXPECT_EQ(ScanSubdirectories(files.File("file"), found), SCAN_FAILED);
}

TEST_F(Subdirectories, PathsThatWouldGrowTooLongAreLeftOut)
{
    std::string deep;
    while (files.At(deep).size() + 210 < kMaxPathBytes) {
        deep += std::string(99, 'd') + "/";
    }
    const std::size_t room = kMaxPathBytes - files.At(deep).size() - 1;  // For a name, its "/" set aside.
    const std::string fits(room, 'f');
    const std::string half(room - 10, 'h');
    for (const std::string& name : {fits + "/x", std::string(room + 1, 't'), half + "/123456789"}) {
        files.Directory(deep + name);
    }
    EXPECT_EQ(Scan(files.At(deep)), (Names{fits, half}));
    EXPECT_EQ(found[0].any_child, "");
    EXPECT_EQ(found[1].any_child, "123456789");
    files.Remove(deep + half + "/123456789");
    files.Directory(deep + half + "/1234567890");
    Scan(files.At(deep));
    EXPECT_EQ(found[1].any_child, "");
}

TEST(Texts, AreAddressedByNumber)
{
    EXPECT_EQ(GetMenuTipsString(9), "Close this window.");
    EXPECT_EQ(GetMenuTipsString(kMenuEntryCount - 1), "Create a new file.");
    EXPECT_EQ(GetToolTipsString(kToolSlotCount - 1), "Show property.");
    EXPECT_EQ(GetMenuTipsString(1) + GetToolTipsString(3), "");
    for (const int outside : {-1, 27, 1000000}) {
        EXPECT_EQ(GetMenuTipsString(outside) + GetToolTipsString(outside) + GetListColumnString(outside), "");
    }
    for (int id = 0; id < kColumnKinds; ++id) {
        EXPECT_EQ(GetListStringColumn(GetListColumnString(id).c_str()), id);
    }
    EXPECT_EQ(GetListStringColumn("name"), kColumnKinds);
    EXPECT_EQ(GetListStringColumn(""), kColumnKinds);
    EXPECT_EQ(GetListStringColumn(nullptr), 0);
}

}  // namespace
