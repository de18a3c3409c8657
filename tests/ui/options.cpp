// The options dialog: what it changes, that it shows at once, and that nothing changes before it is
// confirmed.

#include "acts.h"
#include "model/fnkfilelist-sort.h"
#include "kit/fnkutil-color.h"

namespace {

class Options : public WindowTest {
protected:
    static void During(const DialogActs& acts)
    {
        DuringDialogs([] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_OPTION])); }, acts);
        Settle();
    }
    static DialogAct Switch(const char* label, const char* button)
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
        GtkTreeModel* const model = gtk_tree_view_get_model(list);
        GtkTreeIter row;
        for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more;
             more = gtk_tree_model_iter_next(model, &row)) {
            char* title = nullptr;
            gtk_tree_model_get(model, &row, 1, &title, -1);
            titles.emplace_back(title);
            g_free(title);
        }
        return titles;
    }
    void ClickTitleIn(GtkTreeView* list, const std::string& title, guint state = 0, bool twice = false)
    {
        const Names titles = TitlesIn(list);
        const auto row = static_cast<int>(std::find(titles.begin(), titles.end(), title) - titles.begin());
        const TreePath path(gtk_tree_path_new_from_indices(row, -1));
        Click(list, path.get(), state);
        if (twice) {
            gtk_tree_view_row_activated(list, path.get(), gtk_tree_view_get_column(list, 0));
        }
    }
    static bool CanPress(GtkWidget* dialog, const char* label)
    {
        return gtk_widget_get_sensitive(FindByText(dialog, label)) != FALSE;
    }
    /// Titles of the columns of the file list.
    static Names ListTitles()
    {
        Names titles;
        for (int i = 1; i <= pGTable->ColumnCount; ++i) {
            titles.emplace_back(gtk_tree_view_column_get_title(ListViewColumn(i)));
        }
        return titles;
    }
    static DialogAct OpenChooser(const char* name)
    {
        return [=](GtkWidget* dialog) {
            gtk_button_clicked(GTK_BUTTON(FindWidget(dialog, [=](GtkWidget* widget) {
                return GTK_IS_BUTTON(widget) &&
                       g_strcmp0(atk_object_get_name(gtk_widget_get_accessible(widget)), name) == 0;
            })));
        };
    }
    static DialogAct Choose(const char* button)
    {
        return [=](GtkWidget* chooser) {
            EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(chooser)), FindByText(chooser, "Cancel"));
            constexpr GdkRGBA kColor = {0.5, 0, 1, 1};
            gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(chooser), &kColor);
            PressButton(button)(chooser);
        };
    }
    static std::vector<int> Components(FileType type)
    {
        const Color& color = pGTable->Colors[type];
        return {color.red, color.green, color.blue};
    }
};

TEST_F(Options, EverySwitchTakesEffectWhenItIsConfirmed)
{
    files.Directory("b");
    files.Directory(".c");
    for (const char* const name : {"B1", "a1", "b2~", ".z"}) {
        files.File(name);
    }
    Start();
    const std::tuple<const char*, int GTable::*, Names> cases[] = {
        {"Show backup files", &GTable::ShowBackup, {"..", "b", "B1", "a1", "b2~"}},
        {"Show hidden files", &GTable::ShowHidden, {"..", ".c", "b", ".z", "B1", "a1", "b2~"}},
        {"Case sensitivity is disregarded when sorting", &GTable::SortCase, {"..", ".c", "b", ".z", "a1", "B1", "b2~"}},
        {"Mix files and directories.", &GTable::MixFileDir, {"..", ".c", ".z", "a1", "b", "B1", "b2~"}},
        {"Confirm when deleting file", &GTable::ConfilmDel, {}},
        {"Confirm when executing files", &GTable::ConfilmExec, {}},
        {"Show progress while operations are being performed", &GTable::ShowProgress, {}}};
    Names shown = ListNames();
    for (const auto& [label, flag, names] : cases) {
        SCOPED_TRACE(label);
        const int before = pGTable->*flag;
        During({Switch(label, "Cancel")});
        EXPECT_EQ(pGTable->*flag, before);
        EXPECT_EQ(ListNames(), shown);
        shown = names.empty() ? shown : names;
        During({Switch(label, "OK")});
        EXPECT_EQ(pGTable->*flag, 1 - before);
        EXPECT_EQ(ListNames(), shown);
        ExpectConsistent();
    }
    // Confirmed without a change it sorts by name and builds nothing anew.
    ClickTitle(2);
    ClickTitle(2);
    GtkWidget* const list = pMainW->FileList;
    During({SendClose});
    EXPECT_FALSE(IsShownAscending());
    During({PressButton("OK")});
    EXPECT_EQ(pMainW->FileList, list);
    EXPECT_EQ(EffectiveSortColumn(), pGTable->NameColumn);
    EXPECT_TRUE(IsShownAscending());
    EXPECT_EQ(ListNames(), shown);
}

