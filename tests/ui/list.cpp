// The file list under the mouse: selecting, opening, sorting, columns, and the two status fields.

#include <fcntl.h>

#include "panes/fnkfilelist-status.h"
#include "core/fnkfiles-settings.h"
#include "app/fnktable-life.h"
#include "windowtest.h"

namespace {

class List : public WindowTest {
protected:
    void Sizes(std::initializer_list<std::pair<const char*, int>> sizes)
    {
        for (const auto& [name, size] : sizes) {
            files.File(name, std::string(static_cast<std::size_t>(size), '.'));
        }
    }
    /// Which column has the arrow, and whether its values grow downwards.
    std::string Arrow() const
    {
        std::string text;
        for (int column = 0; column <= pGTable->ColumnCount; ++column) {
            GtkTreeViewColumn* const title = ListViewColumn(column);
            if (gtk_tree_view_column_get_sort_indicator(title)) {
                text += std::to_string(column);
                text += gtk_tree_view_column_get_sort_order(title) == GTK_SORT_ASCENDING ? "+" : "-";
            }
        }
        return text;
    }
    std::string FilterShown() const
    {
        GtkWidget* const area = gtk_statusbar_get_message_area(GTK_STATUSBAR(pMainW->FilterStatusBar));
        GList* const labels = gtk_container_get_children(GTK_CONTAINER(area));
        const std::string text = gtk_label_get_text(GTK_LABEL(labels->data));
        g_list_free(labels);
        return text;
    }
};

TEST_F(List, ClicksSelectAsEverywhere)
{
    Sizes({{"a", 1000}, {"b", 2000}, {"c", 3000}, {"d", 0}});
    Start();
    EXPECT_EQ(StatusShown(), " " + files.Path());
    const struct {
        const char* row;
        guint state;
        Names selected;
        const char* status;
    } kSteps[] = {
        {"d", 0, {"d"}, " d  0KByte"},
        {"b", 0, {"b"}, " b  2KByte"},
        {"d", GDK_CONTROL_MASK, {"b", "d"}, " 2 files  2KByte"},
        {"b", GDK_CONTROL_MASK, {"d"}, " d  0KByte"},
        {"a", 0, {"a"}, " a  1KByte"},
        {"c", GDK_SHIFT_MASK, {"a", "b", "c"}, " 3 files  5.9KByte"},
        {"..", GDK_CONTROL_MASK, {"a", "b", "c"}, " 3 files  5.9KByte"},
        {"b", 0, {"b"}, " b  2KByte"},
        {"..", GDK_SHIFT_MASK, {"a", "b"}, " 2 files  2.9KByte"},
    };
    int number = 0;
    for (const auto& step : kSteps) {
        SCOPED_TRACE(++number);
        ClickRow(step.row, step.state);
        EXPECT_EQ(SelectedNames(), step.selected);
        EXPECT_EQ(StatusShown(), step.status);
        ExpectConsistent();
    }
    // Whatever a click on ".." does to the others, it does not select it.
    ClickRow("..");
    ExpectConsistent();
}

TEST_F(List, ADoubleClickOpensDirectoriesAndTheParent)
{
    files.Directory("b/c");
    files.Link("link", "b");
    files.File("file");
    Start();
    DoubleClickRow("..");
    EXPECT_EQ(pGTable->CurrentDir, files.Path()) << "nothing is above the root";
    DoubleClickRow("link");
    EXPECT_EQ(pGTable->CurrentDir, files.At("b/")) << "where it leads";
    Visit("");
    DoubleClickRow("file");
    EXPECT_EQ(SelectedNames(), Names{"file"});
    ExpectConsistent();
    DoubleClickRow("b");
    EXPECT_EQ(pGTable->CurrentDir, files.At("b/"));
    EXPECT_TRUE(IsExpanded(files.At("b")));
    EXPECT_EQ(SelectedNames(), Names());
    ExpectConsistent();
    DoubleClickRow("..");
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    ExpectConsistent();
}

TEST_F(List, AClickOnATitleSortsOrTurnsTheOrderAroundAndKeepsTheSelection)
{
    Sizes({{"a", 3000}, {"b", 1}, {"c", 90000}, {"d", 20000}});
    files.Directory("z");
    Start();
    EXPECT_EQ(Arrow(), "1+");
    SelectNames({"a", "c"});
    const struct {
        int column;
        Names rows;
        Names selected;
        const char* arrow;
    } kSteps[] = {
        {1, {"..", "z", "d", "c", "b", "a"}, {"c", "a"}, "1-"}, {1, {"..", "z", "a", "b", "c", "d"}, {"a", "c"}, "1+"},
        {2, {"..", "z", "b", "a", "d", "c"}, {"a", "c"}, "2+"}, {2, {"..", "z", "c", "d", "a", "b"}, {"c", "a"}, "2-"},
        {1, {"..", "z", "a", "b", "c", "d"}, {"a", "c"}, "1+"}, {0, {"..", "z", "a", "b", "c", "d"}, {"a", "c"}, "0+"},
    };
    for (const auto& step : kSteps) {
        ClickTitle(step.column);
        EXPECT_EQ(ListNames(), step.rows);
        EXPECT_EQ(SelectedNames(), step.selected);
        EXPECT_EQ(Arrow(), step.arrow);
        EXPECT_EQ(pGTable->SortColumn, step.column);
        ExpectConsistent();
    }
    ClickTitle(2);
    ClickTitle(2);
    files.File("e", std::string(50000, '.'));
    ClickTool(TOOL_RESCAN);
    EXPECT_EQ(ListNames(), (Names{"..", "z", "c", "e", "d", "a", "b"})) << "a refill keeps the order";
    ExpectConsistent();
}

TEST_F(List, ColumnsOfTheSettingsComeAndTheirWidthsAreRemembered)
{
    Settings(
        "[Detailed View]\nColumnCount=4\nColumnPosition0=1\nColumnSize0=81\nColumnPosition1=0\nColumnSize1=123\n"
        "ColumnPosition2=10\nColumnSize2=0\nColumnPosition3=5\nColumnSize3=77\nSortColumn=2\nSortType=1\n");
    Sizes({{"a", 0}, {"b", 0}});
    Start();
    EXPECT_EQ(pGTable->NameColumn, 2);
    EXPECT_EQ(ListNames(), (Names{"..", "b", "a"}));
    const char* const kTitles[] = {"Size", "Name", "i Node number", "Group"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_STREQ(gtk_tree_view_column_get_title(ListViewColumn(i + 1)), kTitles[i]);
    }
    const int natural = gtk_tree_view_column_get_width(ListViewColumn(3));
    EXPECT_GT(natural, 40);
    EXPECT_EQ(ListColumnWidths(), (std::vector<int>{81, 123, natural, 77}));
    EXPECT_EQ(gtk_tree_view_column_get_width(ListViewColumn(2)), 123);
    ClickRow("a");
    ExpectConsistent();
    // What dragging a title's edge does.
    gtk_tree_view_column_set_fixed_width(ListViewColumn(2), 200);
    Settle();
    EXPECT_EQ(pGTable->ColumnSize[1], 200);
    Close();
    const std::string stored = home.Contents(".fennick");
    for (const std::string& line : {std::string("ColumnSize0=81\n"), std::string("ColumnSize1=200\n"),
                                    "ColumnSize2=" + std::to_string(natural) + "\n", std::string("ColumnSize3=77\n")}) {
        EXPECT_NE(stored.find(line), std::string::npos) << line;
    }
}

TEST_F(List, TheListScrollsSidewaysOnlyToWhatThereIs)
{
    Start();
    GtkAdjustment* const scroll = gtk_scrollable_get_hadjustment(GTK_SCROLLABLE(pMainW->FileList));
    const auto surplus = [scroll] { return gtk_adjustment_get_upper(scroll) - gtk_adjustment_get_page_size(scroll); };
    gtk_window_resize(Window(), 600, 400);
    EXPECT_TRUE(Await([&] { return surplus() > 0; }));
    gtk_window_resize(Window(), 1000, 400);
    EXPECT_TRUE(Await([&] { return gtk_adjustment_get_page_size(scroll) > 700; }));
    for (const int width : {200, 230, 210}) {
        gtk_tree_view_column_set_fixed_width(ListViewColumn(1), width - 5);
        gtk_tree_view_column_set_fixed_width(ListViewColumn(1), width);
        EXPECT_TRUE(Await([width] { return gtk_tree_view_column_get_width(ListViewColumn(1)) == width; }));
        EXPECT_EQ(surplus(), 0) << width;
    }
    ClickTitle(0);  // The title of the icons gets wider by its arrow.
    Settle();
    EXPECT_EQ(surplus(), 0);
    gtk_tree_view_column_set_fixed_width(ListViewColumn(1), 900);
    EXPECT_TRUE(Await([&] { return surplus() > 0; }));
}

TEST_F(List, ReadingAgainKeepsTheFirstVisibleRow)
{
    for (int i = 100; i < 200; ++i) {
        files.File("file" + std::to_string(i));
    }
    Start();
    GtkAdjustment* const scroll = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(pMainW->FileList));
    const int row_height = static_cast<int>(gtk_adjustment_get_upper(scroll)) / static_cast<int>(ListRows().Count());
    // The first row whole, and cut.
    for (const int offset : {0, row_height / 2}) {
        gtk_adjustment_set_value(scroll, 40 * row_height + offset);
        Settle();
        ASSERT_EQ(FirstVisibleRow(), 40U);
        for (int i = 0; i < 3; ++i) {
            ClickTool(TOOL_RESCAN);
            ASSERT_TRUE(Await([this] { return FirstVisibleRow() == 40; })) << FirstVisibleRow();
            ExpectConsistent();
        }
    }
    for (int i = 120; i < 200; ++i) {
        files.Remove("file" + std::to_string(i));
    }
    ClickTool(TOOL_RESCAN);
    EXPECT_TRUE(Await([this] { return FirstVisibleRow() < ListRows().Count(); }));
    ExpectConsistent();
}

