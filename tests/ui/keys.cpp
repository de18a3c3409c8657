// Keys in both panes. Whether something is selected in the list decides which pane gets them.

#include <gdk/gdkkeysyms.h>

#include <set>
#include <sstream>

#include "windowtest.h"

namespace {

/// Sorted, the rows are b, a, c, d, e.
class Keys : public WindowTest {
protected:
    Keys() { Make({"a", "c", "d", "e", "b/x", "b/y"}); }

    /// Which of these directories are expanded, and whether the selected one is out of view.
    std::string State() const override
    {
        std::string shown;
        for (const char* const name : {"b", "k", "k/l", "p", "r"}) {
            shown += IsInTree(files.At(name)) && IsExpanded(files.At(name)) ? std::string(name) + "," : "";
        }
        const bool is_seen = GetRowVisibility(MainTree(), NodePath(TreeSelected()).get()) == ROW_VISIBLE;
        return (shown.empty() ? "." : shown) + (is_seen ? "" : "hidden");
    }
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
            int depth = 0;
            const int* const indices = gtk_tree_path_get_indices_with_depth(path.get(), &depth);
            const int now = indices[depth - 1] + depth - 1;
            EXPECT_NEAR(now, row, 2);
            EXPECT_EQ(GetRowVisibility(view, path.get()), ROW_VISIBLE);
            if (now > 1) {
                key == std::string("Page_Up") ? void(gtk_tree_path_prev(path.get())) : gtk_tree_path_next(path.get());
                EXPECT_NE(GetRowVisibility(view, path.get()), ROW_VISIBLE);
            }
        }
        ExpectConsistent();
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
        Press(key.c_str());
        ExpectAt("", after == "-" ? "" : after);
    }
    // A directory opens, if it is selected alone. In one that is empty there is nothing to select.
    Steps("make b/empty/; select b; key Return = b/ empty; key KP_Enter = b/empty/ -; key Tab = b/empty/ -; visit .");
    // During a drag keys do nothing.
    SelectNames({"a"});
    Press(GDK_KEY_Down, GDK_BUTTON1_MASK);
    ExpectAt("", "a");
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
    ExpectPages(MainList(), {{"Page_Down", 2 * page + 2}, {"Page_Up", page + 2}, {"Page_Down", 2 * page + 3}});
    const int before = Row();
    Press("<Shift>Page_Down");
    EXPECT_EQ(Row(), before);
    EXPECT_NEAR(static_cast<int>(CountListSelection()), page + 2, 2);
    // ".." comes into view with the first entry, whatever key goes there.
    for (const char* const keys : {"key Home", "key Tab; key Tab", "key Return"}) {
        Steps("key End = . z");
        EXPECT_EQ(RowVisibilityOf(ListRows().Count() - 1), ROW_VISIBLE);
        Steps(keys);
        EXPECT_EQ(Row(), 1);
        EXPECT_EQ(RowVisibilityOf(0), ROW_VISIBLE);
    }
    ExpectAt("z/", "100");
}

TEST_F(Keys, MoveThroughTheTree)
{
    Make({"k/l/m/", "k/n/", "p/q/", "r/"});
    Start();
    Steps(
        "key Up = . - .; key Left = . - .; key Down = b/ - .; key Right = b/ - .; key Down = k/ - .;"
        "key Right = k/ - k,; key Right = k/ - k,; key Down = k/l/ - k,; key Return = k/l/ - k,k/l,;"
        "key KP_Down = k/l/m/ - k,k/l,; key KP_Down = k/n/ - k,k/l,; key Down = p/ - k,k/l,;"
        "key KP_Up = k/n/ - k,k/l,; key Up = k/l/m/ - k,k/l,; key Left = k/l/ - k,; key KP_Left = k/ - .;"
        "key Down = p/ - .; key Up = k/ - .; key KP_Right = k/ - k,; key End = r/ - k,; key Down = r/ - k,;"
        "key KP_Home = . - k,; key Page_Up = . - k,; key Page_Down = r/ - k,; key Page_Down = r/ - k,;"
        "key Up = p/ - k,; key Return = p/ - k,p,; key KP_End = r/ - k,p,; key Up = p/q/ - k,p,;"
        "key KP_Page_Up = . - k,p,");
    // On a child, Left collapses the root. Then there is nowhere to go.
    Steps("key Down; key Left; key Page_Down; key End; key Down = .");
    EXPECT_FALSE(IsExpanded(files.Path()));
}

TEST_F(Keys, PageThroughALongTree)
{
    MakeMany(100, "dir", "/");
    Start();
    Press("Page_Down");
    const int page = gtk_tree_path_get_indices(NodePath(TreeSelected()).get())[1] + 1;
    ExpectPages(MainTree(), {{"Page_Down", 2 * page}});
    EXPECT_EQ(TreeSelected(), files.At("dir" + std::to_string(98 + 2 * page) + "/"));
    ExpectPages(MainTree(), {{"Page_Up", page}, {"Page_Up", 0}, {"Page_Up", 0}});
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
    gtk_widget_grab_focus(gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[TOOL_BACK])));
    SelectNames({"a", "c"});
    Press("space");
    Steps("key Return; key Down = . d");
}

