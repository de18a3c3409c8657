// Finding files: the dialogs, the search behind them, and where a result leads.

#include <dirent.h>

#include <atomic>
#include <thread>

#include "acts.h"
#include "commands/fnkeditmenu-find-result.h"
#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"

extern "C" struct dirent* __real_readdir(DIR* stream);
extern "C" struct dirent* __wrap_readdir(DIR* stream);

namespace {

const std::thread::id tests_thread = std::this_thread::get_id();
/// How many entries a search may read before it is held up, as by a slow disk.
std::atomic<int> entries_left = G_MAXINT;

void LetRead(int entries)
{
    entries_left = entries;
    entries_left.notify_all();
}

class FindDialogs : public WindowTest {
protected:
    static void During(const DialogActs& acts)
    {
        DuringDialogs([] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_FIND_FILE])); }, acts);
        Settle();
    }
    /// Fills in the dialog and presses OK; an empty start leaves the one that is offered.
    static DialogAct Ask(const std::string& start, const std::string& pattern, bool below)
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
    static GtkTreeView* TreeOf(GtkWidget* dialog)
    {
        return GTK_TREE_VIEW(FindWidget(dialog, [](GtkWidget* widget) { return GTK_IS_TREE_VIEW(widget) != FALSE; }));
    }
    /// The paths of all rows in their order, and selects the wanted one.
    static Names Rows(GtkWidget* dialog, const std::string& wanted = "")
    {
        struct Walk {
            GtkTreeView* tree;
            const std::string& wanted;
            Names paths;
        } walk = {TreeOf(dialog), wanted, {}};
        gtk_tree_model_foreach(
            gtk_tree_view_get_model(walk.tree),
            [](GtkTreeModel* rows, GtkTreePath* path, GtkTreeIter* row, gpointer data) -> gboolean {
                auto* const now = static_cast<Walk*>(data);
                gboolean is_directory = FALSE;
                gtk_tree_model_get(rows, row, kNodeDirectoryColumn, &is_directory, -1);
                GtkTreeIter node;
                EXPECT_TRUE(gtk_tree_model_get_iter(rows, &node, path));
                const std::string text = WithoutSlash(GetNodePath(now->tree, node));
                now->paths.push_back(is_directory ? WithSlash(text) : text);
                if (now->paths.back() == now->wanted) {
                    gtk_tree_selection_select_path(gtk_tree_view_get_selection(now->tree), path);
                }
                return FALSE;
            },
            &walk);
        return walk.paths;
    }
    DialogAct ExpectFound(const Names& found, const char* button) const
    {
        return [=, this](GtkWidget* dialog) {
            EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
            Names paths = {files.Path()};
            for (const std::string& name : found) {
                paths.push_back(files.At(name));
            }
            EXPECT_EQ(Rows(dialog), paths);
            EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), FindByText(dialog, "OK"));
            PressButton(button)(dialog);
        };
    }
    static DialogAct Display(const std::string& path)
    {
        return [=](GtkWidget* dialog) {
            EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
            Rows(dialog, path);
            PressButton("Display directory")(dialog);
        };
    }
};

TEST_F(FindDialogs, SearchAgainKeepsTheQuestionAndTheHistories)
{
    for (const char* const name : {"a.c", "B.c", "sub/b.c", "sub/x", ".hid.c"}) {
        files.File(name);
    }
    files.Directory("none");
    files.Link("link.c", "sub");
    Start();
    pGTable->FilterHistory = {"old"};
    const History directories = pGTable->DirHistory;
    During({[this](GtkWidget* dialog) {
                EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Start dir:")), files.Path());
                EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Find name:")), "old");
                SendKey(dialog, GDK_KEY_Return);  // In the entry it is no answer.
                Ask("", "*.c", false)(dialog);
            },
            ExpectFound({".hid.c", "B.c", "a.c", "link.c"}, "Serch again"),
            [&](GtkWidget* dialog) {
                EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Find name:")), "*.c");
                EXPECT_EQ(pGTable->FilterHistory, History{"old"});
                EXPECT_EQ(pGTable->DirHistory, directories);
                Ask(files.At("sub/.."), "*.c", true)(dialog);
            },
            ExpectFound({".hid.c", "B.c", "a.c", "link.c", "sub/", "sub/b.c"}, "Serch again"),
            Ask("", "no match*", true), ExpectFound({}, "OK")});
    EXPECT_EQ(pGTable->FilterHistory, (History{"no match*", "old"}));
    EXPECT_EQ(pGTable->DirHistory.front(), files.Path());
    std::string too_long(kMaxFilterBytes, 'x');  // The entry counts characters, the limit is one of bytes.
    too_long.replace(0, 1, "\u00e9");
    During({Ask(files.At("missing"), "*", false), ReadBox("The specified file does not exist."),
            Ask(files.Path(), too_long, false), ReadBox("Invalid find string."), PressButton("Cancel")});
    EXPECT_EQ(pGTable->FilterHistory, (History{"no match*", "old"}));
    ExpectConsistent();
}

