// Going places: Back and Forward, the other buttons of the toolbar, the location bar.

#include <filesystem>

#include "core/fnkutil.h"
#include "windowtest.h"

namespace {

class Navigation : public WindowTest {
protected:
    Navigation()
    {
        for (const char* const name : {"A/a", "B", "C", "D"}) {
            files.Directory(name);
        }
    }

    /// Where one is, in the list of places visited and in words: buttons as letters, insensitive
    /// ones left out.
    std::string Position() const
    {
        std::string text = pGTable->CurrentDir.substr(pGTable->RootDir.size());
        text += " " + std::to_string(pGTable->HistoryIndex) + " " + std::to_string(pGTable->HistoryWalk) + " ";
        text += IsToolSensitive(TOOL_BACK) ? "b" : "";
        text += IsToolSensitive(TOOL_FORWARD) ? "f" : "";
        return text;
    }
    History Visited(const Names& names) const
    {
        History history;
        for (const std::string& name : names) {
            history.push_back(files.At(name));
        }
        return history;
    }
};

TEST_F(Navigation, BackAndForwardWalkTheHistoryToItsEnds)
{
    Start();
    EXPECT_EQ(Position(), " 0 0 b");
    for (const char* const name : {"A", "B", "C"}) {
        Visit(name);
    }
    const History visited = Visited({"C/", "B/", "A/", ""});
    EXPECT_EQ(pGTable->LocationDirHistory, visited);
    EXPECT_EQ(Position(), "C/ 0 0 b");
    const struct {
        ToolSlot tool;
        const char* position;
    } kSteps[] = {
        {TOOL_BACK, "B/ 1 0 bf"},    {TOOL_BACK, "A/ 2 0 bf"},   {TOOL_BACK, " 3 0 f"},    {TOOL_FORWARD, "A/ 2 0 bf"},
        {TOOL_FORWARD, "B/ 1 0 bf"}, {TOOL_FORWARD, "C/ 0 0 b"}, {TOOL_BACK, "B/ 1 0 bf"},
    };
    for (const auto& step : kSteps) {
        ClickTool(step.tool);
        EXPECT_EQ(Position(), step.position);
        EXPECT_EQ(pGTable->LocationDirHistory, visited);
        ExpectConsistent();
    }
}

TEST_F(Navigation, GoingElsewhereGoesToTheFrontAndOneStepNearer)
{
    Start();
    for (const char* const name : {"A", "B", "C"}) {
        Visit(name);
    }
    ClickTool(TOOL_BACK);
    ClickNode(files.At("D"));
    EXPECT_EQ(Position(), "D/ 0 0 b");
    EXPECT_EQ(pGTable->LocationDirHistory, Visited({"D/", "C/", "B/", "A/", ""}));
    ExpectConsistent();

    ClickTool(TOOL_BACK);
    ClickTool(TOOL_BACK);
    EXPECT_EQ(Position(), "B/ 2 0 bf");
    Visit("A");  // Moves to the front instead of standing there twice.
    EXPECT_EQ(Position(), "A/ 1 0 bf");
    EXPECT_EQ(pGTable->LocationDirHistory, Visited({"A/", "D/", "C/", "B/", ""}));
    ExpectConsistent();
    for (const char* const position : {"C/ 2 0 bf", "B/ 3 0 bf", " 4 0 f"}) {
        ClickTool(TOOL_BACK);
        EXPECT_EQ(Position(), position);
    }
    Visit("D");  // Makes Back sensitive again.
    EXPECT_EQ(Position(), "D/ 3 0 bf");
    ExpectConsistent();
}

TEST_F(Navigation, TheDropDownOffersTheHistoryAsItIsNow)
{
    Start();
    for (const char* const name : {"A", "B", "C", "D", "A/a", "A", "B", "C"}) {
        Visit(name);
    }
    GtkTreeModel* const items = gtk_combo_box_get_model(GTK_COMBO_BOX(pMainW->LocationCombo));
    History shown;
    GtkTreeIter item;
    for (gboolean more = gtk_tree_model_get_iter_first(items, &item); more;
         more = gtk_tree_model_iter_next(items, &item)) {
        char* text = nullptr;
        gtk_tree_model_get(items, &item, 0, &text, -1);
        shown.emplace_back(text);
        g_free(text);
    }
    EXPECT_EQ(shown, Visited({"C/", "B/", "A/", "A/a/", "D/", ""}));
    EXPECT_EQ(pGTable->LocationDirHistory, shown);
}

TEST_F(Navigation, BackOnAFirstRunOpensNothingAndLeavesTheNextStepUnrecorded)
{
    Start();
    ClickTool(TOOL_BACK);
    EXPECT_EQ(Position(), " 1 1 b");
    ExpectConsistent();
    Visit("A");
    EXPECT_EQ(pGTable->LocationDirHistory, History{files.Path()});
    EXPECT_EQ(Position(), "A/ 1 0 b");
    ExpectConsistent();
    Visit("B");
    EXPECT_EQ(pGTable->LocationDirHistory, Visited({"B/", ""}));
    ExpectConsistent();
}

TEST_F(Navigation, HistoryEntriesThatLeadNowhereAreHarmless)
{
    Settings("[LocationDirHistory]\nHistoryCount=3\nHistory0=/outside/\nHistory1=" + files.At("A/gone/further/") +
             "\nHistory2=" + files.At("B/") + "\n");
    Start();
    EXPECT_EQ(pGTable->LocationDirHistory.size(), 4U);
    ClickTool(TOOL_BACK);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(pGTable->HistoryIndex, 1);
    ExpectConsistent();
    ClickTool(TOOL_BACK);
    EXPECT_EQ(Position(), "A/ 2 0 bf");
    ExpectConsistent();
    ClickTool(TOOL_BACK);
    EXPECT_EQ(Position(), "B/ 3 0 f");
    ExpectConsistent();
}

TEST_F(Navigation, UpStopsAtTheRootAndHomeOutsideTheRootIsTheRoot)
{
    Start(files.Path(), files.At("A/a"));
    ClickTool(TOOL_UP);
    EXPECT_EQ(Position(), "A/ 0 0 b");
    EXPECT_TRUE(IsExpanded(files.At("A")));
    ExpectConsistent();
    ClickTool(TOOL_UP);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    ExpectConsistent();
    Visit("A/a");
    ClickTool(TOOL_HOME);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    ExpectConsistent();
    home_variable.Set(nullptr);
    Visit("B");
    ClickTool(TOOL_HOME);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    home_variable.Set(files.At("A").c_str());
    ClickTool(TOOL_HOME);
    EXPECT_EQ(Position(), "A/ 0 0 b");
    EXPECT_TRUE(IsExpanded(files.At("A")));
    ExpectConsistent();
}

TEST_F(Navigation, RescanningStaysAndTheMenuCommandGoesToTheTop)
{
    Start();
    Visit("A");
    files.Directory("A/b");
    files.File("A/file");
    ClickTool(TOOL_RESCAN);
    EXPECT_EQ(ChildNames(files.At("A")), (Names{"a", "b"}));
    EXPECT_EQ(pGTable->CurrentDir, files.At("A/"));
    ExpectConsistent();
    files.Directory("E/below");
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_RESCAN_DIRECTORY]));
    Settle();
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_FALSE(IsExpanded(files.At("A")));
    ExpectConsistent();
}

