// The file list under the mouse: selecting, opening, sorting, columns, and the two status fields.

#include "app/fnktable-life.h"
#include "windowtest.h"

namespace {

class List : public WindowTest {
protected:
    /// The rows, the column that has the arrow, and whether its values grow downwards.
    std::string State() const override
    {
        std::string text = Joined(ListNames()).substr(ListNames().size() > 1 ? 3 : 2);
        for (int column = 0; column <= pGTable->ColumnCount; ++column) {
            GtkTreeViewColumn* const title = ListViewColumn(column);
            if (gtk_tree_view_column_get_sort_indicator(title)) {
                const bool grows = gtk_tree_view_column_get_sort_order(title) == GTK_SORT_ASCENDING;
                text += std::to_string(column) + (grows ? "+" : "-");
            }
        }
        return text;
    }
};

TEST_F(List, ClicksSelectAndDoubleClicksOpen)
{
    Make({"a", "b", "c", "d", "link -> e"});
    Start();
    Steps(
        "click d = . d; click b = . b; ctrl d = . b,d; ctrl b = . d; click c; shift a = . a,b,c; shift b = . b,c;"
        "click a; ctrl d = . a,d; ctrl+shift c = . a,c,d; ctrl .. = . a,c,d; click b = . b; shift .. = . a,b;"
        // Without a click a range begins at the first selected row.
        "click d; rescan; shift b = . b; key Down = . c; shift d = . c,d; click a; title 1; shift c = . c,b,a;"
        "make e/f; make e/g; make e/h; reread; click d; visit e; shift f = e/ f;"
        "double .. = . -; double link = e/ -; double .. = . -; double a = . a; double e = e/ -");
}

TEST_F(List, AClickOnATitleSorts)
{
    Make({"a:3000", "b:1", "c:90000", "d:20000", "z/"});
    Start();
    // Without a selection the list takes a shorter way. What is selected stays so.
    Steps(
        "title 1 = . - z,d,c,b,a1-; title 1 = . - z,a,b,c,d1+; title 2 = . - z,b,a,d,c2+; title 2 = . - z,c,d,a,b2-;"
        "title 1 = . - z,a,b,c,d1+; title 0 = . - z,a,b,c,d0+; click a; ctrl c; title 1 = . a,c z,a,b,c,d1+;"
        "title 1 = . c,a z,d,c,b,a1-; title 2 = . a,c z,b,a,d,c2+; title 2 = . c,a z,c,d,a,b2-;"
        "make e:50000; rescan = . - z,c,e,d,a,b2-");
}

TEST_F(List, ShowsTheColumnsOfTheSettingsAndStoresTheirWidths)
{
    Settings(
        "[Detailed View]\nColumnCount=4\nColumnPosition0=1\nColumnSize0=181\nColumnPosition1=0\nColumnSize1=123\n"
        "ColumnPosition2=10\nColumnSize2=0\nColumnPosition3=5\nColumnSize3=77\nSortColumn=2\nSortType=1\n");
    Make({"a", "b"});
    Start();
    const int natural = gtk_tree_view_column_get_width(ListViewColumn(3));
    EXPECT_GT(natural, 40);
    EXPECT_EQ(ListColumnWidths(), (std::vector<int>{181, 123, natural, 77}));
    Steps("click a = . a b,a2-");
    // Only what there is can be scrolled to.
    GtkAdjustment* const scroll = gtk_scrollable_get_hadjustment(GTK_SCROLLABLE(pMainW->FileList));
    gtk_window_resize(Window(), 1100, 400);
    EXPECT_TRUE(Await([&] { return gtk_adjustment_get_page_size(scroll) > 800; }));
    for (const int width : {195, 225, 200}) {
        gtk_tree_view_column_set_fixed_width(ListViewColumn(2), width);
        EXPECT_TRUE(Await([width] { return gtk_tree_view_column_get_width(ListViewColumn(2)) == width; }));
        EXPECT_EQ(gtk_adjustment_get_upper(scroll), gtk_adjustment_get_page_size(scroll)) << width;
    }
    EXPECT_EQ(pGTable->ColumnSize[1], 200);
    Close();
    const std::string stored = home.Contents(".fennick");
    for (const auto& [key, width] : {std::pair{"Size0=", 181}, {"Size1=", 200}, {"Size2=", natural}, {"Size3=", 77}}) {
        EXPECT_NE(stored.find(key + std::to_string(width) + "\n"), std::string::npos) << key;
    }
}

TEST_F(List, TheNameColumnTakesTheRoomThatNumbersAndTheUserLeave)
{
    const std::string name(60, 'x');
    Make({"1", name});
    MakeMany(40, "f");  // The scroll bar takes some of the room again.
    Start();
    GtkAdjustment* const scroll = gtk_scrollable_get_hadjustment(GTK_SCROLLABLE(pMainW->FileList));
    const auto width = [](int column) { return gtk_tree_view_column_get_width(ListViewColumn(column)); };
    const auto text = [](const char* shown) { return GetTextWidth(pMainW->FileList, shown); };
    const auto expect_filled = [&] {
        EXPECT_EQ(width(0) + width(1) + width(2) + width(3), gtk_adjustment_get_page_size(scroll));
        EXPECT_EQ(gtk_adjustment_get_upper(scroll), gtk_adjustment_get_page_size(scroll));
    };
    EXPECT_TRUE(
        Await([&] { return width(0) + width(1) + width(2) + width(3) == gtk_adjustment_get_page_size(scroll); }));
    expect_filled();
    EXPECT_GT(width(1), 64);
    int bars = 0;
    gtk_widget_translate_coordinates(pMainW->Paned, pMainW->MainWindow, 0, 0, nullptr, &bars);
    EXPECT_LE(bars, 112);
    std::filesystem::resize_file(files.At("1"), std::uintmax_t{1} << 42);
    Steps("rescan");
    EXPECT_TRUE(Await([&] { return width(2) > text("4194304MByte"); }));
    gtk_window_resize(Window(), 1100, 400);
    EXPECT_TRUE(Await([&] { return gtk_adjustment_get_page_size(scroll) > 800; }));
    expect_filled();
    for (const int wanted : {225, 140, 180, 1}) {
        const int before = width(2);
        gtk_tree_view_column_set_fixed_width(ListViewColumn(2), wanted);
        EXPECT_TRUE(Await([&] { return width(2) != before; }));
        Settle();
        expect_filled();
    }
    EXPECT_GT(pGTable->ColumnSize[1], text("4194304MByte")) << "numbers are never cut";
    EXPECT_EQ(ListColumnWidths()[0], 150);
    gtk_tree_view_column_set_fixed_width(ListViewColumn(1), -1);  // As after a double click on the edge.
    EXPECT_TRUE(Await([&] { return width(1) == pGTable->ColumnSize[0]; }));
    EXPECT_NEAR(width(1), text(name.c_str()), 20);
    EXPECT_EQ(ListColumnWidths()[0], width(1));
}

TEST_F(List, ReadingAgainKeepsTheFirstVisibleRow)
{
    MakeMany(100, "file");
    Start();
    GtkAdjustment* const scroll = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(pMainW->FileList));
    const int row_height = static_cast<int>(gtk_adjustment_get_upper(scroll)) / static_cast<int>(ListRows().Count());
    gtk_adjustment_set_value(scroll, 40.5 * row_height);
    Settle();
    Steps("rescan");
    EXPECT_TRUE(Await([] {
        const TreePath path = GetFirstVisiblePath(MainList());
        return path != nullptr && gtk_tree_path_get_indices(path.get())[0] == 40;
    }));
}

