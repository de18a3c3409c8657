// Dragging with a real pointer: what is carried, where it goes, and what the tree does meanwhile.

#include <atomic>
#include <thread>
#include <utility>

#include "acts.h"
#include "commands/fnkhelpmenu.h"
#include "panes/fnkdragdrop.h"

namespace {

class Drag : public WindowTest {
protected:
    void StartWithFiles()
    {
        Make({"from/a", "from/b b", "from/sub/c", "to/deep/"});
        Start();
        Visit("from/");
        Settle();
        drags = 0;
        for (GtkTreeView* const view : {MainTree(), MainList()}) {
            g_signal_connect(view, "drag-begin", G_CALLBACK(+[] { ++drags; }), nullptr);
            g_signal_connect(view, "drag-end", G_CALLBACK(+[] { --drags; }), nullptr);
        }
    }
    static inline int drags = 0;  ///< Under way.

    static GdkPoint OnScreen(GdkWindow* window, int x, int y)
    {
        GdkPoint spot = {};
        gdk_window_get_root_coords(window, x, y, &spot.x, &spot.y);
        return spot;
    }
    static GdkPoint Middle(GtkTreeView* view, const TreePath& path)
    {
        GdkRectangle area;
        GtkTreeViewColumn* const column = gtk_tree_view_get_column(view, view == MainList() ? 1 : 0);
        gtk_tree_view_get_cell_area(view, path.get(), column, &area);
        return OnScreen(gtk_tree_view_get_bin_window(view), area.x + 30, area.y + area.height / 2);
    }
    GdkPoint Row(const std::string& name) const { return Middle(MainList(), RowPath(RowOf(name))); }
    GdkPoint Node(const std::string& path) const { return Middle(MainTree(), NodePath(files.At(path))); }
    /// Near the bottom of the tree, where it scrolls.
    static GdkPoint TreeEdge()
    {
        GtkWidget* const tree = GTK_WIDGET(MainTree());
        return OnScreen(gtk_widget_get_window(tree), 60, gtk_widget_get_allocated_height(tree) - 8);
    }
    /// The directory that is framed as the target.
    static std::string Target()
    {
        GtkTreePath* framed = nullptr;
        gtk_tree_view_get_drag_dest_row(MainTree(), &framed, nullptr);
        const TreePath path(framed);
        GtkTreeIter node;
        const bool is_there = path && gtk_tree_model_get_iter(gtk_tree_view_get_model(MainTree()), &node, framed);
        return is_there ? GetNodePath(MainTree(), node) : "";
    }
    static inline std::atomic<bool> is_over = false;
    /// Lets a real pointer do something, and the window follow.
    static void Pointer(const std::string& actions)
    {
        is_over = false;
        std::thread pointer([&actions] {
            EXPECT_EQ(std::system(("xdotool " + actions).c_str()), 0);
            is_over = true;
            g_main_context_wakeup(nullptr);
        });
        EXPECT_TRUE(Await([] { return is_over.load(); }));
        pointer.join();
        Settle();
    }
    static std::string MoveTo(GdkPoint spot)
    {
        return "mousemove " + std::to_string(spot.x) + " " + std::to_string(spot.y) + " sleep 0.05 ";
    }
    /// Presses, moves in small steps and stays there.
    static void DragFromTo(GdkPoint from, GdkPoint to, int button = 1)
    {
        std::string actions = MoveTo(from) + "mousedown " + std::to_string(button) + " sleep 0.05 ";
        for (int step = 1; step <= 8; ++step) {
            actions += MoveTo({from.x + (to.x - from.x) * step / 8, from.y + (to.y - from.y) * step / 8});
        }
        Pointer(actions + MoveTo({to.x + 1, to.y}));
    }
    static void Release(int button = 1) { Pointer("mouseup " + std::to_string(button)); }
    /// Presses a key for the popup that a drop opens.
    static void Choosing(guint key, const std::function<void()>& drop)
    {
        static guint pending;
        pending = key;
        const auto press = [](gpointer) -> gboolean {
            if (GtkWidget* const menu = gtk_grab_get_current(); GTK_IS_MENU(menu)) {
                SendKey(gtk_widget_get_toplevel(menu), std::exchange(pending, 0));
            }
            return pending != 0;
        };
        g_timeout_add(20, press, nullptr);
        drop();
        EXPECT_TRUE(Await([] { return pending == 0 && gtk_grab_get_current() == nullptr; }));
    }
    /// Drags, chooses and arrives in the directory.
    void Carry(GdkPoint from, GdkPoint to, guint key, int button, const std::string& directory) const
    {
        DragFromTo(from, to, button);
        Choosing(key, [button] { Release(button); });
        EXPECT_TRUE(Await([&] { return pGTable->CurrentDir == files.At(directory); }));
        ExpectAt(directory, "");
    }
    /// Lets go where a drop leads to nothing.
    void ExpectNoDrop() const
    {
        DuringDialogs([] { Release(); }, {});
        EXPECT_TRUE(Await([] { return drags == 0; }));
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
        EXPECT_EQ(Joined(files.Names("from")) + " " + Joined(files.Names("to")), "a,b b,sub deep");
    }
};

TEST_F(Drag, AllSelectedRowsGoToTheDirectoryUnderThePointer)
{
    StartWithFiles();
    Make({"to/sub/", "to/b b"});
    SetExpanded(files.At("from/"), true);
    SelectNames({"a", "b b", "sub"});
    DragFromTo(Row("b b"), Node("to/"));
    EXPECT_EQ(Joined(SelectedNames()), "sub,a,b b") << "the press must not select one row alone";
    EXPECT_EQ(Target(), files.At("to/"));
    ExpectAt("from/");
    DuringDialogs([] { Choosing(GDK_KEY_c, [] { Release(); }); }, {PressButton("Yes")});
    EXPECT_TRUE(Await([this] { return pGTable->CurrentDir == files.At("to/"); }));
    EXPECT_EQ(Joined(files.Names("to")), "a,b b,deep,sub");
    ExpectAt("to/", "");
    // What is moved leaves the tree. The other button drags what is under it.
    Steps("visit from; select a");
    Carry(Row("sub"), Node("to/deep/"), GDK_KEY_m, 3, "to/deep/");
    EXPECT_FALSE(IsInTree(files.At("from/sub")));
    // What is dropped into the directory shown is shown.
    Choosing(GDK_KEY_m, [this] { OnFilesDropped({files.At("from/a")}, pGTable->CurrentDir)(); });
    EXPECT_EQ(Joined(ListNames()), "..,sub,a");
    // So do directories of the tree move.
    Steps("node to");
    Carry(Node("from/"), Node("to/deep/"), GDK_KEY_m, 3, "to/deep/");
    EXPECT_EQ(Joined(files.Names()), "to");
}

TEST_F(Drag, NothingHappensWithoutADragOrAChoiceOrInTheSameDirectory)
{
    StartWithFiles();
    // A press on one of several selected rows is a click once it is let go.
    SelectNames({"a", "b b", "sub"});
    Pointer(MoveTo(Row("b b")) + "mousedown 1 sleep 0.05");
    EXPECT_EQ(SelectedNames().size(), 3U);
    Release();
    EXPECT_TRUE(Await([] { return Joined(SelectedNames()) == "b b"; }));
    Steps("node to = to/; visit from; select a");
    Pointer("keydown ctrl");
    DragFromTo(Row("a"), Row("sub"));
    EXPECT_EQ(drags, 1);
    Pointer("keyup ctrl");
    ExpectNoDrop();
    DragFromTo(Row("a"), {TreeEdge().x, TreeEdge().y - 40});  // Below the last node.
    ExpectNoDrop();
    const GdkPoint node = Node("to/");
    DragFromTo(node, {node.x + 40, node.y});
    ExpectNoDrop();
    Steps("node from = from/");
    // As the first press of a double click it opens.
    SelectNames({"a", "sub"});
    Pointer(MoveTo(Row("sub")) + "click --repeat 2 --delay 60 1");
    EXPECT_TRUE(Await([this] { return pGTable->CurrentDir == files.At("from/sub/"); }));
}

TEST_F(Drag, TheLocationOpensWhatIsDroppedOnIt)
{
    StartWithFiles();
    GdkPoint entry = {};
    gtk_widget_translate_coordinates(Entry(), pMainW->MainWindow, 250, 15, &entry.x, &entry.y);
    entry = OnScreen(gtk_widget_get_window(pMainW->MainWindow), entry.x, entry.y);
    for (const auto& [row, directory] : {std::pair("b b", "from/"), {"sub", "from/sub/"}}) {
        DragFromTo(Row(row), entry);
        Release();
        EXPECT_TRUE(Await([&, shown = directory] { return drags == 0 && pGTable->CurrentDir == files.At(shown); }));
        ExpectAt(directory);
    }
}

TEST_F(Drag, ARestingPointerExpandsAndTheEdgesScroll)
{
    MakeMany(60, "many/d", "/x/");
    Make({"plain/"});
    StartWithFiles();
    SelectNames({"a"});
    DragFromTo(Row("a"), Node("many/"));
    EXPECT_NE(pGTable->ExpandTimer, 0U);
    Pointer(MoveTo(Node("plain/")));
    EXPECT_TRUE(Await([] { return pGTable->ExpandTimer == 0; }));
    EXPECT_FALSE(IsExpanded(files.At("many/")));
    Pointer(MoveTo(Node("many/")));
    EXPECT_TRUE(Await([this] { return IsExpanded(files.At("many/")); }));
    const TreePath first = GetFirstVisiblePath(MainTree());
    Pointer(MoveTo(TreeEdge()));
    EXPECT_TRUE(Await([&first] {
        const TreePath now = GetFirstVisiblePath(MainTree());
        return gtk_tree_path_compare(now.get(), first.get()) > 0;
    }));
    EXPECT_NEAR(Middle(MainTree(), NodePath(Target())).y, TreeEdge().y, 15);
    // Leaving the tree stops it all.
    Pointer(MoveTo(Row("b b")));
    EXPECT_TRUE(Await([] { return pGTable->ScrollTimer == 0 && pGTable->ExpandTimer == 0; }));
    EXPECT_EQ(Target(), "");
    ExpectNoDrop();
    ExpectAt("from/");
    // Another program may take what was dragged some time later.
    files.Remove("from/a");
    EXPECT_TRUE(Await([] { return Joined(ListNames()) == "..,sub,b b"; }));
}

TEST_F(Drag, NoneBeginsWithoutTheRowAndTheButtonOfThePressOrEndsUnderADialog)
{
    Make({"from/out -> /", "to/deep/v", "to/deep/w", "to/deep/x", "to/deep/y"});
    StartWithFiles();
    const GdkPoint pressed = Row("out");
    const std::string move = MoveTo({pressed.x + 40, pressed.y}) + MoveTo({pressed.x + 80, pressed.y});
    // A dialog takes the release.
    DuringDialogs([&] { Pointer(MoveTo(pressed) + "click --repeat 2 --delay 60 1"); }, {[](GtkWidget* box) {
                      EXPECT_TRUE(Await([] { return is_over.load(); }));
                      PressButton("OK")(box);
                  }});
    Pointer(move);
    EXPECT_EQ(drags, 0);
    Pointer("click 1");
    // Another row comes under the pointer.
    Pointer(MoveTo(pressed) + "mousedown 3 sleep 0.05");
    Visit("to/deep/");
    Settle();
    Pointer(move);
    EXPECT_EQ(drags, 0);
    Release(3);
    ExpectAt("to/deep/", "");
    // A dialog is up by the time the files of a drop come.
    Steps("visit from; select a");
    static bool is_carried_out = false;
    OnFilesDropped = [](const std::vector<std::string>&, const std::string&) -> std::function<void()> {
        is_carried_out = true;
        return nullptr;
    };
    static const auto open = [](gpointer) -> gboolean { return CreateAbortDlg(), G_SOURCE_REMOVE; };
    const auto open_dialog = +[] { g_idle_add_full(G_PRIORITY_HIGH, open, nullptr, nullptr); };
    g_signal_connect(MainList(), "drag-data-get", G_CALLBACK(open_dialog), nullptr);
    DragFromTo(Row("a"), Node("to/"));
    DuringDialogs([] { Release(); }, {[](GtkWidget* dialog) {
                      Settle();
                      EXPECT_FALSE(is_carried_out);
                      SendKey(dialog, GDK_KEY_Return);
                  }});
}

}  // namespace
