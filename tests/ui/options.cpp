// The options dialog: what it changes, and that it changes nothing before it is confirmed.

#include <gdk/gdkkeysyms.h>

#include "model/fnkfilelist-sort.h"
#include "kit/fnkutil-color.h"
#include "windowtest.h"

namespace {

class Options : public WindowTest {
protected:
    using Act = DialogActs::value_type;

    static void During(const DialogActs& acts)
    {
        DuringDialogs([] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_OPTION])); }, acts);
        Settle();
    }
    static void PressButton(GtkWidget* dialog, const char* label)
    {
        gtk_button_clicked(GTK_BUTTON(FindByText(dialog, label)));
    }
    /// Switches the options over and presses the button.
    static Act Switch(const Names& labels, const char* button)
    {
        return [labels, button](GtkWidget* dialog) {
            for (const std::string& label : labels) {
                GtkToggleButton* const check = GTK_TOGGLE_BUTTON(FindByText(dialog, label));
                gtk_toggle_button_set_active(check, !gtk_toggle_button_get_active(check));
            }
            PressButton(dialog, button);
        };
    }

    // The page of columns.

    static void ShowPage(GtkWidget* dialog, int page)
    {
        gtk_notebook_set_current_page(
            GTK_NOTEBOOK(FindWidget(dialog, [](GtkWidget* widget) { return GTK_IS_NOTEBOOK(widget) != FALSE; })), page);
        Settle();
    }
    static GtkTreeView* ListTitled(GtkWidget* dialog, const std::string& title)
    {
        return GTK_TREE_VIEW(FindWidget(dialog, [&title](GtkWidget* widget) {
            return GTK_IS_TREE_VIEW(widget) &&
                   gtk_tree_view_column_get_title(gtk_tree_view_get_column(GTK_TREE_VIEW(widget), 0)) == title;
        }));
    }
    static GtkTreeView* Possible(GtkWidget* dialog) { return ListTitled(dialog, "Possible columns"); }
    static GtkTreeView* Displayed(GtkWidget* dialog) { return ListTitled(dialog, "Displayed columns"); }
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
    static TreePath RowOfTitle(GtkTreeView* list, const std::string& title)
    {
        const Names titles = TitlesIn(list);
        return TreePath(gtk_tree_path_new_from_indices(
            static_cast<int>(std::find(titles.begin(), titles.end(), title) - titles.begin()), -1));
    }
    void ClickTitleIn(GtkTreeView* list, const std::string& title, guint state = 0)
    {
        Click(list, RowOfTitle(list, title).get(), state);
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

    // The page of colours.

    static GtkWidget* ColorButton(GtkWidget* dialog, const std::string& name)
    {
        return FindWidget(dialog, [&name](GtkWidget* widget) {
            return GTK_IS_BUTTON(widget) &&
                   g_strcmp0(atk_object_get_name(gtk_widget_get_accessible(widget)), name.c_str()) == 0;
        });
    }
    static Act OpenChooser(const std::string& name)
    {
        return [name](GtkWidget* dialog) { gtk_button_clicked(GTK_BUTTON(ColorButton(dialog, name))); };
    }
    static Act Choose(const GdkRGBA& color, const char* button)
    {
        return [color, button](GtkWidget* chooser) {
            EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(chooser)), "Color selection");
            EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(chooser)), FindByText(chooser, "Cancel"));
            gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(chooser), &color);
            PressButton(chooser, button);
        };
    }
    static Act Finish(const char* button)
    {
        return [button](GtkWidget* dialog) { PressButton(dialog, button); };
    }
    static std::vector<int> Components(FileType type)
    {
        const Color& color = pGTable->Colors[type];
        return {color.red, color.green, color.blue};
    }
};

const Names kSwitches = {"Show backup files",
                         "Show hidden files",
                         "Case sensitivity is disregarded when sorting",
                         "Mix files and directories.",
                         "Confirm when deleting file",
                         "Confirm when overwriting files",
                         "Confirm when executing files",
                         "Show progress while operations are being performed"};

std::vector<int> Flags()
{
    return {pGTable->ShowBackup, pGTable->ShowHidden,       pGTable->SortCase,    pGTable->MixFileDir,
            pGTable->ConfilmDel, pGTable->ConfilmOverwrite, pGTable->ConfilmExec, pGTable->ShowProgress};
}