TEST_F(List, TheStatusCountsWhatIsStillThere)
{
    Make({"a:1000", "b:2000", "\xFF:3000", "link -> a"});
    std::string deep = "a1/";
    for (int i = 1; i <= 4 * 85; ++i) {
        deep += i % 85 != 0 ? "\u65e5" : "\u65e5/";
    }
    const Names tops = {deep, "b" + deep, "cc" + deep};  // One would be cut inside of a character.
    Make(tops);
    Start();
    files.Remove("b");
    const std::pair<Names, const char*> cases[] = {{{"\xFF"}, " \xEF\xBF\xBD  2.9KByte"},
                                                   {{"a", "b"}, " a  1KByte"},
                                                   {{"link"}, " link  0.1KByte"},
                                                   {{"a", "\xFF"}, " 2 files  3.9KByte"}};
    for (const auto& [selected, status] : cases) {
        SelectNames(selected);
        EXPECT_EQ(StatusShown(), status);
    }
    for (const std::string& top : tops) {
        Visit(top);
        EXPECT_NEAR(static_cast<double>(StatusShown().size()), 1023, 1);
        EXPECT_TRUE(pGTable->CurrentDir.ends_with(StatusShown().substr(4))) << "after a blank and an ellipsis";
    }
}

TEST_F(List, ALargeSelectionIsSummedUpWhileTheLoopIsIdle)
{
    MakeMany(2'400, "many/f");
    Make({"many/0:5000"});
    Start();
    Visit("many");
    // A summary under way is given up with the rows that it is about.
    Press("<Control>a");
    UnselectAllListRows();
    SelectAllListRows();
    ClickTitle(1);
    EXPECT_TRUE(Await([] { return StatusShown() == " 2401 files  4.9KByte"; })) << StatusShown();
    SelectAllListRows();
    SelectNames({"0"});
    Settle();
    EXPECT_EQ(StatusShown(), " 0  4.9KByte");
    SelectAllListRows();
    TerminateGlobalTable();  // The sum does not outlive the record.
    Settle();
}

}  // namespace