TEST_F(Options, TheWindowStaysWhereItIs)
{
    files.Directory("a/b/c");
    files.Directory("a/.h/x");
    files.Directory("d/e");
    Start();
    Visit("a/b");
    SetExpanded(files.At("d"), true);
    gtk_paned_set_position(GTK_PANED(pMainW->Paned), 260);
    Settle();
    const History history = pGTable->LocationDirHistory;
    During({[this](GtkWidget* dialog) {
        ClickTitleIn(List(dialog, "Displayed columns"), "Size");
        PressButton("Remove")(dialog);
        Switch("Show hidden files", "OK")(dialog);
    }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/b/"));
    EXPECT_EQ(pGTable->LocationDirHistory, history);
    EXPECT_TRUE(IsExpanded(files.At("a/b")) && IsExpanded(files.At("d")) && IsInTree(files.At("a/.h")));
    EXPECT_EQ(ListTitles(), (Names{"Name", "Modification time"}));
    EXPECT_EQ(gtk_widget_get_allocated_width(pMainW->TreeScroll), 260);
    ExpectConsistent();
    Visit("a/.h/x");
    During({Switch("Show hidden files", "OK")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/")) << "what is hidden cannot be stayed in";
    EXPECT_FALSE(IsInTree(files.At("a/.h")));
    ExpectConsistent();
}

TEST_F(Options, ColumnsAreAddedRemovedAndMoved)
{
    Settings(
        "[Detailed View]\nColumnCount=3\nColumnPosition0=0\nColumnSize0=111\nColumnPosition1=1\n"
        "ColumnSize1=77\nColumnPosition2=8\nColumnSize2=199\n");
    files.File("file");
    Start();
    During({[this](GtkWidget* dialog) {
        GtkTreeView* const possible = List(dialog, "Possible columns");
        GtkTreeView* const displayed = List(dialog, "Displayed columns");
        EXPECT_EQ(TitlesIn(displayed), (Names{"Name", "Size", "Modification time"}));
        EXPECT_EQ(TitlesIn(possible).size(), 8U);
        EXPECT_FALSE(CanPress(dialog, "Add") || CanPress(dialog, "Remove"));
        // The column of names stays, alone or with others.
        ClickTitleIn(displayed, "Size");
        EXPECT_TRUE(CanPress(dialog, "Remove"));
        ClickTitleIn(displayed, "Name", GDK_CONTROL_MASK);
        EXPECT_FALSE(CanPress(dialog, "Remove"));
        ClickTitleIn(displayed, "Name", 0, true);
        ClickTitleIn(displayed, "Size", 0, true);
        EXPECT_FALSE(CanPress(dialog, "Remove"));
        EXPECT_EQ(TitlesIn(possible)[5], "Size") << "in the order of their titles";
        ClickTitleIn(possible, "User");
        ClickTitleIn(possible, "Group", GDK_CONTROL_MASK);
        PressButton("Add")(dialog);
        EXPECT_FALSE(CanPress(dialog, "Add"));
        EXPECT_EQ(TitlesIn(displayed), (Names{"Name", "Modification time", "Group", "User"}));
        ClickTitleIn(displayed, "Modification time");
        SendKey(dialog, GDK_KEY_Down);  // Moves the cursor alone.
        ClickTitleIn(displayed, "Modification time");
        SendKey(dialog, GDK_KEY_Up, GDK_MOD1_MASK);
        ClickTitleIn(displayed, "Group");
        SendKey(dialog, GDK_KEY_Down, GDK_MOD1_MASK);
        PressButton("OK")(dialog);
    }});
    EXPECT_EQ(ListTitles(), (Names{"Modification time", "Name", "User", "Group"}));
    EXPECT_EQ(ListColumnWidths()[0], 199);
    EXPECT_EQ(ListColumnWidths()[1], 111);
    EXPECT_EQ(pGTable->ColumnSize[2], 0);
    EXPECT_EQ(EffectiveSortColumn(), 2);
    EXPECT_EQ(ListNames(), (Names{"..", "file"}));
    ExpectConsistent();
}

TEST_F(Options, ColoursAreChosenAndConfirmed)
{
    Start();
    const std::vector<int> directory = Components(FT_DIRECTORY);
    During({OpenChooser("Directory"), Choose("OK"), PressButton("Cancel")});
    During({OpenChooser("Directory"), Choose("Cancel"), OpenChooser("Directory"), PressButton("OK"),
            OpenChooser("Socket"), Choose("OK"), PressButton("OK")});
    EXPECT_EQ(Components(FT_DIRECTORY), directory) << "nothing else was chosen";
    EXPECT_EQ(Components(FT_SOCKET), (std::vector<int>{32767, 0, 65535}));
}

}  // namespace