TEST_F(Options, SwitchesTakeEffectWhenTheyAreConfirmed)
{
    files.Directory("b");
    files.Directory(".c");
    for (const char* const name : {"B1", "a1", "b2~", ".z"}) {
        files.File(name);
    }
    Start();
    ClickTitle(2);
    ClickTitle(2);
    const Names before = ListNames();
    const std::vector<int> flags = Flags();
    const auto close = [](GtkWidget* dialog) { SendClose(dialog); };
    During({[](GtkWidget* dialog) {
        EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(dialog)), FindByText(dialog, "Cancel"));
        Switch(kSwitches, "Cancel")(dialog);
    }});
    During({close});
    EXPECT_EQ(Flags(), flags);
    EXPECT_EQ(ListNames(), before);
    EXPECT_EQ(pGTable->SortType, SORT_DESCENDING);

    During({Switch(kSwitches, "OK")});
    for (std::size_t i = 0; i < flags.size(); ++i) {
        EXPECT_EQ(Flags()[i], 1 - flags[i]) << kSwitches[i];
    }
    EXPECT_EQ(ListNames(), (Names{"..", ".c", ".z", "a1", "b", "B1", "b2~"}));
    EXPECT_EQ(ChildNames(files.Path()), (Names{".c", "b"}));
    EXPECT_EQ(EffectiveSortColumn(), pGTable->NameColumn);
    ExpectConsistent();

    // Confirmed without a change it sorts by name, and builds nothing anew.
    ClickTitle(2);
    GtkWidget* const list = pMainW->FileList;
    During({Finish("OK")});
    EXPECT_EQ(pMainW->FileList, list);
    EXPECT_EQ(EffectiveSortColumn(), pGTable->NameColumn);
    EXPECT_TRUE(IsShownAscending());
    ExpectConsistent();
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
    During({Switch({"Show hidden files"}, "OK")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/b/"));
    EXPECT_EQ(pGTable->LocationDirHistory, history);
    EXPECT_TRUE(IsExpanded(files.At("a/b")) && IsExpanded(files.At("d")));
    EXPECT_TRUE(IsInTree(files.At("a/.h")));
    ExpectConsistent();

    During({[this](GtkWidget* dialog) {
        ShowPage(dialog, 2);
        ClickTitleIn(Displayed(dialog), "Size");
        PressButton(dialog, "Remove");
        PressButton(dialog, "OK");
    }});
    EXPECT_EQ(ListTitles(), (Names{"Name", "Modification time"}));
    EXPECT_EQ(gtk_paned_get_position(GTK_PANED(pMainW->Paned)), 260);
    EXPECT_EQ(gtk_widget_get_allocated_width(pMainW->TreeScroll), 260);
    ExpectConsistent();

    // What is itself hidden cannot be stayed in.
    Visit("a/.h/x");
    During({Switch({"Show hidden files"}, "OK")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    EXPECT_FALSE(IsInTree(files.At("a/.h")));
    ExpectConsistent();
}

TEST_F(Options, ColumnsAreAddedRemovedAndMoved)
{
    Settings(
        "[Detailed View]\nColumnCount=3\nColumnPosition0=0\nColumnSize0=111\nColumnPosition1=1\n"
        "ColumnSize1=77\nColumnPosition2=8\nColumnSize2=99\n");
    files.File("file");
    Start();
    SelectNames({"file"});
    During({[this](GtkWidget* dialog) {
        ShowPage(dialog, 2);
        GtkTreeView* const possible = Possible(dialog);
        GtkTreeView* const displayed = Displayed(dialog);
        EXPECT_EQ(TitlesIn(possible), (Names{"Access time", "Change time", "Group", "Group ID", "Permission", "User",
                                             "User ID", "i Node number"}));
        EXPECT_EQ(TitlesIn(displayed), (Names{"Name", "Size", "Modification time"}));
        EXPECT_FALSE(CanPress(dialog, "Add") || CanPress(dialog, "Remove"));
        EXPECT_TRUE(gtk_tree_view_get_reorderable(displayed));

        // The column of names stays, alone or with others.
        ClickTitleIn(displayed, "Size");
        EXPECT_TRUE(CanPress(dialog, "Remove"));
        ClickTitleIn(displayed, "Name", GDK_CONTROL_MASK);
        EXPECT_EQ(gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(displayed)), 2);
        EXPECT_FALSE(CanPress(dialog, "Remove"));
        gtk_tree_view_row_activated(displayed, RowOfTitle(displayed, "Name").get(),
                                    gtk_tree_view_get_column(displayed, 0));
        EXPECT_EQ(TitlesIn(displayed).front(), "Name");

        gtk_tree_view_row_activated(displayed, RowOfTitle(displayed, "Size").get(),
                                    gtk_tree_view_get_column(displayed, 0));
        EXPECT_FALSE(CanPress(dialog, "Remove"));
        EXPECT_EQ(TitlesIn(possible)[5], "Size") << "sorted in";
        ClickTitleIn(possible, "User");
        ClickTitleIn(possible, "Group", GDK_CONTROL_MASK);
        PressButton(dialog, "Add");
        EXPECT_FALSE(CanPress(dialog, "Add"));
        EXPECT_EQ(TitlesIn(displayed), (Names{"Name", "Modification time", "Group", "User"}));

        ClickTitleIn(displayed, "Modification time");
        SendKey(dialog, GDK_KEY_Up, GDK_MOD1_MASK);
        SendKey(dialog, GDK_KEY_Up, GDK_MOD1_MASK);
        EXPECT_EQ(TitlesIn(displayed), (Names{"Modification time", "Name", "Group", "User"}));
        PressButton(dialog, "OK");
    }});
    EXPECT_EQ(ListTitles(), (Names{"Modification time", "Name", "Group", "User"}));
    const std::vector<int> widths = ListColumnWidths();
    EXPECT_EQ(widths[0], 99);
    EXPECT_EQ(widths[1], 111);
    EXPECT_EQ(pGTable->ColumnSize[2], 0);
    EXPECT_EQ(pGTable->NameColumn, 2);
    EXPECT_EQ(EffectiveSortColumn(), 2);
    EXPECT_EQ(ListNames(), (Names{"..", "file"}));
    ExpectConsistent();
    SelectNames({"file"});
    ExpectConsistent();
}

TEST_F(Options, AColumnThatMovesStaysAsWideAsItsNumbersNeed)
{
    Start();
    const int width = ListColumnWidths()[1];
    EXPECT_GT(width, pGTable->ColumnSize[1]) << "the test needs a font that is wider";
    During({[this](GtkWidget* dialog) {
        ShowPage(dialog, 2);
        ClickTitleIn(Displayed(dialog), "Size");
        SendKey(dialog, GDK_KEY_Down, GDK_MOD1_MASK);
        PressButton(dialog, "OK");
    }});
    EXPECT_EQ(ListTitles(), (Names{"Name", "Modification time", "Size"}));
    EXPECT_EQ(ListColumnWidths()[2], width);
}

TEST_F(Options, ColoursAreChosenAndConfirmed)
{
    files.File("file");
    Start();
    const std::vector<int> blue = Components(FT_DIRECTORY);
    During({OpenChooser("Directory"), Choose({1, 1, 1, 1}, "OK"), Finish("Cancel")});
    EXPECT_EQ(Components(FT_DIRECTORY), blue);

    During({OpenChooser("Directory"),
            [](GtkWidget* chooser) {
                GdkRGBA color;
                gtk_color_chooser_get_rgba(GTK_COLOR_CHOOSER(chooser), &color);
                EXPECT_DOUBLE_EQ(color.blue, 1.0);
                PressButton(chooser, "OK");
            },
            OpenChooser("Normal file"), Choose({1, 1, 1, 1}, "OK"), OpenChooser("Socket"), Choose({0.5, 0, 1, 1}, "OK"),
            OpenChooser("Link file"), Choose({0, 0, 0, 1}, "Cancel"), OpenChooser("Link file"),
            [](GtkWidget* chooser) { SendClose(chooser); }, Finish("OK")});
    EXPECT_EQ(Components(FT_DIRECTORY), blue) << "nothing else was chosen";
    EXPECT_EQ(Components(FT_NORMAL), (std::vector<int>{65535, 65535, 65535}));
    EXPECT_EQ(Components(FT_SOCKET), (std::vector<int>{32767, 0, 65535}));
    EXPECT_EQ(Components(FT_SYMLINK), (std::vector<int>{0xff00, 0xff00, 0}));
    EXPECT_EQ(ShownColor(pGTable->Colors[FT_NORMAL]).red, 1.0);
    ExpectConsistent();
}

}  // namespace
