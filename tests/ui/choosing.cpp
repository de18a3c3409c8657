// Which rows the list shows, in which order, and which of them are selected: the dialogs for
// patterns and for sorting, and inverting.

#include "acts.h"
#include "commands/fnkeditmenu-select.h"

namespace {

class Choosing : public WindowTest {
protected:
    static void Choose(MenuEntry entry) { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[entry])); }
    static void Filter() { Choose(MENU_FILTER_VIEW); }
    static void Sort() { Choose(MENU_SORT_COLUMN); }
    static void Select() { Choose(MENU_SELECT_FILES); }
    static void Invert() { Choose(MENU_INVERT_SELECTION); }

    static std::string FilterShown()
    {
        return atk_object_get_description(gtk_widget_get_accessible(pMainW->FilterStatusBar));
    }
    /// Picks what the sort dialog shows and sets.
    static DialogAct SortBy(const std::string& shown, int place, bool reversed, const char* button = "OK")
    {
        return [=](GtkWidget* dialog) {
            GtkWidget* const entry = FindNamed(dialog, "Sort column");
            EXPECT_EQ(gtk_entry_get_text(GTK_ENTRY(entry)), shown);
            gtk_combo_box_set_active(GTK_COMBO_BOX(gtk_widget_get_ancestor(entry, GTK_TYPE_COMBO_BOX)), place);
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(FindByText(dialog, "Reverse the order")), reversed);
            PressButton(button)(dialog);
        };
    }
};

TEST_F(Choosing, TheFilterHidesFilesUntilItIsTakenOff)
{
    for (const char* const name : {"a.txt", "b.c", "br\xFFoken.txt", "dir/below.txt", "dir.txt/x"}) {
        files.File(name);
    }
    Start();
    SelectNames({"b.c"});
    DuringDialogs(Filter, {EnterText("*.txt")});
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "dir.txt", "a.txt", "br\xFFoken.txt"}));
    EXPECT_EQ(FilterShown(), " Filter: *.txt");
    ExpectConsistent();
    // Refused and given up: all stays as it is.
    DuringDialogs(Filter, {EnterText(""), ReadBox("Invalid filter string."), PressButton("Cancel")});
    DuringDialogs(Filter, {[](GtkWidget* dialog) {
                               EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(gtk_window_get_focus(GTK_WINDOW(dialog)))),
                                            "*.txt");
                               std::string umlauts;
                               while (umlauts.size() <= kMaxFilterBytes) {
                                   umlauts += "\xC3\xA4";
                               }
                               EnterText(umlauts)(dialog);
                           },
                           ReadBox("Invalid filter string."), PressEscape()});
    EXPECT_EQ(pGTable->FilterName, "*.txt");
    EXPECT_EQ(pGTable->FilterHistory, (History{"*.txt", "*"}));
    DuringDialogs(Filter, {EnterText("**")});
    EXPECT_EQ(pGTable->Filter, 1);
    EXPECT_EQ(FilterShown(), " Filter: **");
    DuringDialogs(Filter, {EnterText("[")});  // As odd as it may be.
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "dir.txt"}));
    DuringDialogs(Filter, {EnterText("*")});
    EXPECT_EQ(pGTable->Filter, 0);
    EXPECT_EQ(ListNames().size(), 6U);
    EXPECT_EQ(FilterShown(), " Filter: Show all files");
    EXPECT_EQ(pGTable->FilterHistory, (History{"*", "[", "**", "*.txt"}));
    ExpectConsistent();
}

TEST_F(Choosing, TheListIsSortedAsTheDialogSays)
{
    files.File("a", std::string(3000, 'x'));
    files.File("b", std::string(9000, 'x'));
    files.File("c", std::string(6000, 'x'));
    Start();
    SelectNames({"b"});
    DuringDialogs(Sort, {SortBy("Name", 1, true)});
    EXPECT_EQ(ListNames(), (Names{"..", "b", "c", "a"}));
    EXPECT_EQ(SelectedNames(), Names{"b"});
    EXPECT_TRUE(gtk_tree_view_column_get_sort_indicator(ListViewColumn(2)));
    ExpectConsistent();
    DuringDialogs(Sort, {SortBy("Size", 0, false, "Cancel")});
    EXPECT_EQ(pGTable->SortColumn, 2);
    EXPECT_EQ(pGTable->SortType, SORT_DESCENDING);
    // The icon column has no title of its own.
    ClickTitle(0);
    DuringDialogs(Sort, {SortBy("Name", 0, true)});
    EXPECT_EQ(pGTable->SortColumn, 1);
    EXPECT_EQ(ListNames(), (Names{"..", "c", "b", "a"}));
    ExpectConsistent();
}

