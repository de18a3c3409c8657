// Starting from whatever is there, a file system that changes under the window, and the end.

#include "panes/fnkfilelist-status.h"
#include "app/fnktable-life.h"
#include "windowtest.h"

namespace {

using Life = WindowTest;

TEST_F(Life, ClosingWritesTheSettingsOnceAndLateCallbacksAreHarmless)
{
    files.Directory("a/b");
    files.File("f");
    Settings("[Main Window]\nWindowX=120\nWindowY=130\nWindowWidth=700\nWindowHeight=500\nPandPosition=222\n");
    Start();
    Visit("a");
    ClickTool(TOOL_UP);
    gtk_window_resize(Window(), 720, 510);
    gtk_paned_set_position(GTK_PANED(pMainW->Paned), 240);
    ASSERT_TRUE(Await([this] { return gtk_widget_get_allocated_width(pMainW->MainWindow) == 720; }));

    GtkWidget* const main_window = pMainW->MainWindow;
    const MainW widgets = *pMainW;
    g_object_ref(main_window);
    // Terminates as the window manager's close does, but keeps the window for the late callbacks.
    gboolean destroys = FALSE;
    GdkEvent* const event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(main_window)));
    gtk_widget_show(main_window);
    g_signal_emit_by_name(main_window, "delete-event", event, &destroys);
    gdk_event_free(event);
    EXPECT_FALSE(destroys);
    EXPECT_EQ(pGTable, nullptr);
    EXPECT_EQ(pMainW, nullptr);
    const std::string stored = home.Contents(".fennick");
    for (const char* const line : {"\nWindowX=120\n", "\nWindowY=130\n", "\nWindowWidth=720\n", "\nWindowHeight=510\n",
                                   "\nPandPosition=240\n", "\nHistoryCount=2\n"}) {
        EXPECT_NE(stored.find(line), std::string::npos) << line << stored;
    }

    home.File(".fennick", "mark");
    TerminateGlobalTable();
    EXPECT_EQ(home.Contents(".fennick"), "mark");

    SendKey(main_window, GDK_KEY_Tab);
    SendKey(main_window, GDK_KEY_Down);
    SendKey(main_window, GDK_KEY_a, GDK_CONTROL_MASK);
    GtkTreeView* const tree = GTK_TREE_VIEW(widgets.DirTree);
    GtkTreeView* const list = GTK_TREE_VIEW(widgets.FileList);
    const TreePath second(gtk_tree_path_new_from_indices(0, 0, -1));
    gtk_tree_view_set_cursor(tree, second.get(), nullptr, FALSE);
    gtk_tree_view_expand_row(tree, second.get(), FALSE);
    gtk_tree_view_collapse_all(tree);
    gtk_tree_selection_select_all(gtk_tree_view_get_selection(list));
    const TreePath row(gtk_tree_path_new_from_indices(1, -1));
    gtk_tree_view_row_activated(list, row.get(), gtk_tree_view_get_column(list, 1));
    gtk_button_clicked(GTK_BUTTON(gtk_tree_view_column_get_button(gtk_tree_view_get_column(list, 1))));
    gtk_tree_view_column_set_fixed_width(gtk_tree_view_get_column(list, 1), 99);
    gtk_widget_activate(ComboEntry(widgets.LocationCombo));
    gtk_combo_box_set_active(GTK_COMBO_BOX(widgets.LocationCombo), 1);
    gtk_window_set_focus(GTK_WINDOW(main_window), ComboEntry(widgets.LocationCombo));
    gtk_window_set_focus(GTK_WINDOW(main_window), nullptr);
    for (GtkWidget* const item : widgets.MenuItem) {
        gtk_menu_item_select(GTK_MENU_ITEM(item));
        gtk_menu_item_deselect(GTK_MENU_ITEM(item));
    }
    DisplayFileStatus();
    DisplayFilterStatus();
    OpenChildTree(MainTree(), files.Path(), EXPAND_LAST_YES);
    DisplayFileList(files.Path());
    gtk_widget_queue_draw(main_window);
    Settle();
    EXPECT_EQ(home.Contents(".fennick"), "mark");
    g_object_unref(main_window);
}

