// Dragging with a real pointer: what is carried, where it goes, and what the tree does meanwhile.

#include <gdk/gdkkeysyms.h>
#include <glib.h>

#include "panes/fnkdragdrop.h"
#include "commands/fnkhelpmenu.h"
#include "windowtest.h"

namespace {

/// A place on the screen.
struct Spot {
    int x;
    int y;
};

class Drag : public WindowTest {
protected:
    void StartWithFiles()
    {
        files.File("from/a", "a");
        files.File("from/b b", "b");
        files.File("from/sub/c", "c");
        files.Directory("to/deep");
        Start();
        Visit("from/");
        Settle();
    }

    static Spot Middle(GtkTreeView* view, GtkTreePath* path)
    {
        GdkRectangle area;
        gtk_tree_view_get_cell_area(view, path, gtk_tree_view_get_column(view, view == MainList() ? 1 : 0), &area);
        Spot spot = {};
        gdk_window_get_root_coords(gtk_tree_view_get_bin_window(view), area.x + 30, area.y + area.height / 2, &spot.x,
                                   &spot.y);
        return spot;
    }
    Spot Row(const std::string& name) const
    {
        const TreePath path(gtk_tree_path_new_from_indices(static_cast<int>(RowOf(name)), -1));
        return Middle(MainList(), path.get());
    }
    Spot Node(const std::string& path) const { return Middle(MainTree(), NodePath(path).get()); }

    /// The path of the node at coordinates of the tree.
    static std::string NodeAtPointer(int x, int y)
    {
        GtkTreePath* path = nullptr;
        gtk_tree_view_convert_widget_to_bin_window_coords(MainTree(), x, y, &x, &y);
        Require(gtk_tree_view_get_path_at_pos(MainTree(), x, y, &path, nullptr, nullptr, nullptr), "a node");
        const TreePath owner(path);
        GtkTreeIter node;
        gtk_tree_model_get_iter(gtk_tree_view_get_model(MainTree()), &node, path);
        return GetNodePath(MainTree(), node);
    }

    /// Lets a real pointer do something, which may take a while; the id of the process.
    static GPid Spawn(const std::string& actions)
    {
        GPid pid = 0;
        const std::string command = "xdotool " + actions;
        char** arguments = nullptr;
        Require(g_shell_parse_argv(command.c_str(), nullptr, &arguments, nullptr), command);
        constexpr auto kFlags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
        Require(g_spawn_async(nullptr, arguments, nullptr, kFlags, nullptr, nullptr, &pid, nullptr), command);
        g_strfreev(arguments);
        return pid;
    }
    /// The same, and lets the window follow.
    static void Pointer(const std::string& actions)
    {
        static bool is_over;
        is_over = false;
        const auto finish = [](GPid child, int, gpointer) {
            g_spawn_close_pid(child);
            is_over = true;
        };
        g_child_watch_add(Spawn(actions), finish, nullptr);
        EXPECT_TRUE(Await([] { return is_over; }));
        Settle();
    }
    static bool IsButtonDown()
    {
        GdkDevice* const pointer = gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default()));
        GdkModifierType state = {};
        gdk_window_get_device_position(gdk_get_default_root_window(), pointer, nullptr, nullptr, &state);
        return (state & GDK_BUTTON1_MASK) != 0;
    }
    static std::string MoveTo(Spot spot)
    {
        return "mousemove " + std::to_string(spot.x) + " " + std::to_string(spot.y) + " sleep 0.05 ";
    }
    /// Presses, moves in small steps and stays there.
    static void DragFromTo(Spot from, Spot to, int button = 1)
    {
        std::string actions = MoveTo(from) + "mousedown " + std::to_string(button) + " sleep 0.05 ";
        for (int step = 1; step <= 8; ++step) {
            actions += MoveTo({from.x + (to.x - from.x) * step / 8, from.y + (to.y - from.y) * step / 8});
        }
        Pointer(actions + MoveTo({to.x + 1, to.y}));
    }
    static void Release(int button = 1) { Pointer("mouseup " + std::to_string(button)); }
    /// Lets go, and presses a key for the popup, which runs a loop of its own.
    static void ReleaseAndChoose(const char* key, int button = 1)
    {
        static std::string pressed;
        pressed = std::string("key ") + key;
        const auto press_key = [](gpointer) -> gboolean {
            if (!GTK_IS_MENU(gtk_grab_get_current())) {
                return G_SOURCE_CONTINUE;
            }
            g_spawn_close_pid(Spawn(pressed));
            pressed.clear();
            return G_SOURCE_REMOVE;
        };
        const guint watch = g_timeout_add(20, press_key, nullptr);
        Release(button);
        EXPECT_TRUE(Await([] { return pressed.empty() && gtk_grab_get_current() == nullptr; }));
        if (!pressed.empty()) {
            g_source_remove(watch);
        }
        Settle();
    }
};

