// Command lines, starting from whatever is there, a file system that changes under the window, and the end.

#include <filesystem>

#include "app/fnktable-life.h"
#include "app/fnktable-start.h"
#include "core/fnkutil.h"
#include "windowtest.h"

namespace {

class Life : public WindowTest {};

TEST_F(Life, ClosingStoresTheSettingsOnceAndLateEventsAreHarmless)
{
    Make({"a/b/", "f"});
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
    for (const char* const line :
         {"WindowX=120", "WindowY=130", "WindowWidth=720", "WindowHeight=510", "PandPosition=240", "HistoryCount=2"}) {
        EXPECT_NE(home.Contents(".fennick").find(line), std::string::npos) << line;
    }
    Settings("mark");
    TerminateGlobalTable();
    SendKey(window, GDK_KEY_Down);
    gtk_widget_activate(ComboEntry(widgets.LocationCombo));
    for (GtkWidget* const item : widgets.MenuItem) {
        gtk_menu_item_activate(GTK_MENU_ITEM(item));
    }
    gtk_widget_queue_draw(window);
    Settle();
    EXPECT_EQ(home.Contents(".fennick"), "mark");
}

TEST_F(Life, BadSettingsGiveAUsableWindow)
{
    Make({"a/", "f"});
    for (const std::string number : {"99999999999999999999", "30000", "-2147483648", "0", "77"}) {
        SCOPED_TRACE(number);
        std::string settings = "[Main Window]\n";
        for (const char* const key : {"WindowX", "WindowY", "WindowWidth", "WindowHeight", "PandPosition",
                                      "[Detailed View]\nSortColumn", "ColumnSize0", "ColumnPosition1"}) {
            settings += key + ("=" + number) + "\n";
        }
        Settings(settings);
        Start();
        GdkRectangle window = {};
        GdkRectangle screen = {};
        gdk_window_get_root_origin(gtk_widget_get_window(pMainW->MainWindow), &window.x, &window.y);
        gtk_window_get_size(Window(), &window.width, &window.height);
        gdk_window_get_geometry(gdk_get_default_root_window(), nullptr, nullptr, &screen.width, &screen.height);
        const bool is_asked_for = pGTable->WindowWidth < screen.width;  // Or else the window is centred.
        const int x = is_asked_for ? pGTable->WindowX : window.x;
        const int y = is_asked_for ? pGTable->WindowY : window.y;
        EXPECT_TRUE(x >= 0 && x <= screen.width - 40 && y >= 0 && y <= screen.height - 40) << x << "," << y;
        EXPECT_TRUE(window.width >= 200 && window.width <= screen.width) << window.width;
        EXPECT_TRUE(window.height >= 200 && window.height <= screen.height) << window.height;
        EXPECT_LT(gtk_paned_get_position(GTK_PANED(pMainW->Paned)), window.width - 40);
        EXPECT_GE(std::ranges::min(ListColumnWidths()), 10);
        Steps("key Tab = . a; key Return; title 1 = a/");
        RunUntilQuit([] { SendKey(pMainW->MainWindow, GDK_KEY_w, GDK_CONTROL_MASK); });
    }
}

TEST_F(Life, TheNextActionLeavesADirectoryThatIsGone)
{
    Make({"root/stay/go/below/", "root/other/"});
    Start(files.At("root"), "");
    for (const std::string act :
         {"rescan", "home", "back", "up", "reread", "double ..", "key Up", "type root/stay/go; key Return"}) {
        SCOPED_TRACE(act);
        Make({"root/stay/go/below/", "root/stay/go/file", "root/other/"});
        Steps("reread; visit root/other; visit root/stay/go = root/stay/go/; remove root/stay/go");
        for (const char* const key : {"Right", "Return", "Tab", "Return", "Down", "<Control>a", "Tab"}) {
            Press(key);
            ExpectConsistent(DISK_CHANGED);
        }
        ClickTitle(1);
        UnselectAllListRows();
        Steps(ListRows().IsEmpty() && act == "double .." ? "node root" : act);
        ExpectConsistent(DISK_CHANGED, LocationShown());
        EXPECT_TRUE(std::filesystem::is_directory(pGTable->CurrentDir)) << pGTable->CurrentDir;
        // No row of one directory stands under the name of another.
        for (const std::string& row : ListNames()) {
            EXPECT_TRUE(std::filesystem::exists(pGTable->CurrentDir + row)) << row;
        }
        // A path that leads nowhere keeps the focus until it is cleared.
        gtk_entry_set_text(GTK_ENTRY(Entry()), "");
        ReleaseEntryFocus(pMainW->MainWindow);
        SetEntryBytes(Entry(), pGTable->CurrentDir);
    }
}

using CommandLines = TableTest;

TEST_F(CommandLines, OnlyTheFirstArgumentIsAnOption)
{
    const std::string dir = files.Directory("dir");
    const std::string file = files.File("file");
    files.Link("link", "dir");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(files.Path());
    const std::tuple<std::vector<std::string>, std::string, std::string> cases[] = {
        {{}, home.Path(), ""},
        {{"--root", dir}, "/", dir},
        {{"--home", dir + "/", "x"}, dir + "/", files.At("x")},
        {{"--home", dir + "/missing", dir}, home.Path(), dir},
        {{"--home", file}, home.Path(), ""},
        {{"x", "--root", dir}, home.Path(), ""},
        {{"--home", "dir/.", "dir"}, dir + "/", dir},
        {{"--home", "link", "~/x"}, home.Path(), "~/x"}};
    for (auto [arguments, root, start] : cases) {
        arguments.insert(arguments.begin(), "fennick");
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        const CommandLine parsed = ParseCommandLine(static_cast<int>(argv.size()) - 1, argv.data());
        EXPECT_EQ(parsed.root, root) << testing::PrintToString(arguments);
        EXPECT_EQ(parsed.start, start) << testing::PrintToString(arguments);
    }
    std::filesystem::current_path(before);
}

TEST_F(CommandLines, StartsInsideTheRootOrAtIt)
{
    const std::string dir = files.Directory("root/dir");
    files.Link("root/link", "dir");
    files.Link("root/out", "..");
    const ScopedVariable variable("HOME", dir.c_str());
    const std::pair<std::string, std::string> cases[] = {
        {dir, dir + "/"},           {"", ""},         {files.At("root/link"), dir + "/"},
        {files.At("root/out"), ""}, {"~", dir + "/"}, {files.At("root//link/../dir/."), dir + "/"},
        {files.Path(), ""}};
    for (const auto& [start, expected] : cases) {
        table.StartDir.clear();
        SetStartDirectories({false, files.At("root/"), start});
        EXPECT_EQ(table.StartDir, expected) << start;
        EXPECT_EQ(table.RootDir, files.At("root/"));
    }
    table.LocationDirHistory = {"/a/", files.At("root/")};
    SeedHistories();
    EXPECT_EQ(table.LocationDirHistory, (History{files.At("root/"), "/a/"}));
    EXPECT_EQ(table.DirHistory, History{files.At("root/")});
    EXPECT_EQ(table.FilterHistory, History{"*"});
    table.DirHistory = {"/b/"};
    SeedHistories();
    EXPECT_EQ(table.DirHistory, History{"/b/"});
}

}  // namespace
