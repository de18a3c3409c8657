// Keys in both panes. Which of them they act on depends on the list's selection alone.

#include "core/fnkutil.h"
#include "windowtest.h"

namespace {

constexpr guint kShift = GDK_SHIFT_MASK;

/// "a" to "e" in the root, "b" being a directory with two files: sorted, the rows are b, a, c, d, e.
class Keys : public WindowTest {
protected:
    Keys()
    {
        for (const char* const name : {"a", "c", "d", "e", "b/x", "b/y"}) {
            files.File(name);
        }
    }

    /// Enough files for several pages.
    void ManyFiles()
    {
        for (int i = 100; i < 200; ++i) {
            files.File("file" + std::to_string(i));
        }
    }
    std::size_t LastWholeRow() const
    {
        std::size_t row = FirstVisibleRow();
        while (row + 1 < ListRows().Count() && RowVisibilityOf(row + 1) == ROW_VISIBLE) {
            ++row;
        }
        return row;
    }
};

TEST_F(Keys, MoveAndGrowTheSelectionOfTheList)
{
    Start();
    ASSERT_EQ(ListNames(), (Names{"..", "b", "a", "c", "d", "e"}));
    const struct {
        const char* title;
        Names before;
        guint key;
        guint state;
        Names after;
    } kCases[] = {
        {"up", {"c"}, GDK_KEY_Up, 0, {"a"}},
        {"up from several", {"c", "e"}, GDK_KEY_Up, 0, {"a"}},
        {"up at the top", {"b"}, GDK_KEY_Up, 0, {"b"}},
        {"up at the top of several", {"b", "d"}, GDK_KEY_Up, 0, {"b"}},
        {"down", {"c"}, GDK_KEY_Down, 0, {"d"}},
        {"down from several", {"a", "c"}, GDK_KEY_Down, 0, {"d"}},
        {"down at the end", {"e"}, GDK_KEY_Down, 0, {"e"}},
        {"down at the end of several", {"a", "e"}, GDK_KEY_Down, 0, {"e"}},
        {"grow up", {"c", "e"}, GDK_KEY_Up, kShift, {"a", "c", "e"}},
        {"grow up at the top", {"b", "c"}, GDK_KEY_Up, kShift, {"b", "c"}},
        {"grow down", {"a", "c"}, GDK_KEY_Down, kShift, {"a", "c", "d"}},
        {"grow down at the end", {"a", "e"}, GDK_KEY_Down, kShift, {"a", "e"}},
        {"home", {"d", "e"}, GDK_KEY_Home, 0, {"b"}},
        {"grow home", {"c", "e"}, GDK_KEY_Home, kShift, {"b", "a", "c", "e"}},
        {"end", {"b", "a"}, GDK_KEY_End, 0, {"e"}},
        {"grow end", {"b", "c"}, GDK_KEY_End, kShift, {"b", "c", "d", "e"}},
        {"page up", {"e"}, GDK_KEY_Page_Up, 0, {"b"}},
        {"page down", {"b"}, GDK_KEY_Page_Down, 0, {"e"}},
        {"grow page down", {"c"}, GDK_KEY_Page_Down, kShift, {"c", "d", "e"}},
        {"return on a file and a directory", {"b", "a"}, GDK_KEY_Return, 0, {"b", "a"}},
        {"left", {"c"}, GDK_KEY_Left, 0, {"c"}},
        {"right", {"b"}, GDK_KEY_Right, 0, {"b"}},
        {"keypad up", {"c"}, GDK_KEY_KP_Up, 0, {"a"}},
        {"keypad down", {"c"}, GDK_KEY_KP_Down, kShift, {"c", "d"}},
        {"keypad home", {"c"}, GDK_KEY_KP_Home, 0, {"b"}},
        {"keypad end", {"c"}, GDK_KEY_KP_End, 0, {"e"}},
        {"keypad page up", {"c"}, GDK_KEY_KP_Page_Up, 0, {"b"}},
        {"keypad page down", {"c"}, GDK_KEY_KP_Page_Down, 0, {"e"}},
        {"tab", {"b", "c"}, GDK_KEY_Tab, 0, {}},
        {"tab backwards", {"c"}, GDK_KEY_ISO_Left_Tab, kShift, {}},
        {"tab from the tree", {}, GDK_KEY_Tab, 0, {"b"}},
        {"tab backwards from the tree", {}, GDK_KEY_ISO_Left_Tab, kShift, {"b"}},
    };
    for (const auto& test : kCases) {
        SCOPED_TRACE(test.title);
        SelectNames(test.before);
        EXPECT_TRUE(Press(test.key, test.state));
        EXPECT_EQ(SelectedNames(), test.after);
        EXPECT_EQ(pGTable->CurrentDir, files.Path());
        ExpectConsistent();
    }
    // A key that is not of the table is nobody's.
    SelectNames({"c"});
    EXPECT_FALSE(Press(GDK_KEY_x));
    EXPECT_EQ(SelectedNames(), Names{"c"});
}

TEST_F(Keys, PageThroughALongList)
{
    ManyFiles();
    Start();
    const std::size_t last = ListRows().Count() - 1;
    const auto selected = [this] {
        const Rows rows = ListSelection();
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? 0 : rows.front();
    };
    SelectListRows(1, 1);
    // First to the row that the edge of the page cuts, then by whole pages.
    const std::size_t edge = LastWholeRow() + 1;
    const std::size_t page = edge + 1;
    Press(GDK_KEY_Page_Down);
    EXPECT_EQ(selected(), edge);
    EXPECT_EQ(LastWholeRow(), edge);
    for (std::size_t press = 1; press <= 2; ++press) {
        const std::size_t before = selected();
        Press(GDK_KEY_Page_Down);
        EXPECT_NEAR(static_cast<double>(selected()), static_cast<double>(before + page), 2);
        EXPECT_EQ(LastWholeRow(), selected());
    }
    ExpectConsistent();

    Press(GDK_KEY_Page_Up);
    EXPECT_EQ(selected(), FirstVisibleRow());
    EXPECT_EQ(RowVisibilityOf(selected()), ROW_VISIBLE);
    const std::size_t before = selected();
    Press(GDK_KEY_Page_Up);
    EXPECT_NEAR(static_cast<double>(selected()), static_cast<double>(before - page), 2);
    Press(GDK_KEY_Page_Down);
    const std::size_t bottom = selected();
    Press(GDK_KEY_Page_Down, kShift);
    EXPECT_EQ(ListSelection().front(), bottom);
    EXPECT_NEAR(static_cast<double>(ListSelection().size()), static_cast<double>(page + 1), 2);

    Press(GDK_KEY_End);
    EXPECT_EQ(selected(), last);
    EXPECT_EQ(RowVisibilityOf(last), ROW_VISIBLE);
    Press(GDK_KEY_Home);
    EXPECT_EQ(selected(), 1U);
    EXPECT_EQ(RowVisibilityOf(0), ROW_VISIBLE) << "\"..\" comes into view with the first entry";
    ExpectConsistent();
}

TEST_F(Keys, ReturnOpensOneDirectory)
{
    files.Directory("b/empty");
    Start();
    SelectNames({"b"});
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("b/"));
    EXPECT_EQ(SelectedNames(), Names{"empty"});
    ExpectConsistent();
    Press(GDK_KEY_KP_Enter);
    EXPECT_EQ(pGTable->CurrentDir, files.At("b/empty/"));
    EXPECT_EQ(SelectedNames(), Names());
    ExpectConsistent();
    // Only "..": there is nothing for the keys to go to.
    EXPECT_TRUE(Press(GDK_KEY_Tab));
    EXPECT_EQ(SelectedNames(), Names());
    ExpectConsistent();
}

