// The small dialogs: filtering, sorting, selecting by pattern, symbolic links.

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
    MakeMany(60, "z");
    Steps("rescan");
    Ask(MENU_SELECT_FILES, {EnterText("z1[45]*")});
    EXPECT_EQ(RowVisibilityOf(RowOf("z140")), ROW_VISIBLE) << "the first match";
    Ask(MENU_SELECT_FILES, {EnterText("*.txt")});
    EXPECT_EQ(RowVisibilityOf(RowOf("dir.txt")), ROW_VISIBLE);
    ExpectConsistent();
}

class Links : public WindowTest {
protected:
    /// Types both texts and presses OK.
    static DialogAct Fill(const std::string& existing, const std::string& link)
    {
        return [=](GtkWidget* dialog) {
            gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, "Existing file name:")), existing.c_str());
            gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, "Symbolic link file name:")), link.c_str());
            PressButton("OK")(dialog);
        };
    }
    std::string Target(const std::string& name) const { return std::filesystem::read_symlink(files.At(name)); }
};

TEST_F(Links, TheTextIsWhatWasTypedButForASlashBehindDirectories)
{
    Make({"dir/file", "dir/sub/", "dir/bro\xFFken", "dangling -> nowhere"});
    Start();
    Visit("dir");
    SelectNames({"sub", "bro\xFFken"});
    EXPECT_FALSE(IsOffered(MENU_SYMBOLIC_LINK));
    SelectNames({"bro\xFFken"});
    Ask(MENU_SYMBOLIC_LINK, {EnterText("../link")});
    EXPECT_EQ(Target("link"), files.At("dir/bro\xFFken"));
    EXPECT_EQ(Joined(ListNames()), "..,dir,dangling,link");
    // Nothing is selected: the directory of the tree. The "/" behind a link is none of its name.
    Visit("dir");
    Ask(MENU_SYMBOLIC_LINK, {EnterText("../up/")});
    EXPECT_EQ(Target("up"), files.At("dir/"));
    EXPECT_EQ(pGTable->DirHistory, History{files.Path()});
    Visit("dir");
    const std::tuple<const char*, std::string, const char*, std::string> cases[] = {
        {"file", "../a", "a", "file"},
        {"dir//sub", files.At("b"), "b", "dir//sub/"},
        {"dangling", "c", "c", "dangling"},
        // What leads to something in its canonical form only is written so.
        {"dir/file/", "d", "d", files.At("dir/file")}};
    for (const auto& [existing, link, made, target] : cases) {
        Ask(MENU_SYMBOLIC_LINK, {Fill(existing, link)});
        EXPECT_EQ(Target(made), target);
        ExpectAt("");
    }
}

TEST_F(Links, NothingIsReplacedAndWhatIsWrongIsSaid)
{
    Make({"dir/", "dangling -> free", "file"});
    const Names before = files.Names();
    Start();
    const std::tuple<const char*, const char*, const char*> refused[] = {
        {"missing", "link", "The specified file does not exist."},
        {"file", "dir", "The specified directory already exists."},
        {"file", "dangling", "The specified file already exists."},
        {"file", "file/below", "Parent directory does not exist."}};
    DialogActs acts;
    for (const auto& [existing, link, message] : refused) {
        acts.insert(acts.end(), {Fill(existing, link), ReadBox(message)});
    }
    acts.push_back(PressButton("Cancel"));
    Ask(MENU_SYMBOLIC_LINK, acts);
    EXPECT_EQ(files.Names(), before);
    EXPECT_EQ(Target("dangling"), "free");
    ExpectConsistent();
}

}  // namespace
