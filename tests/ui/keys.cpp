// Keys in both panes. Whether something is selected in the list decides which pane gets them.

#include <sstream>

#include "windowtest.h"

namespace {

/// Sorted, the rows are b, a, c, d, e.
class Keys : public WindowTest {
protected:
    Keys() { Make({"a", "c", "d", "e", "b/x", "b/y"}); }

    /// Presses each key in turn; after it, what is selected stands at so many rows from the top, and
    /// at the edge of the page that the key goes to.
    void ExpectPages(GtkTreeView* view, const std::vector<std::pair<const char*, int>>& steps)
    {
        for (const auto& [key, row] : steps) {
            SCOPED_TRACE(key);
            Press(key);
            GList* const selected = gtk_tree_selection_get_selected_rows(gtk_tree_view_get_selection(view), nullptr);
            ASSERT_EQ(g_list_length(selected), 1U);
            const TreePath path(static_cast<GtkTreePath*>(selected->data));
            g_list_free(selected);
            const int depth = gtk_tree_path_get_depth(path.get());
            const int now = gtk_tree_path_get_indices(path.get())[depth - 1] + depth - 1;
            EXPECT_NEAR(now, row, 2);
            EXPECT_EQ(GetRowVisibility(view, path.get()), ROW_VISIBLE);
            if (now > 1) {
                std::string(key) == "Page_Up" ? static_cast<void>(gtk_tree_path_prev(path.get()))
                                              : gtk_tree_path_next(path.get());
                EXPECT_NE(GetRowVisibility(view, path.get()), ROW_VISIBLE);
            }
            ExpectConsistent();
        }
    }
    static int Row() { return static_cast<int>(ListSelection().at(0)); }
};

TEST_F(Keys, MoveAndExtendTheSelection)
{
    Start();
    // Selected before, key, selected afterwards; "-" is nothing.
    std::istringstream cases(
        "c Up a      ce Up a            b Up b       bd Up b          c KP_Up a         ce <Shift>Up a,c,e "
        "c Down d    ac Down d          e Down e     ae Down e        c KP_Down d       bc <Shift>Up b,c "
        "de Home b   ce <Shift>Home b,a,c,e              c KP_Home b      d <Shift>Page_Up b,a,c,d "
        "ba End e    bc <Shift>End b,c,d,e               c KP_End e       c <Shift>Page_Down c,d,e "
        "e Page_Up b      c KP_Page_Up b      ac <Shift>Down a,c,d       c <Shift>KP_Down c,d "
        "b Page_Down e    c KP_Page_Down e    ae <Shift>Down a,e        ba Return b,a       c Left c    b Right b "
        "bc Tab -    c <Shift>ISO_Left_Tab -    - Tab b    - <Shift>ISO_Left_Tab b    - KP_Tab b ");
    for (std::string before, key, after; cases >> before >> key >> after;) {
        SCOPED_TRACE(before + " " + key);
        SelectNames({});
        for (const char name : before == "-" ? std::string() : before) {
            SelectListRows(RowOf({name}), RowOf({name}));
        }
        EXPECT_TRUE(Press(key.c_str()));
        ExpectAt("", after == "-" ? "" : after);
    }
    EXPECT_FALSE(Press("x")) << "a key that neither pane knows";
    // A directory opens, if it is selected alone. In one that is empty there is nothing to select.
    Steps("make b/empty/; select b; key Return = b/ empty; key KP_Enter = b/empty/ -; key Tab = b/empty/ -; visit .");
    // A drag has pointer and keyboard; a menu would get neither.
    SelectNames({"a"});
    Press(GDK_KEY_Down, GDK_BUTTON1_MASK);
    Press(GDK_KEY_f, GDK_BUTTON3_MASK | GDK_MOD1_MASK);
    ExpectAt("", "a");
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
}

TEST_F(Keys, PageThroughALongList)
{
    MakeMany(100, "file");
    MakeMany(100, "z/");
    Settings("[Setting]\nMixFileDir=yes\n");
    Start();
    SelectListRows(1, 1);
    Press("Page_Down");
    const int page = Row();  // The row that the edge of the page cut.
    EXPECT_GT(page, 3);
    ExpectPages(MainList(), {{"Page_Down", 2 * page + 2},
                             {"Page_Down", 3 * page + 4},
                             {"Page_Up", 2 * page + 4},
                             {"Page_Up", page + 3},
                             {"Page_Down", 2 * page + 3}});
    const int before = Row();
    Press("<Shift>Page_Down");
    EXPECT_EQ(Row(), before);
    EXPECT_NEAR(static_cast<int>(CountListSelection()), page + 2, 2);
    // ".." comes into view with the first entry, whatever key goes there.
    for (const auto& keys : {Names{"Home"}, {"Tab", "Tab"}, {"Return"}}) {
        Press("End");
        EXPECT_EQ(RowVisibilityOf(ListRows().Count() - 1), ROW_VISIBLE);
        ExpectAt("", "z");
        for (const std::string& key : keys) {
            Press(key.c_str());
        }
        EXPECT_EQ(Row(), 1);
        EXPECT_EQ(RowVisibilityOf(0), ROW_VISIBLE);
    }
    ExpectAt("z/", "100");
}

TEST_F(Keys, MoveThroughTheTree)
{
    Make({"k/l/m/", "k/n/", "p/q/", "r/"});
    Start();
    // Key, selected directory, which of b, k, k/l, p and r are expanded; "." is the root or none.
    std::istringstream steps(
        "Up . .        Left . .         Down b/ .          Right b/ .         Down k/ .       Right k/ k,       "
        "Right k/ k,   Down k/l/ k,     Return k/l/ k,k/l,    KP_Down k/l/m/ k,k/l,   KP_Down k/n/ k,k/l,    "
        "Down p/ k,k/l,    KP_Up k/n/ k,k/l,    Up k/l/m/ k,k/l,    Left k/l/ k,     KP_Left k/ .             "
        "Down p/ .     Up k/ .          KP_Right k/ k,    End r/ k,    Down r/ k,    KP_Home . k,    Page_Up . k,    Page_Down r/ k,         "
        "Page_Down r/ k,   Up p/ k,    Return p/ k,p,    KP_End r/ k,p,    Up p/q/ k,p,    KP_Page_Up . k,p,  ");
    for (std::string key, selected, expanded; steps >> key >> selected >> expanded;) {
        SCOPED_TRACE(key + " to " + selected);
        EXPECT_TRUE(Press(key.c_str()));
        std::string shown;
        for (const char* const name : {"b", "k", "k/l", "p", "r"}) {
            shown += IsInTree(files.At(name)) && IsExpanded(files.At(name)) ? std::string(name) + "," : "";
        }
        EXPECT_EQ(shown.empty() ? "." : shown, expanded);
        EXPECT_EQ(GetRowVisibility(MainTree(), NodePath(TreeSelected()).get()), ROW_VISIBLE);
        ExpectAt(selected == "." ? "" : selected);
    }
    // On a child, Left collapses the root. Then there is nowhere to go.
    Steps("key Down; key Left; key Page_Down; key End; key Down = .");
    EXPECT_FALSE(IsExpanded(files.Path()));
    Steps("key Right = .");
    EXPECT_TRUE(IsExpanded(files.Path()));
}

TEST_F(Keys, PageThroughALongTree)
{
    MakeMany(100, "dir", "/");
    Start();
    Press("Page_Down");
    const int page = gtk_tree_path_get_indices(NodePath(TreeSelected()).get())[1] + 1;
    EXPECT_EQ(GetRowVisibility(MainTree(), RowPath(0).get()), ROW_VISIBLE) << "nothing scrolls within the page";
    ExpectPages(MainTree(), {{"Page_Down", 2 * page}});
    EXPECT_EQ(TreeSelected(), files.At("dir" + std::to_string(98 + 2 * page) + "/"));
    ExpectPages(MainTree(),
                {{"Page_Down", 3 * page}, {"Page_Up", 2 * page}, {"Page_Up", page}, {"Page_Up", 0}, {"Page_Up", 0}});
}

TEST_F(Keys, BelongToTheEntryWhileItHasTheFocusAndNeverToTheToolbar)
{
    Start();
    SelectNames({"c"});
    GtkEditable* const entry = GTK_EDITABLE(Entry());
    gtk_widget_grab_focus(Entry());
    gtk_editable_set_position(entry, 3);
    Press("Right");
    EXPECT_EQ(gtk_editable_get_position(entry), 4);
    Steps("key Down; key <Shift>End; key Page_Up; key Home = . c");
    EXPECT_EQ(gtk_editable_get_position(entry), 0);
    Steps("key <Control>a = . c");
    EXPECT_TRUE(gtk_editable_get_selection_bounds(entry, nullptr, nullptr));
    Steps("key Tab = . -");
    EXPECT_FALSE(IsEntryFocused());
    Steps("key <Control>a = . b,a,c,d,e");
    for (const ToolSlot slot : {TOOL_BACK, TOOL_HOME, TOOL_RESCAN}) {
        gtk_widget_grab_focus(gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[slot])));
        SelectNames({"a", "c"});
        Press("space");
        Steps("key Return; key Down = . d");
        EXPECT_EQ(pGTable->HistoryIndex, 0);
    }
}

}  // namespace