TEST_F(Keys, TheEntryThatTheKeysGoToComesIntoView)
{
    ManyFiles();
    for (int i = 0; i < 100; ++i) {
        files.File("z/" + std::to_string(i));
    }
    Settings("[Setting]\nMixFileDir=yes\n");
    Start();
    const std::size_t last = ListRows().Count() - 1;
    const auto expect_first_shown = [this](const char* key) {
        SCOPED_TRACE(key);
        EXPECT_EQ(ListSelection(), Rows{1});
        EXPECT_EQ(RowVisibilityOf(0), ROW_VISIBLE);
        EXPECT_EQ(RowVisibilityOf(1), ROW_VISIBLE);
        ExpectConsistent();
    };
    SelectListRows(1, 1);
    Press(GDK_KEY_End);
    ASSERT_NE(RowVisibilityOf(1), ROW_VISIBLE);
    Press(GDK_KEY_Tab);
    Press(GDK_KEY_Tab);
    expect_first_shown("Tab");
    Press(GDK_KEY_End);
    ASSERT_EQ(SelectedNames(), Names{"z"});
    ASSERT_EQ(ListSelection(), Rows{last});
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("z/"));
    expect_first_shown("Return");
}

TEST_F(Keys, MoveThroughTheTree)
{
    for (const char* const name : {"k/l/m", "k/n", "p/q", "r"}) {
        files.Directory(name);
    }
    Start();
    // Displayed: the root, b, k, p, r.
    const struct {
        guint key;
        const char* selected;
        const char* expanded;  ///< Below the root.
    } kSteps[] = {
        {GDK_KEY_Up, "", ""},
        {GDK_KEY_Left, "", ""},
        {GDK_KEY_Down, "b/", ""},
        {GDK_KEY_Right, "b/", ""},
        {GDK_KEY_Down, "k/", ""},
        {GDK_KEY_Right, "k/", "k "},
        {GDK_KEY_Right, "k/", "k "},
        {GDK_KEY_Down, "k/l/", "k "},
        {GDK_KEY_Return, "k/l/", "k k/l "},
        {GDK_KEY_KP_Down, "k/l/m/", "k k/l "},
        {GDK_KEY_KP_Down, "k/n/", "k k/l "},
        {GDK_KEY_Down, "p/", "k k/l "},
        {GDK_KEY_KP_Up, "k/n/", "k k/l "},
        {GDK_KEY_Up, "k/l/m/", "k k/l "},
        {GDK_KEY_Left, "k/l/", "k "},
        {GDK_KEY_KP_Left, "k/", ""},
        {GDK_KEY_KP_Right, "k/", "k "},
        {GDK_KEY_End, "r/", "k "},
        {GDK_KEY_Down, "r/", "k "},
        {GDK_KEY_KP_Home, "", "k "},
        {GDK_KEY_Page_Up, "", "k "},
        {GDK_KEY_Page_Down, "r/", "k "},
        {GDK_KEY_Page_Down, "r/", "k "},
        {GDK_KEY_Up, "p/", "k "},
        {GDK_KEY_Return, "p/", "k p "},
        {GDK_KEY_KP_End, "r/", "k p "},
        {GDK_KEY_Up, "p/q/", "k p "},
        {GDK_KEY_KP_Page_Up, "", "k p "},
    };
    int number = 0;
    for (const auto& step : kSteps) {
        SCOPED_TRACE(++number);
        EXPECT_TRUE(Press(step.key));
        EXPECT_EQ(pGTable->CurrentDir, files.At(step.selected));
        std::string expanded;
        for (const char* const name : {"b", "k", "k/l", "p", "r"}) {
            expanded += IsInTree(files.At(name)) && IsExpanded(files.At(name)) ? std::string(name) + " " : "";
        }
        EXPECT_EQ(expanded, step.expanded);
        EXPECT_EQ(GetRowVisibility(MainTree(), NodePath(TreeSelected()).get()), ROW_VISIBLE);
        ExpectConsistent();
    }
    // A collapsed root ends the paging, and Left on a child of it is how it collapses.
    Press(GDK_KEY_Down);
    Press(GDK_KEY_Left);
    EXPECT_FALSE(IsExpanded(files.Path()));
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    Press(GDK_KEY_Page_Down);
    Press(GDK_KEY_End);
    Press(GDK_KEY_Down);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    Press(GDK_KEY_Right);
    EXPECT_TRUE(IsExpanded(files.Path()));
    ExpectConsistent();
}