TEST_F(Drag, AllSelectedRowsGoToTheDirectoryUnderThePointer)
{
    StartWithFiles();
    SelectNames({"a", "b b", "sub"});
    const std::string shown = pGTable->CurrentDir;
    DragFromTo(Row("b b"), Node(files.At("to/")));
    EXPECT_EQ(SelectedNames().size(), 3U) << "the press must not select one row alone";
    EXPECT_EQ(TreeSelected(), files.At("to/")) << "where it would go";
    EXPECT_EQ(pGTable->CurrentDir, shown) << "but it is not entered";
    ReleaseAndChoose("c");
    EXPECT_TRUE(Await([this] { return files.Names("to").size() == 4; }));
    EXPECT_EQ(files.Names("to"), (Names{"a", "b b", "deep", "sub"}));
    EXPECT_EQ(files.Names("from"), (Names{"a", "b b", "sub"}));
    EXPECT_TRUE(Await([this] { return pGTable->CurrentDir == files.At("to/"); }));
    ExpectConsistent();
}

TEST_F(Drag, ADirectoryOfTheTreeMovesIntoAnother)
{
    StartWithFiles();
    SetExpanded(files.At("to/"), true);
    ClickNode(files.At("from/"));
    DragFromTo(Node(files.At("from/")), Node(files.At("to/deep/")));
    ReleaseAndChoose("m");
    EXPECT_TRUE(Await([this] { return files.Names() == Names{"to"}; }));
    EXPECT_EQ(files.Names("to/deep/from"), (Names{"a", "b b", "sub"}));
    EXPECT_TRUE(Await([this] { return pGTable->CurrentDir == files.At("to/deep/"); }));
    ExpectConsistent();
}

TEST_F(Drag, NothingHappensWithoutAChoiceOrInTheSameDirectory)
{
    StartWithFiles();
    SelectNames({"a"});
    DragFromTo(Row("a"), Node(files.At("to/")));
    ReleaseAndChoose("Escape");
    DragFromTo(Row("a"), Row("sub"));
    Release();
    EXPECT_TRUE(Await([] { return pGTable->TreeSelectSignal != 0; }));
    EXPECT_EQ(gtk_grab_get_current(), nullptr) << "dropped where it came from: no question";
    EXPECT_EQ(files.Names("from"), (Names{"a", "b b", "sub"}));
    EXPECT_EQ(files.Names("to"), Names{"deep"});
    // Choosing by hand enters directories again.
    ClickNode(files.At("to/"));
    EXPECT_EQ(pGTable->CurrentDir, files.At("to/"));
    ExpectConsistent();
}

TEST_F(Drag, APressOnOneOfSeveralIsAClickWhenNoDragFollows)
{
    StartWithFiles();
    SelectNames({"a", "b b", "sub"});
    Pointer(MoveTo(Row("b b")) + "mousedown 1 sleep 0.05");
    EXPECT_EQ(SelectedNames().size(), 3U);
    Release();
    EXPECT_TRUE(Await([this] { return SelectedNames() == Names{"b b"}; }));
    // And as the first of a double click it opens.
    SelectNames({"a", "sub"});
    Pointer(MoveTo(Row("sub")) + "click --repeat 2 --delay 60 1");
    EXPECT_TRUE(Await([this] { return pGTable->CurrentDir == files.At("from/sub/"); }));
}