TEST_F(Keys, ShortcutsGoWhereTheToolbarDoes)
{
    Make({"k/"});
    Start();
    Visit("k");
    const std::pair<const char*, const char*> steps[] = {{"<Alt>Up", ""},    {"<Alt>Left", "b/"}, {"<Alt>Right", ""},
                                                         {"<Alt>Right", ""}, {"<Alt>Up", ""},     {"<Alt>Left", "b/"},
                                                         {"<Alt>Home", ""}};
    for (const char* const before : {"Escape", "Tab", "<Control>l"}) {  // Also while the entry has the focus.
        Visit("b");
        for (const auto& [key, directory] : steps) {
            Press(before);
            Press(key);
            ExpectAt(directory);
        }
    }
    Visit("b");
    Press("<Control>l");
    EXPECT_TRUE(IsEntryFocused());
    Make({"b/new"});
    Steps("key F5");
    ExpectAt("b/");
    DuringDialogs([this] { Press("<Control>f"); }, {SendClose});
}

TEST_F(Keys, AreToldToScreenReaders)
{
    Make({"k/"});
    Start();
    // Each accessible is told of every row, so there is none before somebody listens.
    Steps("key Tab; key Down; key Tab; visit .; key F5");
    EXPECT_FALSE(HasAccessible(MainList()) || HasAccessible(MainTree()));
    GtkTreeViewColumn* const icons = gtk_tree_view_get_column(MainList(), 0);
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(gtk_tree_view_column_get_button(icons))), "Directory");
    std::string told;
    const auto note = +[](AtkObject*, AtkObject* cell, std::string* names) {
        *names += atk_object_get_name(cell) + std::string(",");
    };
    for (GtkWidget* const view : {pMainW->FileList, pMainW->DirTree}) {
        g_signal_connect(gtk_widget_get_accessible(view), "active-descendant-changed", G_CALLBACK(note), &told);
    }
    Steps("key Tab; key Down; key End; key Home; key Tab; key Down; key Down");
    EXPECT_EQ(told, "b,k,e,b," + files.Path() + ",b,k,");
    Visit("");
    AtkTable* const table = ATK_TABLE(gtk_widget_get_accessible(pMainW->FileList));
    for (const auto& [name, spoken] : {std::pair("k", "Directory"), {"a", ""}}) {
        AtkObject* const icon = atk_table_ref_at(table, static_cast<int>(RowOf(name)), 0);
        EXPECT_STREQ(atk_object_get_name(icon), spoken);
        g_object_unref(icon);
    }
}

TEST_F(Keys, AreAllInEveryManual)
{
    Start();
    std::set<std::pair<guint, GdkModifierType>> shortcuts;
    const auto collect = [](GtkAccelKey* key, GClosure*, gpointer found) -> gboolean {
        static_cast<decltype(shortcuts)*>(found)->emplace(key->accel_key, key->accel_mods);
        return FALSE;
    };
    for (GSList* group = gtk_accel_groups_from_object(G_OBJECT(pMainW->MainWindow)); group != nullptr;
         group = group->next) {
        gtk_accel_group_find(static_cast<GtkAccelGroup*>(group->data), collect, &shortcuts);
    }
    EXPECT_GE(shortcuts.size(), 10U);
    using Name = std::map<guint, const char*>;
    const auto names = [](const char* control, const char* left, const char* right, const char* up, const char* start) {
        return Name{
            {0, control}, {GDK_KEY_Left, left}, {GDK_KEY_Right, right}, {GDK_KEY_Up, up}, {GDK_KEY_Home, start}};
    };
    const std::map<std::string, Name> languages = {{"", names("Ctrl", "Left", "Right", "Up", "Home")},
                                                   {"de/", names("Strg", "Links", "Rechts", "Auf", "Pos1")},
                                                   {"es/", names("Ctrl", "Izquierda", "Derecha", "Arriba", "Inicio")},
                                                   {"fr/", names("Ctrl", "Gauche", "Droite", "Haut", "D\u00e9but")},
                                                   {"ja/", names("Ctrl", "\u2190", "\u2192", "\u2191", "Home")},
                                                   {"zh_CN/", names("Ctrl", "\u2190", "\u2192", "\u2191", "Home")}};
    for (const auto& [language, name] : languages) {
        std::ifstream stream(FENNICK_MANUALS + language + "fennick.htm");
        const std::string page{std::istreambuf_iterator<char>(stream), {}};
        for (const auto& [key, modifiers] : shortcuts) {
            const auto known = name.find(key);
            const std::string modifier = (modifiers & GDK_CONTROL_MASK) != 0 ? name.at(0)
                                         : (modifiers & GDK_MOD1_MASK) != 0  ? "Alt"
                                                                             : "";
            const std::string text = known != name.end() ? known->second : gdk_keyval_name(gdk_keyval_to_upper(key));
            const std::string sought =
                "<dt>" + (modifier.empty() ? "" : "<kbd>" + modifier + "</kbd>+") + "<kbd>" + text + "</kbd>";
            const bool is_second = key == GDK_KEY_Right;  // In one entry with Left.
            EXPECT_NE(page.find(sought.substr(is_second ? 4 : 0)), std::string::npos) << language << ": " << sought;
        }
    }
}

}  // namespace
