// Finding files: the dialogs, the search behind them, and where a result leads.

#include <gdk/gdkkeysyms.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include "commands/fnkeditmenu-find-result.h"
#include "core/fnkutil.h"
#include "windowtest.h"

extern "C" struct dirent* __real_readdir(DIR* stream);
extern "C" struct dirent* __wrap_readdir(DIR* stream);

namespace {

/// Holds up whoever reads a directory in another thread than the test's, after so many entries: a
/// search that is known to be under way, or a disk that does not answer.
class ReadingGate {
public:
    void CloseAfter(int entries) { Set(entries); }
    void Open() { Set(kNoLimit); }
    void Pass()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        if (std::this_thread::get_id() != own_thread_) {
            changed_.wait(lock, [this] { return left_ > 0; });
            --left_;
        }
    }

private:
    static constexpr int kNoLimit = 1'000'000;
    void Set(int left)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        left_ = left;
        changed_.notify_all();
    }
    const std::thread::id own_thread_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::condition_variable changed_;
    int left_ = kNoLimit;
};

/// Never destroyed: a search that was given up may still be held when the process ends.
ReadingGate& Gate()
{
    static auto* const gate = new ReadingGate;
    return *gate;
}
[[maybe_unused]] const ReadingGate& made_in_the_tests_thread = Gate();

class FindDialogs : public WindowTest {
protected:
    using Act = DialogActs::value_type;

