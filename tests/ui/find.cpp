// Finding files: the dialogs, the search behind them, and where a result leads.

#include <cstring>

#include "acts.h"
#include "commands/fnkeditmenu-find-result.h"
#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"

namespace {

class FindDialogs : public WindowTest {
protected:
    /// Fills in the dialog and presses OK; an empty start leaves the one that is offered.
    static DialogAct Question(const std::string& start, const std::string& pattern, bool below)
    {
        return [=](GtkWidget* dialog) {
            if (!start.empty()) {
                SetEntryBytes(FindNamed(dialog, "Start dir:"), start);
            }
            SetEntryBytes(FindNamed(dialog, "Find name:"), pattern);
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(FindByText(dialog, "Search sub directory")), below);
            PressButton("OK")(dialog);
        };
    }
    static bool IsOver(GtkWidget* dialog) { return FindByText(dialog, "Match file list") != nullptr; }
    static bool Says(GtkWidget* dialog, const char* text)
    {
        return FindWidget(dialog, [text](GtkWidget* one) {
                   return GTK_IS_LABEL(one) && std::strstr(gtk_label_get_text(GTK_LABEL(one)), text) != nullptr;
               }) != nullptr;
    }
    static void AwaitEnd(GtkWidget* dialog)
    {
        EXPECT_TRUE(Await([=] { return IsOver(dialog); }));
    }
    /// The paths of all rows in their order.
    static Names Rows(GtkWidget* dialog)
    {
        std::pair<GtkTreeView*, Names> walk = {TreeOf(dialog), {}};
        const auto add = [](GtkTreeModel* model, GtkTreePath*, GtkTreeIter* row, gpointer data) -> gboolean {
            auto* const now = static_cast<std::pair<GtkTreeView*, Names>*>(data);
            gboolean is_directory = FALSE;
            gtk_tree_model_get(model, row, kNodeDirectoryColumn, &is_directory, -1);
            const std::string path = WithoutSlash(GetNodePath(now->first, *row));
            now->second.push_back(is_directory ? WithSlash(path) : path);
            return FALSE;
        };
        gtk_tree_model_foreach(gtk_tree_view_get_model(walk.first), add, &walk);
        return walk.second;
    }
    DialogAct ExpectFound(const Names& found, const char* button) const
    {
        return [=, this](GtkWidget* dialog) {
            AwaitEnd(dialog);
            Names paths = {files.Path()};
            for (const std::string& name : found) {
                paths.push_back(files.At(name));
            }
            EXPECT_EQ(Rows(dialog), paths);
            PressButton(button)(dialog);
        };
    }
};

TEST_F(FindDialogs, SearchAgainKeepsTheQuestionAndTheHistories)
{
    Make({"a.c", "B.c", "sub/b.c", "sub/x", ".hid.c", "none/", "link.c -> sub"});
    Start();
    pGTable->FilterHistory = {"old"};
    Ask(MENU_FIND_FILE, {Question("", "*.c", false), ExpectFound({".hid.c", "B.c", "a.c", "link.c"}, "Serch again"),
                         [&](GtkWidget* dialog) {
                             EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Find name:")), "*.c");
                             Question(files.At("sub/.."), "*.c", true)(dialog);
                         },
                         ExpectFound({".hid.c", "B.c", "a.c", "link.c", "sub/", "sub/b.c"}, "Serch again"),
                         Question("", "no match*", true), ExpectFound({}, "OK")});
    EXPECT_EQ(pGTable->FilterHistory, (History{"no match*", "old"}));
    EXPECT_EQ(pGTable->DirHistory.front(), files.Path());
    Ask(MENU_FIND_FILE, {Question(files.At("missing"), "*", false), ReadBox("The specified file does not exist."),
                         Question(files.At("a.c"), "*", false), ReadBox(files.At("a.c") + " is not a directory."),
                         Question(files.Path(), "", false), ReadBox("Invalid find string."), PressButton("Cancel")});
    EXPECT_EQ(pGTable->FilterHistory, (History{"no match*", "old"}));
    ExpectConsistent();
}

