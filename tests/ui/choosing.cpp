// The dialogs for filtering, sorting and selecting by pattern, and inverting.

#include "acts.h"

namespace {

class Choosing : public WindowTest {
protected:
    static std::string FilterShown() { return gtk_label_get_text(GTK_LABEL(StatusBarLabel(pMainW->FilterStatusBar))); }
    /// Looks at the column that the sort dialog shows, and sets another.
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
    Settings("[Detailed View]\nFilter=yes\nFilterName=*.c\n[Setting]\nShowHidden=yes\n");
    Make({"a.txt", "b.c", ".c.c", "C.C", "br\xFFoken.txt", "dir/", "link -> dir", ".dir/"});
    Start();
    ExpectConsistent();
    EXPECT_EQ(Joined(ListNames()), "..,.dir,dir,.c.c,b.c");
    Ask(MENU_FILTER_VIEW, {EnterText("*.txt")});
    EXPECT_EQ(Joined(ListNames()), "..,.dir,dir,a.txt,br\xFFoken.txt");
    EXPECT_EQ(FilterShown(), " Filter: *.txt");
    // Refused and given up: all stays as it is.
    Ask(MENU_FILTER_VIEW, {EnterText(""), ReadBox("Invalid filter string."), PressButton("Cancel")});
    EXPECT_EQ(pGTable->FilterHistory, (History{"*.txt", "*"}));
    Ask(MENU_FILTER_VIEW, {EnterText("*")});
    EXPECT_EQ(FilterShown(), " Filter: Show all files");
    EXPECT_EQ(pGTable->FilterHistory, (History{"*", "*.txt"}));
    EXPECT_EQ(ListNames().size(), 9U);
    ExpectConsistent();
}

TEST_F(Choosing, TheListIsSortedAsTheDialogSays)
{
    Make({"a:3000", "b:9000", "c:6000"});
    Start();
    SelectNames({"b"});
    Ask(MENU_SORT_COLUMN, {SortBy("Name", 1, true)});
    EXPECT_EQ(Joined(ListNames()), "..,b,c,a");
    EXPECT_TRUE(gtk_tree_view_column_get_sort_indicator(ListViewColumn(2)));
    ExpectAt("", "b");
    Ask(MENU_SORT_COLUMN, {SortBy("Size", 0, false, "Cancel")});
    EXPECT_EQ(Joined(ListNames()), "..,b,c,a");
    ClickTitle(0);  // The column of the icons has no title of its own.
    Ask(MENU_SORT_COLUMN, {SortBy("Name", 0, true)});
    EXPECT_EQ(Joined(ListNames()), "..,c,b,a");
    ExpectAt("", "b");
}

TEST_F(Choosing, APatternSelectsWhatItMatchesAndInvertingTurnsThatAround)
{
    Settings("[Setting]\nShowHidden=yes\n");
    Make({"dir.txt/", ".hidden.txt", "a.txt", "b.c", "br\xFFk.txt", "\xC3\xA4\xFF.txt", "\xC3\xA4.c"});
    Start();
    SelectNames({"b.c"});
    Ask(MENU_SELECT_FILES, {EnterText(""), ReadBox("Invalid select string."), EnterText("*.txt")});
    ExpectAt("", "dir.txt,.hidden.txt,a.txt,br\xFFk.txt,\xC3\xA4\xFF.txt");
    Choose(MENU_INVERT_SELECTION);
    ExpectAt("", "b.c,\xC3\xA4.c");
    // A byte that belongs to no character counts as one.
    Ask(MENU_SELECT_FILES, {EnterText("??.txt")});
    ExpectAt("", "\xC3\xA4\xFF.txt");
    Ask(MENU_SELECT_FILES, {EnterText("none")});
    ExpectAt("", "");
    Choose(MENU_INVERT_SELECTION);
    EXPECT_EQ(SelectedNames().size(), 7U);
    EXPECT_EQ(pGTable->Filter, 0);
    ExpectConsistent();
}

}  // namespace