TEST_F(Navigation, RescanningWhatIsGoneShowsWhatIsLeftOfTheWayThere)
{
    Start();
    Visit("A/a");
    std::filesystem::remove_all(files.At("A"));
    files.File("A");
    ClickTool(TOOL_RESCAN);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_FALSE(IsInTree(files.At("A")));
    ExpectConsistent();
}

class Location : public Navigation {
protected:
    bool IsEntryFocused() const { return gtk_window_get_focus(Window()) == Entry(); }
};

TEST_F(Location, ATypedPathIsEnteredWithOrWithoutItsSlash)
{
    files.File("A/file");
    Start();
    for (const std::string& typed :
         {files.At("A/a"), files.At("B/"), files.At("A/file"), files.At("A/a//"), files.At("D/gone/further")}) {
        Type(typed);
        EXPECT_TRUE(Press(GDK_KEY_Return));
        EXPECT_FALSE(IsEntryFocused());
        ExpectConsistent();
    }
    EXPECT_EQ(pGTable->LocationDirHistory, Visited({"D/", "A/a/", "A/", "B/", ""}));
}

TEST_F(Location, ARejectedPathStaysWithTheFocusUntilItIsCorrectedOrCleared)
{
    Start();
    Visit("A");
    for (const std::string& typed : {std::string("/etc"), std::string("A"), files.At("A"), files.At("A/gone")}) {
        if (typed != files.At("A/gone")) {
            files.File("A/file" + std::to_string(typed.size()));  // Shown: the directory is read again.
        }
        Type(typed);
        EXPECT_TRUE(Press(GDK_KEY_Return));
        EXPECT_EQ(pGTable->CurrentDir, files.At("A/"));
        EXPECT_TRUE(IsEntryFocused());
        ExpectConsistent(DISK_AS_SHOWN, typed);

        Press(GDK_KEY_Tab);
        Press(GDK_KEY_ISO_Left_Tab, GDK_SHIFT_MASK);
        EXPECT_TRUE(IsEntryFocused());
        ClickRow("a");
        EXPECT_TRUE(IsEntryFocused());
        gtk_window_set_focus(Window(), nullptr);
        EXPECT_TRUE(IsEntryFocused());
        ExpectConsistent(DISK_AS_SHOWN, typed);
        Press(GDK_KEY_Tab);
        EXPECT_EQ(SelectedNames(), Names());
    }
    gtk_entry_set_text(GTK_ENTRY(Entry()), "");
    Press(GDK_KEY_Tab);
    EXPECT_FALSE(IsEntryFocused());
    Type(files.At("A/"));
    Press(GDK_KEY_Tab);
    EXPECT_FALSE(IsEntryFocused());
    ExpectConsistent();
}

