// Starting from whatever is there, a file system that changes under the window, and the end.

#include <filesystem>

#include "app/fnktable-life.h"
#include "windowtest.h"

namespace {

class Life : public WindowTest {
protected:
    std::string Stored() const { return home.Contents(".fennick"); }
};

TEST_F(Life, ClosingStoresTheSettingsOnceAndLateEventsAreHarmless)
{
    Make({"a/b/", "f"});
    Settings("kept");
    TerminateGlobalTable();
    EXPECT_EQ(Stored(), "kept") << "nothing was read yet";
    Settings("[Main Window]\nWindowX=120\nWindowY=130\nWindowWidth=700\nWindowHeight=500\nPandPosition=222\n");
    Start();
    EXPECT_EQ(gtk_paned_get_position(GTK_PANED(pMainW->Paned)), 222);
    Steps("visit a; up");
    gtk_window_resize(Window(), 720, 510);
    gtk_paned_set_position(GTK_PANED(pMainW->Paned), 240);
    ASSERT_TRUE(Await([] { return gtk_widget_get_allocated_width(pMainW->MainWindow) == 720; }));

    GtkWidget* const window = pMainW->MainWindow;
    const MainW widgets = *pMainW;
    // Ends as the window manager's close does, but keeps the window for late events.
    gboolean stays = TRUE;
    g_signal_emit_by_name(window, "delete-event", nullptr, &stays);
    EXPECT_FALSE(stays);
    for (const char* const line : {"\nWindowX=120\n", "\nWindowY=130\n", "\nWindowWidth=720\n", "\nWindowHeight=510\n",
                                   "\nPandPosition=240\n", "\nHistoryCount=2\n"}) {
        EXPECT_NE(Stored().find(line), std::string::npos) << line << Stored();
    }
    Settings("mark");
    TerminateGlobalTable();
    for (const guint key : {GDK_KEY_Tab, GDK_KEY_Down, GDK_KEY_F3}) {
        SendKey(window, key);
    }
    gtk_tree_view_collapse_all(GTK_TREE_VIEW(widgets.DirTree));
    gtk_tree_view_expand_all(GTK_TREE_VIEW(widgets.DirTree));
    GtkTreeView* const list = GTK_TREE_VIEW(widgets.FileList);
    gtk_tree_selection_select_all(gtk_tree_view_get_selection(list));
    gtk_tree_view_row_activated(list, RowPath(1).get(), gtk_tree_view_get_column(list, 1));
    gtk_button_clicked(GTK_BUTTON(gtk_tree_view_column_get_button(gtk_tree_view_get_column(list, 1))));
    gtk_widget_activate(ComboEntry(widgets.LocationCombo));
    for (GtkWidget* const item : widgets.MenuItem) {
        gtk_menu_item_select(GTK_MENU_ITEM(item));
        gtk_menu_item_deselect(GTK_MENU_ITEM(item));
        gtk_menu_item_activate(GTK_MENU_ITEM(item));
    }
    for (const int tool : {TOOL_BACK, TOOL_UP, TOOL_FORWARD, TOOL_RESCAN, TOOL_HOME, TOOL_PROPERTY}) {
        g_signal_emit_by_name(widgets.ToolButton.at(static_cast<std::size_t>(tool)), "clicked");
    }
    gtk_widget_queue_draw(window);
    Settle();
    EXPECT_EQ(Stored(), "mark");
}

std::string Geometry(const std::string& number)
{
    std::string text;
    for (const char* const key :
         {"[Main Window]\nWindowX", "WindowY", "WindowWidth", "WindowHeight", "PandPosition",
          "[Detailed View]\nSortColumn", "SortType", "ColumnSize0", "ColumnSize1", "ColumnSize2"}) {
        text += key + ("=" + number) + "\n";
    }
    return text;
}

TEST_F(Life, BadSettingsGiveAUsableWindow)
{
    SeededRandom random;
    std::string bytes = "[Main Window]\nWindowX=";
    for (int i = 0; i < 20'000; ++i) {
        bytes += static_cast<char>(random.Below(255) + 1);
    }
    Make({"a/", "f"});
    for (const std::string& settings :
         {bytes, Geometry("99999999999999999999"), Geometry("30000"), Geometry("-2147483648"), Geometry("0"),
          Geometry("1"), std::string("[Main Window]\nWindowX=1250\nWindowY=1010\n"),
          std::string("[Detailed View]\nColumnCount=11\nColumnPosition0=77\nSortColumn=-3\n"),
          "[Init]\nCurrentDir=" + std::string(3'000'000, 'x') + "\n",
          std::string("[Main Window]\nWindowX=\0 60\n", 27)}) {
        SCOPED_TRACE(random.Trace() + "\n" + settings.substr(0, 60));
        Settings(settings);
        Start();
        GdkRectangle window = {};
        GdkRectangle screen = {};
        gdk_window_get_root_origin(gtk_widget_get_window(pMainW->MainWindow), &window.x, &window.y);
        gtk_window_get_size(Window(), &window.width, &window.height);
        gdk_window_get_geometry(gdk_get_default_root_window(), nullptr, nullptr, &screen.width, &screen.height);
        const bool is_asked_for = pGTable->WindowWidth < screen.width;  // Or else the window is centred.
        const GdkRectangle corner = {is_asked_for ? pGTable->WindowX : window.x,
                                     is_asked_for ? pGTable->WindowY : window.y, 40, 40};
        GdkRectangle shown;
        EXPECT_TRUE(gdk_rectangle_intersect(&corner, &screen, &shown) && gdk_rectangle_equal(&corner, &shown));
        EXPECT_TRUE(window.width >= 200 && window.width <= screen.width) << window.width;
        EXPECT_TRUE(window.height >= 200 && window.height <= screen.height) << window.height;
        EXPECT_LT(gtk_paned_get_position(GTK_PANED(pMainW->Paned)), window.width - 40);
        const std::vector<int> widths = ListColumnWidths();
        EXPECT_GE(widths.empty() ? 0 : *std::min_element(widths.begin(), widths.end()), 10);
        Steps("key Tab = . a; key Return; title 1 = a/");
        RunUntilQuit([] { SendKey(pMainW->MainWindow, GDK_KEY_w, GDK_CONTROL_MASK); });
        EXPECT_NE(Stored().find("\nFileVersion=1.00\n"), std::string::npos);
    }
}

TEST_F(Life, TheNextActionLeavesADirectoryThatIsGone)
{
    Make({"root/stay/go/below/", "root/other/"});
    Start(files.At("root"), "");
    for (const std::string gone : {"root/stay/go", "root"}) {
        for (const std::string act : {"rescan", "home", "back", "up", "reread", "double ..", "key Up", "key Home",
                                      "type root/stay/go; key Return"}) {
            SCOPED_TRACE(act + " without " + gone);
            Make({"root/stay/go/below/", "root/stay/go/file", "root/other/"});
            Steps("reread; visit root/other; visit root/stay/go = root/stay/go/; remove " + gone);
            for (const char* const key : {"Right", "Return", "Tab", "Return", "Down", "<Control>a", "Tab"}) {
                Press(key);
                ExpectConsistent(DISK_CHANGED);
            }
            ClickTitle(1);
            UnselectAllListRows();
            Steps(ListRows().IsEmpty() && act == "double .." ? "node root" : act);
            ExpectConsistent(DISK_CHANGED, LocationShown());
            if (gone != "root") {
                EXPECT_TRUE(std::filesystem::is_directory(pGTable->CurrentDir)) << pGTable->CurrentDir;
                // No row of one directory stands under the name of another.
                for (const std::string& row : ListNames()) {
                    EXPECT_TRUE(std::filesystem::exists(pGTable->CurrentDir + row)) << row;
                }
            }
            // A path that leads nowhere keeps the focus until it is cleared.
            gtk_entry_set_text(GTK_ENTRY(Entry()), "");
            ReleaseEntryFocus(pMainW->MainWindow);
            SetEntryBytes(Entry(), pGTable->CurrentDir);
        }
    }
}

TEST_F(Life, ANodeThatVanishesBeforeItIsExpandedIsEmpty)
{
    Make({"a/b/c/", "z/"});
    Start();
    Steps("remove a; make a; expand a; expand a/b; node a/b");
    ExpectConsistent(DISK_CHANGED);
    EXPECT_EQ(ListNames(), Names());
    Steps("collapse a");
    ExpectConsistent(DISK_CHANGED);
    Steps("home; rescan = .");
}

}  // namespace