TEST_F(FindDialogs, AResultLeadsToItsDirectory)
{
    files.File("d\xFF/e/x\xFE.c");
    files.File("d\xFF/.h/x.c");
    Start();
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"x*", "d\xFF/e/x\xFE.c", "d\xFF/e/"},
        {"e", "d\xFF/", "d\xFF/"},
        {"x*", "d\xFF/.h/x.c", "d\xFF/"},  // The nearest directory that the tree shows.
        {"x*", "", ""},
        {"x*", "nothing", ""}};
    for (const auto& [pattern, chosen, shown] : cases) {
        During({Ask(files.Path(), pattern, true), Display(files.At(chosen))});
        EXPECT_EQ(pGTable->CurrentDir, files.At(shown));
        EXPECT_EQ(pGTable->FilterHistory.front(), pattern);
        ExpectConsistent();
    }
    // By keys alone: to the tree, down to the match, and there.
    for (int i = 0; i < 200; ++i) {
        files.File("d\xFF/e/" + std::to_string(i));
    }
    Visit("d\xFF");
    During({[](GtkWidget* dialog) {
                EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Start dir:")), pGTable->CurrentDir);
                Ask("", "x*", true)(dialog);
            },
            [](GtkWidget* dialog) {
                EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
                while (gtk_window_get_focus(GTK_WINDOW(dialog)) != GTK_WIDGET(TreeOf(dialog))) {
                    SendKey(dialog, GDK_KEY_Tab);
                }
                SendKey(dialog, GDK_KEY_End);
                SendKey(dialog, GDK_KEY_Return);
            }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("d\xFF/e/"));
    EXPECT_TRUE(Await([this] { return RowVisibilityOf(RowOf("x\xFE.c")) == ROW_VISIBLE; }));
    ExpectConsistent();
}

TEST_F(FindDialogs, ClosingStopsTheSearchOrLeavesIt)
{
    for (int i = 0; i < 100; ++i) {
        files.File("f" + std::to_string(i));
    }
    Start();
    LetRead(10);
    During({Ask("", "*", true), [](GtkWidget* dialog) {
                EXPECT_TRUE(Await([dialog] {
                    return FindWidget(dialog, [](GtkWidget* widget) {
                               return GTK_IS_LABEL(widget) &&
                                      g_str_has_prefix(gtk_label_get_text(GTK_LABEL(widget)), "Find...f");
                           }) != nullptr;
                }));
                for (const char* const label : {"OK", "Serch again", "Display directory"}) {
                    EXPECT_FALSE(gtk_widget_get_sensitive(FindByText(dialog, label))) << label;
                }
                SendKey(dialog, GDK_KEY_Escape);  // The same as closing the window, a little later.
                Settle();
                EXPECT_FALSE(IsOver(dialog));
                LetRead(G_MAXINT);
                EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
                EXPECT_NEAR(static_cast<double>(Rows(dialog).size()), 10.5, 1.5) << "\".\" and \"..\" may be read, too";
                SendClose(dialog);
            }});
    EXPECT_EQ(pGTable->FilterHistory.front(), "*");
    LetRead(0);  // A disk that does not answer.
    During({Ask("", "*", true), [](GtkWidget* dialog) {
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

struct dirent* __wrap_readdir(DIR* stream)
{
    if (std::this_thread::get_id() != tests_thread) {
        entries_left.wait(0);
        --entries_left;
    }
    return __real_readdir(stream);
}
