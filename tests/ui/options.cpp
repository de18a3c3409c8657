// The options dialog: what it changes, and that this shows at once but not before it is confirmed.

#include "acts.h"
#include "core/fnkraii.h"
#include "model/fnkfilelist-sort.h"

namespace {

class Options : public WindowTest {
protected:
    static DialogAct Switch(const char* label, const char* button = "OK")
    {
        return [=](GtkWidget* dialog) {
            PressButton(label)(dialog);
            PressButton(button)(dialog);
        };
    }
    static GtkTreeView* List(GtkWidget* dialog, const std::string& title)
    {
        GtkWidget* const book = FindWidget(dialog, [](GtkWidget* widget) { return GTK_IS_NOTEBOOK(widget) != FALSE; });
        gtk_notebook_set_current_page(GTK_NOTEBOOK(book), 2);
        Settle();
        return GTK_TREE_VIEW(FindWidget(dialog, [&title](GtkWidget* widget) {
            return GTK_IS_TREE_VIEW(widget) &&
                   gtk_tree_view_column_get_title(gtk_tree_view_get_column(GTK_TREE_VIEW(widget), 0)) == title;
        }));
    }
    static Names TitlesIn(GtkTreeView* list)
    {
        Names titles;
        const auto add = [](GtkTreeModel* model, GtkTreePath*, GtkTreeIter* row, gpointer names) -> gboolean {
            char* title = nullptr;
            gtk_tree_model_get(model, row, 1, &title, -1);
            static_cast<Names*>(names)->emplace_back(GlibPointer<char>(title).get());
            return FALSE;
        };
        gtk_tree_model_foreach(gtk_tree_view_get_model(list), add, &titles);
        return titles;
    }
    void ClickTitleIn(GtkTreeView* list, const std::string& title, guint state = 0, bool twice = false)
    {
        const Names titles = TitlesIn(list);
        const TreePath path = RowPath(static_cast<std::size_t>(std::ranges::find(titles, title) - titles.begin()));
        Click(list, path.get(), state);
        if (twice) {
            gtk_tree_view_row_activated(list, path.get(), gtk_tree_view_get_column(list, 0));
        }
    }
    static std::string ListTitles()
    {
        Names titles;
        for (int i = 1; i <= pGTable->ColumnCount; ++i) {
            titles.emplace_back(gtk_tree_view_column_get_title(ListViewColumn(i)));
        }
        return Joined(titles);
    }
    static DialogAct OpenChooser(const char* name)
    {
        return [=](GtkWidget* dialog) { gtk_button_clicked(GTK_BUTTON(FindNamed(dialog, name))); };
    }
    static DialogAct PickColour(const char* button)
    {
        return [=](GtkWidget* chooser) {
            constexpr GdkRGBA kColor = {0.5, 0, 1, 1};
            gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(chooser), &kColor);
            PressButton(button)(chooser);
        };
    }
};

TEST_F(Options, EverySwitchTakesEffectWhenItIsConfirmed)
{
    Make({"b/", ".c/", "B1", "a1", "b2~", ".z"});
    Start();
    const std::tuple<const char*, int GTable::*, const char*> cases[] = {
        {"Show backup files", &GTable::ShowBackup, "..,b,B1,a1,b2~"},
        {"Show hidden files", &GTable::ShowHidden, "..,.c,b,.z,B1,a1,b2~"},
        {"Case sensitivity is disregarded when sorting", &GTable::SortCase, "..,.c,b,.z,a1,B1,b2~"},
        {"Mix files and directories.", &GTable::MixFileDir, "..,.c,.z,a1,b,B1,b2~"},
        {"Confirm when deleting file", &GTable::ConfilmDel, nullptr},
        {"Confirm when executing files", &GTable::ConfilmExec, nullptr},
        {"Show progress while operations are being performed", &GTable::ShowProgress, nullptr}};
    std::string shown = Joined(ListNames());
    for (const auto& [label, flag, names] : cases) {
        SCOPED_TRACE(label);
        const int before = pGTable->*flag;
        Ask(MENU_OPTION, {Switch(label, "Cancel")});
        EXPECT_EQ(pGTable->*flag, before);
        EXPECT_EQ(Joined(ListNames()), shown);
        shown = names == nullptr ? shown : names;
        Ask(MENU_OPTION, {Switch(label)});
        EXPECT_EQ(pGTable->*flag, 1 - before);
        EXPECT_EQ(Joined(ListNames()), shown);
        ExpectConsistent();
    }
    Close();
    EXPECT_NE(home.Contents(".fennick")
                  .find("\n[Setting]\nShowBackup=yes\nShowHidden=yes\nSortCase=yes\nMixFileDir=yes\n"
                        "ConfilmDel=no\nConfilmOverwrite=yes\nConfilmExec=yes\nShowProgress=no\n"),
              std::string::npos);
}