TEST_F(Life, LateCommandsAreHarmless)
{
    files.Directory("a");
    Start();
    Visit("a");
    const MainW widgets = *pMainW;
    TerminateGlobalTable();
    for (const int slot : {TOOL_BACK, TOOL_UP, TOOL_FORWARD, TOOL_RESCAN, TOOL_HOME, TOOL_PROPERTY}) {
        g_signal_emit_by_name(widgets.ToolButton[static_cast<std::size_t>(slot)], "clicked");
    }
    for (const int entry : {MENU_SELECT_ALL, MENU_RESCAN_DIRECTORY}) {
        gtk_menu_item_activate(GTK_MENU_ITEM(widgets.MenuItem[static_cast<std::size_t>(entry)]));
    }
    gtk_menu_item_activate(
        GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(gtk_widget_get_parent(widgets.MenuItem[MENU_OPEN])))));
    Settle();
}

TEST_F(Life, CtrlWClosesButNotWhileTheEntryWantsTheKey)
{
    Start();
    gtk_widget_grab_focus(Entry());
    RunUntilQuit([this] {
        SendKey(pMainW->MainWindow, GDK_KEY_a, GDK_CONTROL_MASK);
        EXPECT_NE(pGTable, nullptr);
        ReleaseEntryFocus(pMainW->MainWindow);
        SendKey(pMainW->MainWindow, GDK_KEY_w, GDK_CONTROL_MASK);
    });
    EXPECT_EQ(pGTable, nullptr);
    EXPECT_NE(home.Contents(".fennick").find("[Main Window]"), std::string::npos);
}

TEST_F(Life, NothingIsWrittenBeforeTheSettingsWereRead)
{
    Settings("kept");
    TerminateGlobalTable();
    EXPECT_EQ(home.Contents(".fennick"), "kept");
}

class StartUp : public WindowTest, public ::testing::WithParamInterface<NamedText> {};

TEST_P(StartUp, FromBadSettingsGivesAUsableWindow)
{
    files.Directory("a");
    files.File("f");
    SCOPED_TRACE(GetParam().text.substr(0, GetParam().text.find('\n')));
    Settings(GetParam().text);
    Start();
    ExpectConsistent();
    int x = 0;
    int y = 0;
    GdkWindow* const window = gtk_widget_get_window(pMainW->MainWindow);
    gdk_window_get_root_origin(window, &x, &y);
    const int width = gdk_window_get_width(window);
    const int height = gdk_window_get_height(window);
    int screen_width = 0;
    int screen_height = 0;
    gdk_window_get_geometry(gdk_get_default_root_window(), nullptr, nullptr, &screen_width, &screen_height);
    EXPECT_GE(x, 0);
    EXPECT_GE(y, 0);
    EXPECT_LT(x, screen_width - 20);
    EXPECT_LT(y, screen_height - 20);
    EXPECT_GE(width, 200);
    EXPECT_GE(height, 200);
    EXPECT_LE(width, screen_width);
    EXPECT_LE(height, screen_height);
    EXPECT_GE(pGTable->ColumnCount, 1);
    for (const int column_width : ListColumnWidths()) {
        EXPECT_GE(column_width, 10);
    }
    Press(GDK_KEY_Tab);
    EXPECT_EQ(SelectedNames(), Names{"a"});
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    ClickTitle(1);
    ExpectConsistent();
    Close();
    EXPECT_NE(home.Contents(".fennick").find("\nFileVersion=1.00\n"), std::string::npos);
}

std::string Geometry(const char* number)
{
    std::string text = "[Main Window]\n";
    for (const char* const key : {"WindowX", "WindowY", "WindowWidth", "WindowHeight", "PandPosition"}) {
        text += std::string(key) + "=" + number + "\n";
    }
    text += "[Detailed View]\nSortColumn=" + std::string(number) + "\nSortType=" + number +
            "\nColumnCount=3\nColumnPosition0=0\nColumnPosition1=1\nColumnPosition2=8\n";
    for (const char* const key : {"ColumnSize0", "ColumnSize1", "ColumnSize2"}) {
        text += std::string(key) + "=" + number + "\n";
    }
    return text;
}