TEST_F(FindDialogs, AResultLeadsToItsDirectory)
{
    Make({"d\xFF/e/x\xFE.c", "d\xFF/.h/x.c"});
    MakeMany(100, "d\xFF/e/");
    Start();
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"x*", "0:0:0:0", "d\xFF/.h/"}, {"x*", "0", ""}, {"x*", "0:0:1:0", "d\xFF/e/"}};
    for (const auto& [pattern, chosen, shown] : cases) {
        Visit("d\xFF");
        Ask(MENU_FIND_FILE, {[name = pattern](GtkWidget* dialog) {
                                 EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Start dir:")), pGTable->CurrentDir);
                                 Question(pGTable->RootDir, name, true)(dialog);
                             },
                             [row = chosen](GtkWidget* dialog) {
                                 AwaitEnd(dialog);
                                 const TreePath path(gtk_tree_path_new_from_string(row));
                                 // A row can be selected only where it shows.
                                 gtk_tree_selection_select_path(gtk_tree_view_get_selection(TreeOf(dialog)),
                                                                path.get());
                                 PressButton("Display directory")(dialog);
                             }});
        EXPECT_EQ(pGTable->FilterHistory.front(), pattern);
        ExpectAt(shown);
    }
    EXPECT_TRUE(Await([] { return RowVisibilityOf(RowOf("x\xFE.c")) == ROW_VISIBLE; }));
}

TEST_F(FindDialogs, AreUsedByKeys)
{
    MakeMany(1'100, "dir/f");  // More than are shown while the search runs.
    Start();
    const auto ask = [](GtkWidget* dialog) {
        GtkWidget* const name = FindNamed(dialog, "Find name:");
        EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), name);
        int last = 0;
        for (int step = 0; step < 5; ++step) {  // By way of the arrow and the switch to the buttons.
            int x = 0, y = 0;
            GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(dialog));
            gtk_widget_translate_coordinates(focus, dialog, 0, 0, &x, &y);
            EXPECT_GT(1'000 * y / 20 + x, last);
            last = 1'000 * y / 20 + x;
            SendKey(dialog, GDK_KEY_Tab);
        }
        EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), FindNamed(dialog, "Start dir:"));
        Question("", "f*", true)(dialog);
    };
    const auto look = [](GtkWidget* dialog) {
        AwaitEnd(dialog);
        EXPECT_EQ(Rows(dialog).size(), 1'102U);
        GtkTreeView* const tree = TreeOf(dialog);
        gtk_widget_grab_focus(GTK_WIDGET(tree));
        const std::pair<guint, const char*> steps[] = {
            {GDK_KEY_End, "dir/f999"}, {GDK_KEY_KP_Up, "dir/f998"}, {GDK_KEY_Home, ""},
            {GDK_KEY_Down, "dir"},     {GDK_KEY_Left, "dir"},       {GDK_KEY_Down, "dir"},
            {GDK_KEY_Right, "dir"},    {GDK_KEY_Down, "dir/f100"},  {GDK_KEY_Left, "dir"},
            {GDK_KEY_Right, "dir"},    {GDK_KEY_End, "dir/f999"}};
        for (const auto& [key, shown] : steps) {
            SendKey(dialog, key);
            Settle();
            std::string path;
            GtkTreeIter node;
            ASSERT_TRUE(GetTreeSelect(tree, &node, &path));
            EXPECT_EQ(WithoutSlash(path), WithoutSlash(pGTable->RootDir + shown)) << key;
            const TreePath row(gtk_tree_model_get_path(gtk_tree_view_get_model(tree), &node));
            EXPECT_TRUE(Await([&] { return GetRowVisibility(tree, row.get()) == ROW_VISIBLE; })) << shown;
        }
        PressButton("OK")(dialog);
    };
    Ask(MENU_FIND_FILE, {ask, look});
}

TEST_F(FindDialogs, ClosingStopsTheSearchOrLeavesIt)
{
    MakeMany(100, "f");
    Start();
    LetRead(10);
    Ask(MENU_FIND_FILE, {Question("", "*", true), [](GtkWidget* dialog) {
                             EXPECT_TRUE(Await([=] { return Rows(dialog).size() > 8 && EntriesLeft() == 0; }));
                             EXPECT_TRUE(Says(dialog, " matches, searching f1")) << "what there is shows at once";
                             SendKey(dialog, GDK_KEY_Escape);  // The same as OK, a little later.
                             Settle();
                             EXPECT_TRUE(Says(dialog, "Stopped: "));
                             LetRead(G_MAXINT);
                             Settle();
                             EXPECT_NEAR(static_cast<double>(Rows(dialog).size()), 10.5, 1.5)
                                 << "\".\" and \"..\" may be read, too";
                             SendClose(dialog);
                         }});
    LetRead(0);  // A disk that does not answer.
    Ask(MENU_FIND_FILE, {Question("", "*", true), [](GtkWidget* dialog) {
                             SendClose(dialog);
                             Settle();
                             EXPECT_FALSE(IsOver(dialog));
                             SendClose(dialog);
                         }});
    ExpectConsistent();
    Close();  // The window does not wait for it either.
    LetRead(G_MAXINT);
}

}  // namespace