TEST_F(Options, TheWindowStaysWhereItIs)
{
    Make({"a/b/c/", "a/.h/x/", "d/e/"});
    Start();
    Visit("a/b");
    SetExpanded(files.At("d"), true);
    gtk_paned_set_position(GTK_PANED(pMainW->Paned), 260);
    const History history = pGTable->LocationDirHistory;
    Ask(MENU_OPTION, {[this](GtkWidget* dialog) {
            ClickTitleIn(List(dialog, "Displayed columns"), "Size");
            PressButton("Remove")(dialog);
            Switch("Show hidden files")(dialog);
        }});
    EXPECT_EQ(pGTable->LocationDirHistory, history);
    EXPECT_TRUE(IsExpanded(files.At("a/b")) && IsExpanded(files.At("d")) && IsInTree(files.At("a/.h")));
    EXPECT_EQ(ListTitles(), "Name,Modification time");
    EXPECT_EQ(gtk_widget_get_allocated_width(pMainW->TreeScroll), 260);
    ExpectAt("a/b/");
    Visit("a/.h/x");
    Ask(MENU_OPTION, {Switch("Show hidden files")});
    ExpectAt("a/.h/x/");
    Steps("visit a; reread = .");
    EXPECT_FALSE(IsInTree(files.At("a/.h"))) << "it has a node only as long as it is shown";
}

TEST_F(Options, ColumnsAreAddedRemovedAndMoved)
{
    Settings(
        "[Detailed View]\nColumnCount=3\nColumnPosition0=0\nColumnSize0=111\nColumnPosition1=1\n"
        "ColumnSize1=77\nColumnPosition2=8\nColumnSize2=199\n");
    Make({"file"});
    Start();
    Ask(MENU_OPTION, {[this](GtkWidget* dialog) {
            GtkTreeView* const possible = List(dialog, "Possible columns");
            GtkTreeView* const displayed = List(dialog, "Displayed columns");
            const auto can_press = [dialog](const char* label) {
                return gtk_widget_get_sensitive(FindByText(dialog, label)) != FALSE;
            };
            EXPECT_FALSE(can_press("Add") || can_press("Remove"));
            // The column of names stays, alone or with others.
            ClickTitleIn(displayed, "Size");
            EXPECT_TRUE(can_press("Remove"));
            ClickTitleIn(displayed, "Name", GDK_CONTROL_MASK);
            EXPECT_FALSE(can_press("Remove"));
            ClickTitleIn(displayed, "Name", 0, true);
            ClickTitleIn(displayed, "Size", 0, true);
            EXPECT_EQ(TitlesIn(possible)[5], "Size") << "in the order of their titles";
            ClickTitleIn(possible, "User");
            ClickTitleIn(possible, "Group", GDK_CONTROL_MASK);
            PressButton("Add")(dialog);
            EXPECT_FALSE(can_press("Add"));
            EXPECT_EQ(Joined(TitlesIn(displayed)), "Name,Modification time,Group,User");
            ClickTitleIn(displayed, "Modification time");
            SendKey(dialog, GDK_KEY_Down);  // Moves the cursor alone.
            ClickTitleIn(displayed, "Modification time");
            SendKey(dialog, GDK_KEY_Up, GDK_MOD1_MASK);
            ClickTitleIn(displayed, "Group");
            SendKey(dialog, GDK_KEY_Down, GDK_MOD1_MASK);
            PressButton("OK")(dialog);
        }});
    EXPECT_EQ(ListTitles(), "Modification time,Name,User,Group");
    EXPECT_EQ(ListColumnWidths()[0], 199);
    EXPECT_EQ(ListColumnWidths()[1], 111);
    EXPECT_EQ(EffectiveSortColumn(), 2);
    ExpectAt("");
}

TEST_F(Options, ColoursAreChosenAndConfirmed)
{
    Start();
    const auto shown = [](FileType type) {
        const Color& color = pGTable->Colors[type];
        return std::vector{color.red, color.green, color.blue};
    };
    const auto before = shown(FT_DIRECTORY);
    Ask(MENU_OPTION, {OpenChooser("Directory"), PickColour("OK"), PressButton("Cancel")});
    Ask(MENU_OPTION,
        {OpenChooser("Directory"), PickColour("Cancel"), OpenChooser("Socket"), PickColour("OK"), PressButton("OK")});
    EXPECT_EQ(shown(FT_DIRECTORY), before);
    EXPECT_EQ(shown(FT_SOCKET), (decltype(before){32767, 0, 65535}));
}

}  // namespace