TEST_F(Location, PickingFromTheDropDownOnlyFillsTheEntry)
{
    Start();
    Visit("A");
    Visit("B");
    gtk_combo_box_set_active(GTK_COMBO_BOX(pMainW->LocationCombo), 1);
    Settle();
    EXPECT_EQ(pGTable->CurrentDir, files.At("B/"));
    ExpectConsistent(DISK_AS_SHOWN, files.At("A/"));
    // Return is for what was picked, not for the panes.
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("A/"));
    ExpectConsistent();
}

TEST_F(Location, BytesThatAreNoTextAreKeptWhileNobodyEditsThem)
{
    const std::string broken = files.Directory("\xFF") + "/";
    const std::string other = files.Directory("\xFE") + "/";
    Start();
    OpenChildTree(MainTree(), broken, EXPAND_LAST_YES);
    OpenChildTree(MainTree(), other, EXPAND_LAST_YES);
    // Both look alike; each item stands for its own directory.
    gtk_combo_box_set_active(GTK_COMBO_BOX(pMainW->LocationCombo), 1);
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, broken);
    ExpectConsistent();
    // Edited, it is the text that counts, and there is no directory of that name.
    Type(LocationShown() + "x");
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    ExpectConsistent();
}

TEST_F(Location, APathThatIsTooLongIsTheCurrentDirectory)
{
    Start();
    Visit("A");
    std::string typed = files.At("B/");
    while (typed.size() <= kMaxPathBytes) {
        typed += "\xE6\x97\xA5";  // Three bytes each: longer than the limit, but of fewer characters.
    }
    Type(typed);
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("A/"));
    ExpectConsistent(DISK_AS_SHOWN, typed);
}

}  // namespace