TEST_F(Drag, ARestingPointerExpandsAndTheEdgesScroll)
{
    for (int i = 0; i < 60; ++i) {
        files.Directory("many/d" + std::to_string(100 + i) + "/x");
    }
    StartWithFiles();
    SelectNames({"a"});
    DragFromTo(Row("a"), Node(files.At("many/")));
    EXPECT_NE(pGTable->ExpandTimer, 0U);
    EXPECT_TRUE(Await([this] { return IsExpanded(files.At("many/")); }));
    EXPECT_EQ(pGTable->ExpandTimer, 0U);
    // Near the bottom it scrolls, row by row.
    Spot bottom = {};
    GtkWidget* const tree = GTK_WIDGET(MainTree());
    gdk_window_get_root_coords(gtk_widget_get_window(tree), 60, gtk_widget_get_allocated_height(tree) - 8, &bottom.x,
                               &bottom.y);
    Pointer(MoveTo(bottom));
    const TreePath first = GetFirstVisiblePath(MainTree());
    EXPECT_NE(pGTable->ScrollTimer, 0U);
    EXPECT_TRUE(Await([&first] {
        const TreePath now = GetFirstVisiblePath(MainTree());
        return gtk_tree_path_compare(now.get(), first.get()) > 0;
    }));
    EXPECT_EQ(TreeSelected(), NodeAtPointer(60, gtk_widget_get_allocated_height(tree) - 8)) << "where it would go now";
    // Leaving the tree stops it all.
    Pointer(MoveTo(Row("b b")));
    EXPECT_TRUE(Await([] { return pGTable->ScrollTimer == 0 && pGTable->ExpandTimer == 0; }));
    Release();
    EXPECT_TRUE(Await([] { return pGTable->TreeSelectSignal != 0; }));
    EXPECT_EQ(pGTable->CurrentDir, files.At("from/"));
}

/// The window is closed while something is dragged over it; with true, near the edge of the tree.
class DragAtTheEnd : public Drag, public ::testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(Each, DragAtTheEnd, ::testing::Bool(),
                         [](const auto& near_edge) { return near_edge.param ? "Scrolling" : "Expanding"; });

TEST_P(DragAtTheEnd, TheTimerFindsNothingToDo)
{
    for (int i = 0; i < 60; ++i) {
        files.Directory("from/sub/d" + std::to_string(100 + i) + "/x");
    }
    StartWithFiles();
    const bool near_edge = GetParam();
    SetExpanded(files.At("from/sub/"), near_edge);
    Settle();
    Spot spot = Node(files.At("from/sub/"));
    if (near_edge) {
        GtkWidget* const tree = GTK_WIDGET(MainTree());
        const int y = gtk_widget_get_allocated_height(tree) - 8;
        gdk_window_get_root_coords(gtk_widget_get_window(tree), 60, y, &spot.x, &spot.y);
    }
    SelectNames({"a"});
    DragFromTo(Row("a"), spot);
    const unsigned timer = near_edge ? pGTable->ScrollTimer : pGTable->ExpandTimer;
    ASSERT_NE(timer, 0U);
    gboolean stays = TRUE;
    g_signal_emit_by_name(pMainW->MainWindow, "delete-event", nullptr, &stays);
    ASSERT_EQ(pGTable, nullptr);
    EXPECT_TRUE(Await([timer] { return g_main_context_find_source_by_id(nullptr, timer) == nullptr; }));
    Release();
}

TEST_F(Drag, TheOtherButtonDragsWhatIsUnderIt)
{
    StartWithFiles();
    SelectNames({"sub"});
    DragFromTo(Row("a"), Node(files.At("to/")), 3);
    EXPECT_EQ(SelectedNames(), Names{"a"});
    ReleaseAndChoose("m", 3);
    EXPECT_TRUE(Await([this] { return files.Names("to") == Names{"a", "deep"}; }));
}

