// Directories on a disk that is slow, or never answers.

#include "acts.h"
#include "core/fnkthread.h"
#include "kit/fnkvisit.h"

namespace {

class Visits : public WindowTest {
protected:
    Visits() { Make({"a/x/y/", "a/file", "b/z/", "b/other:5", "c/"}); }
    /// Acts while no directory can be read to its end.
    static void WithoutDisk(const std::function<void()>& act)
    {
        VisitPatience = std::chrono::milliseconds(0);
        LetRead(0);
        act();
        Settle();
    }
    /// Lets the disk answer all that it was asked.
    static void Answer()
    {
        LetRead(G_MAXINT);
        EXPECT_TRUE(AwaitThreads(std::chrono::seconds(10)));
        Settle();
        EXPECT_FALSE(IsVisiting());
        VisitPatience = std::chrono::seconds(20);
    }
    void Node(const std::string& path) { Click(MainTree(), NodePath(files.At(path)).get()); }
};

TEST_F(Visits, LeaveTheWindowAsItIsUntilTheyArriveOrAreGivenUp)
{
    Start();
    Steps("visit a; visit b; expand a");
    const std::string before = pGTable->CurrentDir;
    struct Way {
        std::function<void()> go;
        std::string to;
    };
    const Way ways[] = {{[this] { Node("a/x"); }, "a/x/"},
                        {[this] { Press(GDK_KEY_Up); }, "a/x/"},
                        {[] { ClickTool(TOOL_BACK); }, "a/"},
                        {[] { ClickTool(TOOL_UP); }, ""},
                        {[this] { Type(files.At("c")), Press(GDK_KEY_Return); }, "c/"},
                        {[this] { DoubleClickRow("z"); }, "b/z/"},
                        {[] { Choose(MENU_RESCAN_DIRECTORY); }, ""}};
    for (const Way& way : ways) {
        const ::testing::ScopedTrace trace(__FILE__, __LINE__, "to " + way.to);
        const Names listed = ListNames();
        const int index = pGTable->HistoryIndex;
        WithoutDisk(way.go);
        EXPECT_TRUE(IsVisiting());
        EXPECT_EQ(pGTable->CurrentDir, before);
        EXPECT_EQ(ListNames(), listed);
        // Commands would act on what is about to go.
        gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_OPTION]));
        Settle();
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
        Press(GDK_KEY_Escape);
        EXPECT_FALSE(IsVisiting());
        EXPECT_EQ(pGTable->HistoryIndex, index);
        Answer();  // Too late.
        ExpectAt("b/");
        WithoutDisk(way.go);
        Answer();
        ExpectAt(way.to);
        Steps("visit a; visit b; expand a");
    }
}

TEST_F(Visits, TheNewestReplacesTheOlderAndRowsAreExpandedLater)
{
    Start();
    WithoutDisk([this] { Node("a"); });
    EXPECT_TRUE(Await([] { return StatusShown().find("Waiting for") != std::string::npos; }));
    EXPECT_NE(StatusShown().find("/a/..."), std::string::npos);
    WithoutDisk([this] {
        Node("b");
        gtk_tree_view_expand_row(MainTree(), NodePath(files.At("b")).get(), FALSE);
    });
    EXPECT_FALSE(IsExpanded(files.At("b")));
    Answer();
    ExpectAt("b/", "");
    EXPECT_TRUE(IsExpanded(files.At("b")));
    EXPECT_FALSE(IsExpanded(files.At("a")));
    // A node that goes meanwhile takes nothing with it, nor does the window.
    WithoutDisk([this] { gtk_tree_view_expand_row(MainTree(), NodePath(files.At("a")).get(), FALSE); });
    Steps("remove a");
    Answer();
    WithoutDisk([this] { Node("c"); });
    Close();
}

TEST_F(Visits, ComeBackToWhereTheListWas)
{
    MakeMany(60, "b/f");
    MakeMany(60, "b/d", "/");
    Start();
    Make({"b/d150/in"});
    Steps("visit b; select d150; key Return = b/d150/ in; up = b/ d150; key End = b/ other; visit a");
    Steps("back = b/ -");
    EXPECT_NE(RowVisibilityOf(RowOf("other")), ROW_HIDDEN);
    EXPECT_NE(RowVisibilityOf(1), ROW_VISIBLE);
    Steps("visit a; visit b = b/ -");
    EXPECT_EQ(RowVisibilityOf(1), ROW_VISIBLE) << "a directory entered anew is shown from its top";
}

TEST_F(Visits, WhatIsOnlyDecorationComesLater)
{
    Start();
    Make({"new/deep/in/", "new/leaf/", "new/link -> gone"});
    VisitPatience = std::chrono::milliseconds(0);
    LetRead(13);  // The names, but not what is in them.
    OpenChildTree(MainTree(), files.At("new"), EXPAND_LAST_YES, {.rescan = {files.Path()}});
    EXPECT_TRUE(Await([] { return !IsVisiting(); }));
    EXPECT_EQ(pGTable->CurrentDir, files.At("new/"));
    EXPECT_EQ(ListRows().Row(RowOf("link")).type, FT_SYMLINK);
    for (const char* const name : {"new/deep", "new/leaf"}) {
        EXPECT_EQ(ChildNames(files.At(name)), Names{""}) << "an expander, as there may be something";
    }
    Answer();
    EXPECT_EQ(ListRows().Row(RowOf("link")).type, FT_STALLED_LINK);
    EXPECT_EQ(ChildNames(files.At("new/deep")), Names{"in"});
    EXPECT_EQ(ChildNames(files.At("new/leaf")), Names{});
    ExpectAt("new/");
    // In a level with so many nodes, only those that are seen are put right.
    MakeMany(1'100, "many/d", "/");
    Make({"many/d100/in/", "many/d999/in/"});
    VisitPatience = std::chrono::milliseconds(0);
    LetRead(1'111);
    OpenChildTree(MainTree(), files.At("many"), EXPAND_LAST_YES, {.rescan = {files.Path()}});
    EXPECT_TRUE(Await([] { return !IsVisiting(); }));
    Answer();
    EXPECT_EQ(ChildNames(files.At("many/d100")), Names{"in"});
    EXPECT_EQ(ChildNames(files.At("many/d1000")), Names{});
    EXPECT_EQ(ChildNames(files.At("many/d998")), Names{""});
    Steps("key End");
    EXPECT_EQ(ChildNames(files.At("many/d998")), Names{});
    EXPECT_EQ(ChildNames(files.At("many/d999")), Names{"in"});
}

}  // namespace