    static void During(const DialogActs& acts)
    {
        DuringDialogs([] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_FIND_FILE])); }, acts);
        Settle();
    }
    static GtkWidget* EntryNamed(GtkWidget* dialog, const std::string& name)
    {
        return FindWidget(dialog, [&name](GtkWidget* widget) {
            return GTK_IS_ENTRY(widget) &&
                   g_strcmp0(atk_object_get_name(gtk_widget_get_accessible(widget)), name.c_str()) == 0;
        });
    }
    static void PressButton(GtkWidget* dialog, const char* label)
    {
        gtk_button_clicked(GTK_BUTTON(FindByText(dialog, label)));
    }
    static Act Finish(const char* button)
    {
        return [button](GtkWidget* dialog) { PressButton(dialog, button); };
    }
    /// Fills in the dialog and presses OK; the directory stays as it is if it is null.
    static Act Ask(const char* start, const std::string& pattern, bool below)
    {
        return [start, pattern, below](GtkWidget* dialog) {
            EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Find File");
            if (start != nullptr) {
                SetEntryBytes(EntryNamed(dialog, "Start dir:"), start);
            }
            SetEntryBytes(EntryNamed(dialog, "Find name:"), pattern);
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(FindByText(dialog, "Search sub directory")), below);
            PressButton(dialog, "OK");
        };
    }

    static GtkTreeView* TreeOf(GtkWidget* dialog)
    {
        return GTK_TREE_VIEW(FindWidget(dialog, [](GtkWidget* widget) { return GTK_IS_TREE_VIEW(widget) != FALSE; }));
    }
    static bool IsOver(GtkWidget* dialog) { return FindByText(dialog, "Match file list") != nullptr; }
    /// The paths of all rows, in their order; every one is displayed, and leads where it says.
    static Names Rows(GtkWidget* dialog)
    {
        Names paths;
        GtkTreeModel* const model = gtk_tree_view_get_model(TreeOf(dialog));
        gtk_tree_model_foreach(
            model,
            [](GtkTreeModel* rows, GtkTreePath* path, GtkTreeIter* row, gpointer data) -> gboolean {
                gboolean is_directory = FALSE;
                gtk_tree_model_get(rows, row, kNodeDirectoryColumn, &is_directory, -1);
                std::string text;
                GtkTreeIter node = *row;
                GtkTreeIter parent;
                for (bool more = true; more; node = parent) {
                    text.insert(0, text.empty() ? GetNodeName(rows, node) : WithSlash(GetNodeName(rows, node)));
                    more = gtk_tree_model_iter_parent(rows, &parent, &node);
                }
                GtkTreeIter again;
                EXPECT_TRUE(gtk_tree_model_get_iter(rows, &again, path));
                EXPECT_EQ(GetNodeName(rows, again), GetNodeName(rows, *row));
                static_cast<Names*>(data)->push_back(is_directory ? WithSlash(text) : text);
                return FALSE;
            },
            &paths);
        return paths;
    }
    static void SelectRow(GtkWidget* dialog, const std::string& path)
    {
        GtkTreeModel* const model = gtk_tree_view_get_model(TreeOf(dialog));
        struct Wanted {
            Names rows;
            std::size_t next = 0;
            const std::string& path;
            GtkTreeView* tree;
        } wanted = {Rows(dialog), 0, path, TreeOf(dialog)};
        gtk_tree_model_foreach(
            model,
            [](GtkTreeModel*, GtkTreePath* row, GtkTreeIter*, gpointer data) -> gboolean {
                auto* const now = static_cast<Wanted*>(data);
                if (now->rows[now->next++] != now->path) {
                    return FALSE;
                }
                gtk_tree_selection_select_path(gtk_tree_view_get_selection(now->tree), row);
                return TRUE;
            },
            &wanted);
        EXPECT_EQ(gtk_tree_selection_count_selected_rows(gtk_tree_view_get_selection(TreeOf(dialog))), 1) << path;
    }
    /// Looks at the result and leaves it.
    Act ExpectFound(const Names& found, const char* button) const
    {
        return [this, found, button](GtkWidget* dialog) {
            EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Result of find");
            EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
            Names paths = {files.Path()};
            for (const std::string& name : found) {
                paths.push_back(files.At(name));
            }
            EXPECT_EQ(Rows(dialog), paths);
            EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), FindByText(dialog, "OK"));
            PressButton(dialog, button);
        };
    }
    static Act Display(const std::string& path)
    {
        return [path](GtkWidget* dialog) {
            EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
            SelectRow(dialog, path);
            PressButton(dialog, "Display directory");
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
    const std::string typed = files.At("sub/..");
    During({[this](GtkWidget* dialog) {
                EXPECT_EQ(GetEntryBytes(EntryNamed(dialog, "Start dir:")), files.Path());
                EXPECT_EQ(GetEntryBytes(EntryNamed(dialog, "Find name:")), "old");
                EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(dialog)), FindByText(dialog, "Cancel"));
                SendKey(dialog, GDK_KEY_Return);  // In the entry it is no answer.
                Ask(nullptr, "*.c", false)(dialog);
            },
            ExpectFound({".hid.c", "B.c", "a.c", "link.c"}, "Serch again"),
            [&](GtkWidget* dialog) {
                EXPECT_EQ(GetEntryBytes(EntryNamed(dialog, "Find name:")), "*.c");
                EXPECT_EQ(pGTable->FilterHistory, History{"old"});
                EXPECT_EQ(pGTable->DirHistory, directories);
                Ask(typed.c_str(), "*.c", true)(dialog);
            },
            ExpectFound({".hid.c", "B.c", "a.c", "link.c", "sub/", "sub/b.c"}, "Serch again"),
            Ask(nullptr, "no match*", true), ExpectFound({}, "OK")});
    EXPECT_EQ(pGTable->FilterHistory, (History{"no match*", "old"}));
    EXPECT_EQ(pGTable->DirHistory.front(), files.Path());
    ExpectConsistent();
}

TEST_F(FindDialogs, WhatIsNoQuestionIsRefused)
{
    Start();
    const auto read = [](const char* message) {
        return [message](GtkWidget* box) {
            EXPECT_NE(FindByText(box, message), nullptr) << message;
            PressButton(box, "OK");
        };
    };
    const std::string missing = files.At("missing");
    const History patterns = pGTable->FilterHistory;
    std::string too_long;  // The entry counts characters, the limit is one of bytes.
    while (too_long.size() <= kMaxFilterBytes) {
        too_long += "\u00e9";
    }
    During({Ask(missing.c_str(), "*", false), read("The specified file does not exist."), Ask("/", "*", false),
            read("The specified path cannot be operated."), Ask(files.Path().c_str(), "", false),
            read("Invalid find string."), Ask(nullptr, too_long, false), read("Invalid find string."),
            Finish("Cancel")});
    EXPECT_EQ(pGTable->FilterHistory, patterns);
    ExpectConsistent();
}