TEST_F(Drag, NoneBeginsAfterADialogTookTheRelease)
{
    files.Link("from/out", "/");
    StartWithFiles();
    const Spot pressed = Row("out");
    DuringDialogs([&] { Pointer(MoveTo(pressed) + "click --repeat 2 --delay 60 1"); }, {[&](GtkWidget* box) {
                      EXPECT_TRUE(Await([] { return !IsButtonDown(); }));
                      Settle();
                      gtk_button_clicked(GTK_BUTTON(FindByText(box, "OK")));
                  }});
    Pointer(MoveTo({pressed.x + 40, pressed.y}) + MoveTo({pressed.x + 80, pressed.y}));
    EXPECT_NE(pGTable->TreeSelectSignal, 0U) << "a drag is under way";
    Pointer("click 1");
}

TEST_F(Drag, ADropOfWhichTheFilesCameTooLateIsRefused)
{
    StartWithFiles();
    SelectNames({"a"});
    static bool is_carried_out = false;
    OnFilesDropped = [](const std::vector<std::string>&, const std::string&) {
        is_carried_out = true;
        return 1;
    };
    const auto open_dialog = [](gpointer) -> gboolean {
        CreateAbortDlg();
        return G_SOURCE_REMOVE;
    };
    g_signal_connect(MainList(), "drag-data-get",
                     G_CALLBACK(+[](GtkWidget*, GdkDragContext*, GtkSelectionData*, guint, guint, gpointer open) {
                         g_idle_add_full(G_PRIORITY_HIGH, reinterpret_cast<GSourceFunc>(open), nullptr, nullptr);
                     }),
                     reinterpret_cast<gpointer>(+open_dialog));
    DragFromTo(Row("a"), Node(files.At("to/")));
    DuringDialogs([] { Release(); }, {[](GtkWidget* dialog) {
                      Settle();
                      EXPECT_FALSE(is_carried_out) << "while a dialog is up";
                      SendKey(dialog, GDK_KEY_Return);
                  }});
}

TEST_F(Drag, OneThatCannotBeginLeavesTheTreeAsItWas)
{
    StartWithFiles();
    // What another program would do; the toolkit does not survive closing a second display.
    GdkDisplay* const other = gdk_display_open(gdk_display_get_name(gdk_display_get_default()));
    GtkWidget* const holder = gtk_invisible_new_for_screen(gdk_display_get_default_screen(other));
    gtk_widget_show(holder);
    GdkSeat* const seat = gdk_display_get_default_seat(other);
    ASSERT_EQ(gdk_seat_grab(seat, gtk_widget_get_window(holder), GDK_SEAT_CAPABILITY_ALL, TRUE, nullptr, nullptr,
                            nullptr, nullptr),
              GDK_GRAB_SUCCESS);
    const TreePath row(gtk_tree_path_new_from_indices(static_cast<int>(RowOf("a")), -1));
    GdkRectangle area;
    gtk_tree_view_get_cell_area(MainList(), row.get(), gtk_tree_view_get_column(MainList(), 1), &area);
    GdkWindow* const rows = gtk_tree_view_get_bin_window(MainList());
    SendButton(rows, GDK_BUTTON_PRESS, area.x + 30, area.y + 5);
    const Event motion = NewPointerEvent(rows, GDK_MOTION_NOTIFY);
    motion->motion.x = area.x + 60;
    motion->motion.y = area.y + 5;
    motion->motion.state = GDK_BUTTON1_MASK;
    gtk_main_do_event(motion.get());
    Settle();
    EXPECT_NE(pGTable->TreeSelectSignal, 0U);
    gdk_seat_ungrab(seat);
    gtk_widget_destroy(holder);
    Visit("to/");
    ExpectConsistent();
}

TEST_F(Drag, DoesNotBeginOnARowThatHasChangedUnderThePress)
{
    StartWithFiles();
    for (const char* const name : {"v", "w", "x", "y", "z"}) {
        files.File(std::string("to/deep/") + name);
    }
    const Spot pressed = Row("b b");
    Pointer(MoveTo(pressed) + "mousedown 3 sleep 0.05");
    Visit("to/deep/");
    Settle();
    Pointer(MoveTo({pressed.x + 40, pressed.y}) + MoveTo({pressed.x + 80, pressed.y}));
    EXPECT_EQ(SelectedNames(), Names());
    EXPECT_NE(pGTable->TreeSelectSignal, 0U) << "a drag is under way";
    Release(3);
    ExpectConsistent();
}

}  // namespace