std::string RandomBytes()
{
    SeededRandom random;
    std::string bytes = random.Trace() + "\n[Main Window]\nWindowX=";
    for (int i = 0; i < 20'000; ++i) {
        bytes += static_cast<char>(random.Below(255) + 1);
    }
    return bytes;
}

INSTANTIATE_TEST_SUITE_P(
    All, StartUp,
    ::testing::Values(NamedText{"RandomBytes", RandomBytes()}, NamedText{"Huge", Geometry("99999999999999999999")},
                      NamedText{"Large", Geometry("30000")}, NamedText{"Negative", Geometry("-2147483648")},
                      NamedText{"Zero", Geometry("0")}, NamedText{"One", Geometry("1")},
                      NamedText{"Layout", "[Detailed View]\nColumnCount=11\nColumnPosition0=77\nSortColumn=-3\n"},
                      NamedText{"LongLines", "[Init]\nCurrentDir=" + std::string(3'000'000, 'x') + "\n"},
                      NamedText{"Nul", std::string("[Main Window]\nWindowX=\0 60\n", 27)}),
    NameOfText);

TEST_F(Life, TheWindowAndItsPanesCanBeMadeAsSmallAsTheyGo)
{
    for (int i = 0; i < 50; ++i) {
        files.Directory("a-directory-with-a-rather-long-name-" + std::to_string(i) + "/b");
    }
    Start();
    gtk_window_resize(Window(), 1, 1);
    EXPECT_TRUE(Await([this] { return gtk_widget_get_allocated_height(pMainW->MainWindow) < 400; }));
    for (const int position : {0, 1, 10, 30, 60, 10'000, 540, 500, 200}) {
        gtk_paned_set_position(GTK_PANED(pMainW->Paned), position);
        Settle();
    }
    ExpectConsistent();
}

/// What a person does next when a directory is no longer there.
class MovingWorld : public WindowTest {
protected:
    using Action = std::function<void()>;
    std::vector<std::pair<std::string, Action>> Actions()
    {
        std::vector<std::pair<std::string, Action>> actions = {
            {"rescan", [this] { ClickTool(TOOL_RESCAN); }},
            {"home", [this] { ClickTool(TOOL_HOME); }},
            {"back", [this] { ClickTool(TOOL_BACK); }},
            {"parent",
             [this] {
                 if (!ListRows().IsEmpty()) {
                     DoubleClickRow("..");
                 } else {
                     ClickNode(pGTable->RootDir);
                 }
             }},
            {"menu", [this] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_RESCAN_DIRECTORY])); }},
            {"location",
             [this] {
                 gtk_widget_grab_focus(Entry());
                 Press(GDK_KEY_Return);
             }},
        };
        if (IsToolSensitive(TOOL_UP)) {
            actions.push_back({"up", [this] { ClickTool(TOOL_UP); }});
        }
        for (const guint key : {GDK_KEY_Up, GDK_KEY_Home}) {
            actions.push_back({"key " + std::to_string(key), [this, key] { Press(key); }});
        }
        return actions;
    }
    /// Frees the focus from a path that leads nowhere.
    void ClearLocation()
    {
        gtk_entry_set_text(GTK_ENTRY(Entry()), "");
        ReleaseEntryFocus(pMainW->MainWindow);
        SetEntryBytes(Entry(), pGTable->CurrentDir);
    }
    /// Actions that need not leave a directory that is no longer there.
    void Harmless()
    {
        for (const guint key :
             {GDK_KEY_Right, GDK_KEY_Return, GDK_KEY_Tab, GDK_KEY_Return, GDK_KEY_Down, GDK_KEY_Tab}) {
            Press(key);
            ExpectConsistent(DISK_CHANGED);
        }
        ClickTitle(1);
        Press(GDK_KEY_a, GDK_CONTROL_MASK);
        UnselectAllListRows();
        Settle();
    }
};