TEST_F(FindDialogs, AResultLeadsToItsDirectory)
{
    files.File("d\xFF/e/x\xFE.c");
    files.File("d\xFF/.h/x.c");
    Start();
    During({Ask(nullptr, "x*", true), Display(files.At("d\xFF/e/x\xFE.c"))});
    EXPECT_EQ(pGTable->CurrentDir, files.At("d\xFF/e/"));
    EXPECT_EQ(pGTable->FilterHistory.front(), "x*");
    ExpectConsistent();
    During({Ask(files.Path().c_str(), "e", true), Display(files.At("d\xFF/"))});
    EXPECT_EQ(pGTable->CurrentDir, files.At("d\xFF/"));
    ExpectConsistent();
    // What the tree does not show has a parent that it does; without a choice nothing moves.
    During({Ask(files.Path().c_str(), "x*", true), Display(files.At("d\xFF/.h/x.c"))});
    EXPECT_EQ(pGTable->CurrentDir, files.At("d\xFF/"));
    During({Ask(files.Path().c_str(), "x*", true), Display(files.Path())});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    During({Ask(files.At("d\xFF").c_str(), "x*", true), [](GtkWidget* dialog) {
                EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
                PressButton(dialog, "Display directory");
            }});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    // By keys alone: to the tree, down to the match, and there.
    During({Ask(nullptr, "x*", true), [](GtkWidget* dialog) {
                EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
                while (gtk_window_get_focus(GTK_WINDOW(dialog)) != GTK_WIDGET(TreeOf(dialog))) {
                    SendKey(dialog, GDK_KEY_Tab);
                }
                SendKey(dialog, GDK_KEY_End);
                SendKey(dialog, GDK_KEY_Return);
            }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("d\xFF/e/"));
    ExpectConsistent();
}

TEST_F(FindDialogs, ClosingStopsTheSearch)
{
    constexpr int kFiles = 100;
    for (int i = 0; i < kFiles; ++i) {
        files.File("f" + std::to_string(i));
    }
    Start();
    Gate().CloseAfter(10);
    During({Ask(nullptr, "*", true), [](GtkWidget* dialog) {
                EXPECT_TRUE(Await([dialog] {
                    return FindWidget(dialog, [](GtkWidget* widget) {
                               return GTK_IS_LABEL(widget) &&
                                      g_str_has_prefix(gtk_label_get_text(GTK_LABEL(widget)), "Find...f");
                           }) != nullptr;
                }));
                for (const char* const label : {"OK", "Serch again", "Display directory"}) {
                    EXPECT_FALSE(gtk_widget_get_sensitive(FindByText(dialog, label))) << label;
                }
                EXPECT_FALSE(IsOver(dialog));
                SendKey(dialog, GDK_KEY_Escape);  // The same as closing the window, a little later.
                Settle();
                Gate().Open();
                EXPECT_TRUE(Await([dialog] { return IsOver(dialog); }));
                const std::size_t found = Rows(dialog).size() - 1;
                EXPECT_GE(found, 8U) << "\".\" and \"..\" may have been among the ten";
                EXPECT_LE(found, 11U);
                SendClose(dialog);
            }});
    EXPECT_EQ(pGTable->FilterHistory.front(), "*");
    ExpectConsistent();
}

TEST_F(FindDialogs, ADiskThatDoesNotAnswerHoldsUpNobody)
{
    files.File("file");
    Start();
    Gate().CloseAfter(0);
    During({Ask(nullptr, "*", true), [](GtkWidget* dialog) {
                SendClose(dialog);
                Settle();
                EXPECT_FALSE(IsOver(dialog));
                SendClose(dialog);
            }});
    ExpectConsistent();
    Close();  // Also the window does not wait for it.
    Gate().Open();
}

}  // namespace

struct dirent* __wrap_readdir(DIR* stream)
{
    Gate().Pass();
    return __real_readdir(stream);
}
