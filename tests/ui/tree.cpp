// The directory tree: what it shows, how it is opened, collapsed and read again.

#include "core/fnkfiles-settings.h"
#include "core/fnkutil.h"
#include "windowtest.h"

namespace {

class Tree : public WindowTest {
protected:
    Tree()
    {
        for (const char* const name : {"alpha", "Zeta/one/two/three", "beta/x", "beta/y", "only-hidden/.secret",
                                       "backup~", ".hidden/below", "only-files"}) {
            files.Directory(name);
        }
        files.File("only-files/file");
        files.File("file");
        files.Link("link", "beta");
        files.Link("only-links/link", "../beta");
    }
};

TEST_F(Tree, ShowsEligibleDirectoriesInByteOrderWithExpandersWhereThereIsMore)
{
    Start();
    EXPECT_EQ(ChildNames(files.Path()), (Names{"Zeta", "alpha", "beta", "only-files", "only-hidden", "only-links"}));
    EXPECT_TRUE(IsExpanded(files.Path()));
    for (const char* const name : {"alpha", "only-files", "only-hidden", "only-links"}) {
        EXPECT_FALSE(HasExpander(files.At(name))) << name;
    }
    // One child is read ahead, not all of them.
    EXPECT_EQ(ChildNames(files.At("beta")).size(), 1U);
    EXPECT_FALSE(IsExpanded(files.At("beta")));
    ExpectConsistent();
}

TEST_F(Tree, ShowsHiddenAndBackupDirectoriesWhenTold)
{
    Settings("[Setting]\nShowHidden=yes\nShowBackup=yes\n");
    Start();
    EXPECT_EQ(ChildNames(files.Path()).size(), 8U);
    EXPECT_TRUE(HasExpander(files.At("only-hidden")));
    ExpectConsistent();
}

TEST_F(Tree, OpensAPathAsFarAsItExists)
{
    Start();
    const struct {
        std::string path;
        ExpandLast expand_last;
        const char* expected;  ///< Below the root.
        bool expanded;
    } kCases[] = {
        {files.At("beta"), EXPAND_LAST_NO, "beta/", false},
        {files.At("beta/"), EXPAND_LAST_YES, "beta/", true},
        {files.At("Zeta/one/two/three"), EXPAND_LAST_YES, "Zeta/one/two/three/", false},
        {files.At("file"), EXPAND_LAST_NO, "", true},
        {files.At("only-files/file"), EXPAND_LAST_YES, "only-files/", false},
        {files.At("Zeta/gone/further"), EXPAND_LAST_NO, "Zeta/", true},
        {files.At("link/x"), EXPAND_LAST_NO, "", true},
        {files.At(".hidden/below"), EXPAND_LAST_NO, "", true},
        {files.At("alpha//"), EXPAND_LAST_NO, "alpha/", false},
        {"/", EXPAND_LAST_YES, "alpha/", false},
        {files.Path().substr(0, files.Path().size() - 2), EXPAND_LAST_YES, "alpha/", false},
        {"alpha", EXPAND_LAST_YES, "alpha/", false},
        {"", EXPAND_LAST_YES, "alpha/", false},
        {files.Path().substr(0, files.Path().size() - 1), EXPAND_LAST_YES, "", true},
    };
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.path);
        OpenChildTree(MainTree(), test.path, test.expand_last);
        Settle();
        EXPECT_EQ(pGTable->CurrentDir, files.At(test.expected));
        EXPECT_EQ(IsExpanded(pGTable->CurrentDir), test.expanded);
        ExpectConsistent();
    }
}

TEST_F(Tree, StartsInTheStartDirectory)
{
    Start(files.Path(), files.At("Zeta/one/two"));
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/one/two/"));
    EXPECT_FALSE(IsExpanded(pGTable->CurrentDir));
    EXPECT_EQ(pGTable->LocationDirHistory, (History{files.At("Zeta/one/two/"), files.Path()}));
    EXPECT_EQ(GetRowVisibility(MainTree(), NodePath(pGTable->CurrentDir).get()), ROW_VISIBLE);
    ExpectConsistent();
}

TEST_F(Tree, LooksAgainForADirectoryThatIsYoungerThanItself)
{
    Start();
    SetExpanded(files.At("beta"), true);
    files.Directory("alpha/new/newer");
    files.Directory("beta/middle");
    OpenChildTree(MainTree(), files.At("beta/middle"), EXPAND_LAST_NO);
    EXPECT_EQ(pGTable->CurrentDir, files.At("beta/middle/"));
    OpenChildTree(MainTree(), files.At("alpha/new/newer"), EXPAND_LAST_NO);
    EXPECT_EQ(pGTable->CurrentDir, files.At("alpha/new/newer/"));
    ExpectConsistent();
}

TEST_F(Tree, AClickEntersADirectoryOnce)
{
    Start();
    ClickNode(files.At("beta"));
    EXPECT_EQ(pGTable->CurrentDir, files.At("beta/"));
    ExpectConsistent();
    SelectNames({"x"});
    ClickNode(files.At("beta"));
    EXPECT_EQ(SelectedNames(), Names{"x"}) << "the list was filled again";
    EXPECT_EQ(pGTable->LocationDirHistory.size(), 2U);
    ExpectConsistent();
}

TEST_F(Tree, CollapsingAroundTheSelectionSelectsTheCollapsedNode)
{
    Start();
    Visit("Zeta/one/two");
    SetExpanded(files.At("beta"), true);
    SetExpanded(files.At("beta"), false);
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/one/two/"));
    ExpectConsistent();
    SetExpanded(files.At("Zeta"), false);
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/"));
    EXPECT_FALSE(IsExpanded(files.At("Zeta")));
    ExpectConsistent();
    // A name that merely begins alike is no child.
    files.Directory("Zeta2/below");
    Visit("Zeta2/below");
    SetExpanded(files.At("Zeta"), true);
    SetExpanded(files.At("Zeta"), false);
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta2/below/"));
    ExpectConsistent();
}