TEST_F(List, TheStatusCountsWhatIsStillThere)
{
    Sizes({{"a", 1000}, {"b", 2000}, {"\xFF", 3000}});
    files.Directory("d");
    Start();
    SelectNames({"\xFF"});
    EXPECT_EQ(StatusShown(), " \xEF\xBF\xBD  2.9KByte");
    ExpectConsistent();
    files.Remove("b");
    SelectNames({"a", "b"});
    EXPECT_EQ(StatusShown(), " a  1KByte");
    SelectNames({"b"});
    EXPECT_EQ(StatusShown(), " 0 files  0KByte");
    SelectNames({"d"});
    ExpectConsistent(DISK_CHANGED);
    UnselectAllListRows();
    EXPECT_EQ(StatusShown(), " " + files.Path());
    Visit("d");
    EXPECT_EQ(StatusShown(), " " + files.At("d/"));
}

TEST_F(List, LongTextsLeaveTheStatusFieldsTheirPlaces)
{
    const std::string name(250, 'n');
    files.File(name);
    Start();
    SelectNames({name});
    pGTable->Filter = 1;
    pGTable->FilterName = std::string(kMaxFilterBytes, 'f');
    DisplayFilterStatus();
    Settle();
    for (GtkWidget* const bar : {pMainW->StatusBar, pMainW->FilterStatusBar}) {
        // The size at the end of the one text and the end of the other stay in sight.
        GtkWidget* const label = StatusBarLabel(bar);
        EXPECT_EQ(gtk_label_get_ellipsize(GTK_LABEL(label)), PANGO_ELLIPSIZE_MIDDLE);
        EXPECT_TRUE(pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(label))));
        EXPECT_GT(gtk_widget_get_allocated_width(label), 150);
    }
    EXPECT_EQ(gtk_widget_get_allocated_width(pMainW->FilterStatusBar), 202);
    pGTable->Filter = 0;  // The list was not read with it.
    ExpectConsistent();
}