TEST_F(MovingWorld, TheNextActionLeavesACurrentDirectoryThatIsGone)
{
    files.Directory("other");
    files.Directory("stay/go/below");
    Start();
    Visit("stay/go");
    for (const auto& [name, action] : Actions()) {
        SCOPED_TRACE(name);
        files.Directory("stay/go/below");
        files.File("stay/go/file");
        RescanTree(MainTree(), files.Path());
        Visit("other");
        Visit("stay/go");
        ASSERT_EQ(pGTable->CurrentDir, files.At("stay/go/"));
        ExpectConsistent();
        std::filesystem::remove_all(files.At("stay/go"));
        Harmless();
        action();
        Settle();
        EXPECT_TRUE(std::filesystem::is_directory(pGTable->CurrentDir)) << pGTable->CurrentDir;
        ExpectConsistent(DISK_CHANGED, LocationShown());
        // No row of one directory stands under the name of another.
        for (const std::string& row : ListNames()) {
            EXPECT_TRUE(std::filesystem::exists(pGTable->CurrentDir + row)) << row;
        }
        ClearLocation();
    }
}

TEST_F(MovingWorld, ARootThatIsGoneAndComesBack)
{
    files.Directory("root/a/b");
    Start(files.At("root"), "");
    Visit("a");
    for (const auto& [name, action] : Actions()) {
        SCOPED_TRACE(name);
        std::filesystem::remove_all(files.At("root"));
        files.File("root/file");
        std::filesystem::remove_all(files.At("root"));
        Harmless();
        if (name != "up" || IsToolSensitive(TOOL_UP)) {
            action();
        }
        Settle();
        EXPECT_TRUE(pGTable->CurrentDir.starts_with(pGTable->RootDir)) << pGTable->CurrentDir;
        ClearLocation();
        files.Directory("root/a/b");
        gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_RESCAN_DIRECTORY]));
        Settle();
        ExpectConsistent();
        Visit("a/b");
        EXPECT_EQ(pGTable->CurrentDir, files.At("root/a/b/"));
        ExpectConsistent();
    }
}

TEST_F(MovingWorld, ANodeThatVanishesBeforeItIsExpanded)
{
    files.Directory("a/b/c");
    files.Directory("z");
    Start();
    std::filesystem::remove_all(files.At("a"));
    files.File("a", "no directory any more");
    const TreePath a(gtk_tree_path_new_from_indices(0, 0, -1));
    const TreePath b(gtk_tree_path_new_from_indices(0, 0, 0, -1));
    gtk_tree_view_expand_row(MainTree(), a.get(), FALSE);
    gtk_tree_view_expand_row(MainTree(), b.get(), TRUE);
    Settle();
    // The nodes are still there; going to one must not show what another directory holds.
    Click(MainTree(), b.get());
    ExpectConsistent(DISK_CHANGED);
    EXPECT_EQ(ListNames(), Names()) << "rows of a directory that is not there";
    gtk_tree_view_collapse_row(MainTree(), a.get());
    Settle();
    ExpectConsistent(DISK_CHANGED);
    ClickTool(TOOL_HOME);
    ClickTool(TOOL_RESCAN);
    EXPECT_EQ(ChildNames(files.Path()), Names{"z"});
    ExpectConsistent();
}

TEST_F(MovingWorld, WhatMayNoLongerBeReadShowsNothing)
{
    files.Directory("a/b/c");
    files.File("a/file");
    Start();
    Visit("a");
    const OrdinaryUser user({&files, &home});
    files.SetMode("a", 0);
    Harmless();
    Visit("a");
    ClickTool(TOOL_RESCAN);
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    EXPECT_EQ(ListNames(), Names{".."});
    EXPECT_FALSE(HasExpander(files.At("a")));
    ExpectConsistent();
    ClickTool(TOOL_UP);
    ExpectConsistent();
    files.SetMode("", 0);
    for (const ToolSlot slot : {TOOL_RESCAN, TOOL_HOME, TOOL_BACK}) {
        ClickTool(slot);
        ExpectConsistent(DISK_CHANGED, LocationShown());
    }
    files.SetMode("", 0700);
    files.SetMode("a", 0700);
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_RESCAN_DIRECTORY]));
    Settle();
    ExpectConsistent();
    Visit("a/b");
    ExpectConsistent();
}

}  // namespace