TEST_F(Choosing, APatternSelectsWhatItMatchesAndNothingElse)
{
    files.Directory("dir.txt");
    for (const char* const name : {".hidden.txt", "a.txt", "b.c", "br\xFFoken.txt", "\xC3\xA4\xFF.txt", "\xC3\xA4.c"}) {
        files.File(name);
    }
    Settings("[Setting]\nShowHidden=yes\n");
    Start();
    SelectNames({"b.c"});
    DuringDialogs(Select, {EnterText(""), ReadBox("Invalid select string."), EnterText("*.txt")});
    EXPECT_EQ(SelectedNames(), (Names{"dir.txt", ".hidden.txt", "a.txt", "br\xFFoken.txt", "\xC3\xA4\xFF.txt"}));
    ExpectConsistent();
    // A letter is one character, and so is a byte that belongs to none.
    DuringDialogs(Select, {EnterText("??.txt")});
    EXPECT_EQ(SelectedNames(), Names{"\xC3\xA4\xFF.txt"});
    DuringDialogs(Select, {EnterText("[\xC3\xA4]*")});
    EXPECT_EQ(SelectedNames(), (Names{"\xC3\xA4.c", "\xC3\xA4\xFF.txt"}));
    DuringDialogs(Select, {EnterText("*")});
    EXPECT_EQ(SelectedNames().size(), ListNames().size() - 1);
    EXPECT_EQ(pGTable->FilterHistory.front(), "*");
    EXPECT_EQ(pGTable->Filter, 0) << "selecting is not filtering";
    ExpectConsistent();
    DuringDialogs(Select, {EnterText("none")});
    EXPECT_EQ(SelectedNames(), Names());
    // What was typed last is offered, and Cancel is no choice.
    DuringDialogs(Select, {[](GtkWidget* dialog) {
                      EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(gtk_window_get_focus(GTK_WINDOW(dialog)))), "none");
                      EnterText("a*.txt\n")(dialog);
                  }});
    EXPECT_EQ(SelectedNames(), Names());
    ExpectConsistent();
}

TEST_F(Choosing, InvertingTwiceIsNoChange)
{
    for (const char* const name : {"a", "b", "c", "d"}) {
        files.File(name);
    }
    Start();
    SelectNames({"a", "c"});
    Invert();
    EXPECT_EQ(SelectedNames(), (Names{"b", "d"}));
    Invert();
    EXPECT_EQ(SelectedNames(), (Names{"a", "c"}));
    UnselectAllListRows();
    Invert();
    EXPECT_EQ(SelectedNames(), (Names{"a", "b", "c", "d"}));
    Invert();
    EXPECT_EQ(SelectedNames(), Names());
    ExpectConsistent();
}

TEST_F(Choosing, AHundredThousandRowsAreOneChange)
{
    files.Directory("many");
    const int directory = open(files.At("many").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < 100'000; ++i) {
        Require(symlinkat("x", directory, std::to_string(i).c_str()) == 0, "symlinkat");
    }
    close(directory);
    Start();
    Visit("many");
    static int reports = 0;
    static void (*const report)() = OnFileList.SelectionChanged;
    OnFileList.SelectionChanged = [] {
        ++reports;
        report();
    };
    SelectMatchingRows("*[02468]");
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(CountListSelection(), 50'000U);
    InvertListSelection();
    EXPECT_EQ(reports, 2);
    EXPECT_EQ(CountListSelection(), 50'000U);
    EXPECT_EQ(std::string(ListRows().Name(ListSelection().front())), "1");
    EXPECT_TRUE(Await([] { return pGTable->StatusText == " 50000 files  48.8KByte"; })) << pGTable->StatusText;
}

}  // namespace