TEST_F(Keys, PageThroughALongTree)
{
    for (int i = 100; i < 200; ++i) {
        files.Directory("dir" + std::to_string(i));
    }
    Start();
    // The place among all nodes as displayed; the root is 0.
    const auto place = [this] {
        const TreePath path = NodePath(TreeSelected());
        return gtk_tree_path_get_depth(path.get()) == 1 ? 0 : gtk_tree_path_get_indices(path.get())[1] + 1;
    };
    const auto visibility = [this](const std::string& path) {
        return GetRowVisibility(MainTree(), NodePath(path).get());
    };
    Press(GDK_KEY_Page_Down);
    const int steps = place();
    EXPECT_GT(steps, 3);
    EXPECT_EQ(visibility(files.Path()), ROW_VISIBLE) << "within the page nothing scrolls";
    for (int pages = 2; pages <= 3; ++pages) {
        Press(GDK_KEY_Page_Down);
        EXPECT_NEAR(place(), pages * steps, pages);
        EXPECT_EQ(visibility(TreeSelected()), ROW_VISIBLE);
        EXPECT_EQ(visibility(files.Path()), ROW_HIDDEN);
        ExpectConsistent();
    }
    for (int pages = 2; pages >= 1; --pages) {
        Press(GDK_KEY_Page_Up);
        EXPECT_NEAR(place(), pages * steps, 3);
        EXPECT_EQ(visibility(TreeSelected()), ROW_VISIBLE);
    }
    Press(GDK_KEY_Page_Up);
    Press(GDK_KEY_Page_Up);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    ExpectConsistent();
}