TEST_F(List, AStatusTextThatIsTooLongEndsWithAWholeCharacter)
{
    std::string deep;
    for (int level = 0; level < 4; ++level) {
        for (int i = 0; i < 85; ++i) {
            deep += "\u65e5";
        }
        deep += "/";
    }
    // One of these has its limit inside of a character, whatever the length of the path before.
    for (const char* const top : {"a/", "bb/", "ccc/"}) {
        files.Directory(top + deep);
    }
    Start();
    for (const char* const top : {"a/", "bb/", "ccc/"}) {
        Visit(top + deep);
        const std::string shown = StatusShown();
        EXPECT_GT(shown.size(), 1021U);
        EXPECT_LE(shown.size(), 1024U);
        EXPECT_TRUE((" " + pGTable->CurrentDir).starts_with(shown)) << shown;
    }
}

TEST_F(List, TheFilterAppliesToAllButDirectories)
{
    Settings("[Detailed View]\nFilter=yes\nFilterName=*.c\n[Setting]\nShowHidden=yes\n");
    for (const char* const name : {"a.c", "a.h", ".x.c", ".x", "A.C"}) {
        files.File(name);
    }
    files.Directory("dir");
    files.Directory(".dir");
    files.Link("link", "dir");
    Start();
    EXPECT_EQ(ListNames(), (Names{"..", ".dir", "dir", ".x.c", "a.c"}));
    EXPECT_EQ(FilterShown(), " Filter: *.c");
    ExpectConsistent();
    pGTable->Filter = 0;
    DisplayFilterStatus();
    EXPECT_EQ(FilterShown(), " Filter: Show all files");
    ClickTool(TOOL_RESCAN);
    EXPECT_EQ(ListRows().Count(), 9U);
    ExpectConsistent();
}

TEST_F(List, ALargeSelectionIsSummedUpWhileTheLoopIsIdle)
{
    constexpr int kCount = 100'000;
    const std::string directory = files.Directory("many") + "/";
    const std::string first = files.File("many/0", "four");
    for (int i = 1; i < kCount; ++i) {
        const int file = open((directory + std::to_string(i)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        Require(file >= 0, directory);
        close(file);
    }
    Start();
    Visit("many");
    const std::string all = " 100000 files  0.1KByte";
    Press(GDK_KEY_a, GDK_CONTROL_MASK);
    EXPECT_TRUE(Await([&] { return StatusShown() == all; })) << StatusShown();
    EXPECT_EQ(CountListSelection(), static_cast<std::size_t>(kCount));

    // A summary under way is given up with the rows that it is about.
    UnselectAllListRows();
    SelectAllListRows();
    ClickTitle(1);
    EXPECT_TRUE(Await([&] { return StatusShown() == all; })) << StatusShown();
    SelectAllListRows();
    SelectNames({"0"});
    Settle();
    EXPECT_EQ(StatusShown(), " 0  0.1KByte");
    SelectAllListRows();
    Visit("");
    Settle();
    ExpectConsistent();
    Visit("many");
    SelectAllListRows();
    std::filesystem::remove_all(directory);
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES);
    Settle();
    SelectAllListRows();
    TerminateGlobalTable();
    Settle();
}

}  // namespace