TEST_F(Tree, ExpandingAgainShowsNewDirectoriesAndOnlyRescanningDropsOldOnes)
{
    Start();
    Visit("beta");
    SetExpanded(files.At("beta"), false);
    files.Directory("beta/new");
    files.Remove("beta/x");
    SetExpanded(files.At("beta"), true);
    EXPECT_EQ(ChildNames(files.At("beta")), (Names{"new", "x", "y"}));
    RescanTree(MainTree(), pGTable->CurrentDir);
    EXPECT_EQ(ChildNames(files.At("beta")), (Names{"new", "y"}));
    EXPECT_TRUE(IsExpanded(files.At("beta")));
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES);
    ExpectConsistent();
}

TEST_F(Tree, RescanningKeepsTheSelectionAndTheExpansionOfTheNode)
{
    Start();
    Visit("Zeta/one");
    RescanTree(MainTree(), files.At("Zeta/"));
    EXPECT_EQ(TreeSelected(), files.At("Zeta/one/"));
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/one/"));
    EXPECT_TRUE(IsExpanded(files.At("Zeta")));
    ExpectConsistent();

    // All children go and come back: an emptied node must not stay collapsed.
    RescanTree(MainTree(), files.At("beta/"));
    EXPECT_FALSE(IsExpanded(files.At("beta")));
    RescanTree(MainTree(), files.Path());
    EXPECT_TRUE(IsExpanded(files.Path()));
    EXPECT_TRUE(IsInTree(TreeSelected()));
    RescanTree(MainTree(), files.At("gone/"));
    RescanTree(MainTree(), "/");
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES);
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/one/"));
    ExpectConsistent();
}

TEST_F(Tree, ANodeCanBeAddedByPath)
{
    Start();
    files.Directory("apple");
    GtkTreeIter node;
    ASSERT_TRUE(CreateTreeNode(MainTree(), files.At("apple/"), &node));
    EXPECT_EQ(GetNodePath(MainTree(), node), files.At("apple/"));
    EXPECT_FALSE(CreateTreeNode(MainTree(), "/apple/", &node));
    EXPECT_FALSE(CreateTreeNode(MainTree(), files.At("nowhere/apple/"), &node));
    ExpectConsistent(DISK_CHANGED);
    OpenChildTree(MainTree(), files.Path(), EXPAND_LAST_YES);
    ExpectConsistent();
}

TEST_F(Tree, ADirectoryThatMayNotBeReadHasNoChildrenAndNoMessage)
{
    files.Directory("closed/inside");
    files.SetMode("closed", 0);
    Start();
    const OrdinaryUser user({&files, &home});
    ClickTool(TOOL_RESCAN);
    EXPECT_TRUE(IsInTree(files.At("closed")));
    EXPECT_FALSE(HasExpander(files.At("closed")));
    Visit("closed/inside");
    EXPECT_EQ(pGTable->CurrentDir, files.At("closed/"));
    EXPECT_EQ(ListNames(), Names{".."});
    ExpectConsistent();
    files.SetMode("closed", 0755);
    ClickTool(TOOL_RESCAN);
    EXPECT_TRUE(HasExpander(files.At("closed")));
    ExpectConsistent();
}

class StrangeNames : public WindowTest, public ::testing::WithParamInterface<NamedText> {};

TEST_P(StrangeNames, AreEnteredLeftRecordedAndStored)
{
    const std::string& name = GetParam().text;
    files.Directory(name + "/" + name);
    const std::string file = name.substr(0, 250) + ".txt";
    files.File(name + "/" + file);
    Start();
    for (const std::string& step : {name + "/", name + "/" + name + "/"}) {
        DoubleClickRow(name);
        EXPECT_EQ(pGTable->CurrentDir, files.At(step));
        EXPECT_EQ(pGTable->LocationDirHistory.front(), files.At(step));
        ExpectConsistent();
    }
    DoubleClickRow("..");
    EXPECT_EQ(pGTable->CurrentDir, files.At(name + "/"));
    ExpectConsistent();
    SelectNames({file});
    ExpectConsistent();
    ClickTool(TOOL_UP);
    ClickTool(TOOL_BACK);
    EXPECT_EQ(pGTable->CurrentDir, files.At(name + "/"));
    ExpectConsistent();

    const History visited = pGTable->LocationDirHistory;
    Close();
    GTable stored;
    pGTable = &stored;
    EXPECT_EQ(GetGTable(), 0);
    pGTable = nullptr;
    const bool has_newline = name.find('\n') != std::string::npos;
    EXPECT_EQ(stored.LocationDirHistory, has_newline ? History{files.Path()} : visited);
    EXPECT_EQ(stored.CurrentDir, has_newline ? "" : files.At(name + "/"));
}

INSTANTIATE_TEST_SUITE_P(All, StrangeNames,
                         ::testing::Values(NamedText{"Blanks", "with blanks "},
                                           NamedText{"Japanese", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"},
                                           NamedText{"JapaneseOneLetter", "\xE8\xA1\xA8"},
                                           NamedText{"Invalid", "\xFF\xFE\x80"}, NamedText{"Truncated", "half\xE6\x97"},
                                           NamedText{"Newline", "two\nlines"}, NamedText{"Pattern", "*?[\\"},
                                           NamedText{"Controls", "-dash=\t\x01"},
                                           NamedText{"Long", std::string(255, 'n')}),
                         NameOfText);

}  // namespace