TEST_F(Keys, BelongToTheEntryWhileItHasTheFocus)
{
    Start();
    SelectNames({"c"});
    gtk_widget_grab_focus(Entry());
    gtk_editable_set_position(GTK_EDITABLE(Entry()), 3);
    Press(GDK_KEY_Right);
    EXPECT_EQ(gtk_editable_get_position(GTK_EDITABLE(Entry())), 4);
    Press(GDK_KEY_Home);
    EXPECT_EQ(gtk_editable_get_position(GTK_EDITABLE(Entry())), 0);
    Press(GDK_KEY_Down);
    Press(GDK_KEY_End, kShift);
    Press(GDK_KEY_Page_Up);
    EXPECT_EQ(SelectedNames(), Names{"c"});

    Press(GDK_KEY_a, GDK_CONTROL_MASK);
    int start = 0;
    int end = 0;
    EXPECT_TRUE(gtk_editable_get_selection_bounds(GTK_EDITABLE(Entry()), &start, &end));
    EXPECT_EQ(end - start, gtk_entry_get_text_length(GTK_ENTRY(Entry())));
    EXPECT_EQ(SelectedNames(), Names{"c"});
    ExpectConsistent();

    Press(GDK_KEY_Tab);
    EXPECT_NE(gtk_window_get_focus(Window()), Entry());
    EXPECT_EQ(SelectedNames(), Names());
    ExpectConsistent();
    Press(GDK_KEY_a, GDK_CONTROL_MASK);
    EXPECT_EQ(SelectedNames(), (Names{"b", "a", "c", "d", "e"}));
    ExpectConsistent();
}

TEST_F(Keys, DoNothingWhileAButtonOfThePointerIsHeld)
{
    Start();
    SelectNames({"a"});
    SendKey(pMainW->MainWindow, GDK_KEY_Down, GDK_BUTTON1_MASK);
    EXPECT_EQ(SelectedNames(), Names{"a"});
    SendKey(pMainW->MainWindow, GDK_KEY_f, GDK_BUTTON3_MASK | GDK_MOD1_MASK);
    EXPECT_EQ(gtk_grab_get_current(), nullptr) << "a menu that cannot grab the pointer";
}

TEST_F(Keys, NeverPressAToolbarButton)
{
    Start();
    Visit("b");
    ClickTool(TOOL_UP);
    for (const ToolSlot slot : {TOOL_BACK, TOOL_HOME, TOOL_RESCAN}) {
        gtk_widget_grab_focus(gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[slot])));
        const std::string before = pGTable->CurrentDir;
        SelectNames({"a", "c"});
        Press(GDK_KEY_Return);
        Press(GDK_KEY_space);
        Press(GDK_KEY_Down);
        EXPECT_EQ(pGTable->CurrentDir, before);
        EXPECT_EQ(pGTable->HistoryIndex, 0);
        EXPECT_EQ(SelectedNames(), Names{"d"});
    }
}

}  // namespace
