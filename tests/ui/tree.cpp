// The directory tree: what it shows, how it is opened, collapsed and read again.

#include "acts.h"
#include "core/fnkfiles-settings.h"

namespace {

class Tree : public WindowTest {
protected:
    Tree()
    {
        Make({"alpha/", "Zeta/one/two/three/", "beta/x/", "beta/y/", "only-hidden/.secret/", "backup~/",
              ".hidden/below/", "only-files/file", "file", "link -> beta", "only-links/link -> ../beta"});
    }
    /// Whether the directory shown is expanded in the tree.
    std::string State() const override { return IsExpanded(pGTable->CurrentDir) ? "+" : "-"; }
};

TEST_F(Tree, ShowsDirectoriesInByteOrder)
{
    Start();
    EXPECT_EQ(Joined(ChildNames(files.Path())), "Zeta,alpha,beta,only-files,only-hidden,only-links");
    EXPECT_EQ(ChildNames(files.At("beta")).size(), 1U) << "one child is enough for an expander";
    ExpectConsistent();
    Close();
    Settings("[Setting]\nShowHidden=yes\nShowBackup=yes\n");
    Start();
    EXPECT_EQ(ChildNames(files.Path()).size(), 8U);
    EXPECT_TRUE(HasExpander(files.At("only-hidden")));
    ExpectConsistent();
}

TEST_F(Tree, OpensAPathAsFarAsItExists)
{
    Start(files.Path(), files.At("Zeta/one/two"));
    EXPECT_EQ(GetRowVisibility(MainTree(), NodePath(pGTable->CurrentDir).get()), ROW_VISIBLE);
    EXPECT_EQ(pGTable->LocationDirHistory, (History{files.At("Zeta/one/two/"), files.Path()}));
    ExpectAt("Zeta/one/two/");
    EXPECT_EQ(State(), "-");
    Steps(
        "open beta = beta/ - -; visit beta/ = beta/ - +; visit Zeta/one/two/three = Zeta/one/two/three/ - -;"
        "open file = . - +; visit only-files/file = only-files/ - -; open Zeta/gone/further = Zeta/ - +;"
        "open link/x = . - +; open .hidden/below = . - +; open alpha// = alpha/ - -");
    const std::string root = files.Path();
    for (const std::string& path : Names{"/", root.substr(0, root.size() - 2), "alpha", ""}) {
        OpenChildTree(MainTree(), path, EXPAND_LAST_YES);
        ExpectAt("alpha/");
    }
    OpenChildTree(MainTree(), root.substr(0, root.size() - 1), EXPAND_LAST_YES);
    ExpectAt("");
    // It may be younger than the tree, and its name begin as another one.
    Steps(
        "expand beta; make beta/middle/; open beta/middle = beta/middle/; make alpha/new/newer/;"
        "open alpha/new/newer = alpha/new/newer/; make be/; visit be = be/");
    Steps("node beta = beta/ -; select x; node beta = beta/ x");  // A click enters a directory once.
}

TEST_F(Tree, CollapsingAroundTheSelectionSelectsTheCollapsedNode)
{
    Make({"Zeta2/below/"});
    Start();
    Steps(
        "visit Zeta/one/two; expand beta; collapse beta = Zeta/one/two/; collapse Zeta = Zeta/ - -;"
        "visit Zeta2/below; expand Zeta; collapse Zeta = Zeta2/below/");  // It merely begins alike.
}

TEST_F(Tree, ExpandingAddsAndRescanningAlsoRemoves)
{
    Start();
    Steps("visit beta; collapse beta; make beta/new/; remove beta/x; expand beta");
    EXPECT_EQ(Joined(ChildNames(files.At("beta"))), "new,x,y");
    RescanTree(MainTree(), pGTable->CurrentDir);
    EXPECT_EQ(Joined(ChildNames(files.At("beta"))), "new,y");
    Steps("visit beta = beta/ - +");
    // The selection stays, as far as its node is still displayed.
    Steps("visit Zeta/one; collapse beta");
    RescanTree(MainTree(), files.At("Zeta/"));
    EXPECT_TRUE(IsExpanded(files.At("Zeta")));
    ExpectAt("Zeta/one/");
    for (const std::string& path : Names{files.At("beta/"), files.At("gone/"), "/", files.Path()}) {
        RescanTree(MainTree(), path);
    }
    EXPECT_FALSE(IsExpanded(files.At("beta")));
    EXPECT_EQ(TreeSelected(), files.At("Zeta/"));
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/one/")) << "no directory was entered on the way";
    Steps("visit Zeta/one = Zeta/one/; visit beta; select y");
    Ask(MENU_MOVE, {EnterText(files.At("Zeta/one"))});
    ExpectAt("Zeta/one/");
}

TEST_F(Tree, ADirectoryThatMayNotBeReadIsEmpty)
{
    Make({"closed/inside/", "closed/file"});
    Start();
    Visit("closed");
    const OrdinaryUser user({&files, &home});
    files.SetMode("closed", 0);
    for (const char* const key : {"Right", "Return", "Tab", "Down", "Tab"}) {
        Press(key);
        ExpectConsistent(DISK_CHANGED);
    }
    Steps("rescan; visit closed/inside = closed/");
    EXPECT_FALSE(HasExpander(files.At("closed")));
    EXPECT_EQ(ListNames(), Names{".."});
    Steps("up = .");
    files.SetMode("closed", 0755);
    Steps("reread = .");
}

TEST_F(Tree, AnyNameIsEnteredLeftAndStored)
{
    Start();
    for (const std::string& name : Names{"with blanks ", "\xE6\x97\xA5\xE6\x9C\xAC", "\xFF\xFE\x80", "half\xE6\x97",
                                         "*?[\\", "-dash=\t\x01", "two\nlines", std::string(255, 'n')}) {
        SCOPED_TRACE(name);
        const std::string file = name.substr(0, 250) + ".txt";
        files.Directory(name + "/" + name);
        files.File(name + "/" + file);
        Steps("visit .; reread");
        DoubleClickRow(name);
        ExpectAt(name + "/");
        DoubleClickRow(name);
        ExpectAt(name + "/" + name + "/");
        DoubleClickRow("..");
        SelectNames({file});
        ExpectAt(name + "/", file);
        Steps("up; back");
        ExpectAt(name + "/");
    }
    History stored = pGTable->LocationDirHistory;
    // A line of the file has no room for a newline.
    std::erase_if(stored, [](const std::string& path) { return path.find('\n') != std::string::npos; });
    const std::string last = pGTable->CurrentDir;
    Close();
    GTable table;
    pGTable = &table;
    EXPECT_EQ(GetGTable(), 0);
    pGTable = nullptr;
    EXPECT_EQ(table.LocationDirHistory, stored);
    EXPECT_EQ(table.CurrentDir, last);
}

}  // namespace
