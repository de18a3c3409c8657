#pragma once
// The fixture of the window tests: the real main window over a directory of the test's own, driven
// by events.

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "core/fnktable.h"
#include "driving.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"
#include "scratch.h"
#include "tabletest.h"

using Names = std::vector<std::string>;
using Rows = std::vector<std::size_t>;
/// A line of a test. Clang 14 lacks std::source_location.
struct Where {
    static Where Current(const char* file = __builtin_FILE(), int line = __builtin_LINE()) { return {file, line}; }
    const char* file;
    int line;
};

/// Names with commas between them.
std::string Joined(const Names& names);

/// Whether the directories on disk are still those that the window has read.
enum DiskState { DISK_AS_SHOWN, DISK_CHANGED };

/// A test may start one window.
class WindowTest : public ::testing::Test {
protected:
    WindowTest() { Settings(""); }
    ~WindowTest() override;

    /// The settings file that the window starts with.
    void Settings(const std::string& text) const { home.File(".fennick", text); }
    /// Makes files, empty or of a size ("name:1000"), directories ("name/") and links ("name -> target").
    void Make(const Names& names) const;
    /// Makes so many empty files, or directories: the prefix and a number of three digits.
    void MakeMany(int count, const std::string& prefix, const std::string& suffix = "") const
    {
        for (int i = 100; i < 100 + count; ++i) {
            Make({prefix + std::to_string(i) + suffix});
        }
    }
    /// Starts the program as its main procedure does, rooted at files unless told otherwise.
    void Start() { Start(files.Path(), ""); }
    void Start(const std::string& root, const std::string& start);
    /// Asks the window to close, as the window manager does.
    void Close() { RunUntilQuit(std::bind(SendClose, window_)); }

    /// Presses a key, also by its accelerator's name ("<Control>a").
    void Press(guint key, guint state = 0)
    {
        SendKey(window_, key, state);
        Settle();
    }
    void Press(const char* accelerator)
    {
        guint key = 0;
        GdkModifierType state = {};
        gtk_accelerator_parse(accelerator, &key, &state);
        Press(key, state);
    }
    /// Clicks are no double clicks, but where it says so.
    void Click(GtkTreeView* view, GtkTreePath* path, guint state = 0);
    void ClickRow(const std::string& name, guint state = 0) { Click(MainList(), RowPath(RowOf(name)).get(), state); }
    void DoubleClickRow(const std::string& name) { ClickRow(name), click_shift_ = 12 - click_shift_, ClickRow(name); }
    static void ClickTitle(int column)
    {
        gtk_button_clicked(GTK_BUTTON(gtk_tree_view_column_get_button(ListViewColumn(column))));
        Settle();
    }
    static void ClickTool(ToolSlot slot)
    {
        GtkWidget* const button = gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[slot]));
        ASSERT_TRUE(gtk_widget_is_sensitive(button)) << "tool " << slot;
        gtk_button_clicked(GTK_BUTTON(button));
        Settle();
    }
    static bool IsToolSensitive(ToolSlot slot) { return gtk_widget_get_sensitive(pMainW->ToolButton[slot]); }
    /// Chooses an entry as a user does, who has to open its menu first.
    static void Choose(MenuEntry entry)
    {
        ASSERT_TRUE(IsOffered(entry)) << "menu entry " << entry;
        gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[entry]));
        Settle();
    }
    static bool IsOffered(MenuEntry entry)
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[entry]);
        gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
        return gtk_widget_is_sensitive(pMainW->MenuItem[entry]);
    }
    /// Chooses an entry and acts on the dialogs it opens.
    static void Ask(MenuEntry entry, const DialogActs& acts)
    {
        DuringDialogs([entry] { Choose(entry); }, acts);
        Settle();
    }
    /// Focuses the location entry and replaces its text.
    static void Type(const std::string& text)
    {
        gtk_widget_grab_focus(Entry());
        gtk_entry_set_text(GTK_ENTRY(Entry()), text.c_str());
    }
    /// Goes to a directory below the root by way of the tree.
    static void Visit(const std::string& name) { OpenChildTree(MainTree(), pGTable->RootDir + name, EXPAND_LAST_YES); }
    /// Does what the text says, step by step: "act argument; act argument = directory selected state".
    /// What follows "=" is expected after the act, and that all is consistent; "." is the root and
    /// "-" an empty selection. Paths are below files, names without blanks.
    void Steps(const std::string& text, const Where& where = Where::Current());
    /// What else a suite expects after its steps.
    virtual std::string State() const { return {}; }

    static TreePath RowPath(std::size_t row)
    {
        return TreePath(gtk_tree_path_new_from_indices(static_cast<int>(row), -1));
    }
    static std::size_t RowOf(const std::string& name)
    {
        const Names names = ListNames();
        const auto row = std::find(names.begin(), names.end(), name);
        EXPECT_NE(row, names.end()) << name << " is not listed";
        return static_cast<std::size_t>(row - names.begin());
    }
    static Names ListNames(const FileRows& rows = ListRows())
    {
        Names names;
        for (std::size_t row = 0; row < rows.Count(); ++row) {
            names.emplace_back(rows.Name(row));
        }
        return names;
    }
    static Names SelectedNames()
    {
        Names names;
        for (const std::size_t row : ListSelection()) {
            names.emplace_back(ListRows().Name(row));
        }
        return names;
    }
    static void SelectNames(const Names& names)
    {
        UnselectAllListRows();
        for (const std::string& name : names) {
            SelectListRows(RowOf(name), RowOf(name));
        }
    }
    static RowVisibility RowVisibilityOf(std::size_t row) { return GetRowVisibility(MainList(), RowPath(row).get()); }
    static std::string StatusShown() { return gtk_label_get_text(GTK_LABEL(StatusBarLabel(pMainW->StatusBar))); }
    static GtkWidget* Entry() { return ComboEntry(pMainW->LocationCombo); }
    static std::string LocationShown() { return gtk_entry_get_text(GTK_ENTRY(Entry())); }
    static GtkWindow* Window() { return GTK_WINDOW(pMainW->MainWindow); }
    static bool IsEntryFocused() { return gtk_window_get_focus(Window()) == Entry(); }

    // Nodes of the tree by their path, whether or not there still is such a directory.
    static bool IsInTree(const std::string& path) { return FindNode(path).has_value(); }
    static TreePath NodePath(const std::string& path);
    static Names ChildNames(const std::string& path);
    static bool IsExpanded(const std::string& path)
    {
        return gtk_tree_view_row_expanded(MainTree(), NodePath(path).get());
    }
    static void SetExpanded(const std::string& path, bool expanded)
    {
        const TreePath node = NodePath(path);
        expanded ? gtk_tree_view_expand_row(MainTree(), node.get(), FALSE)
                 : gtk_tree_view_collapse_row(MainTree(), node.get());
        Settle();
    }
    static std::string TreeSelected()
    {
        std::string path;
        GetTreeSelect(MainTree(), nullptr, &path);
        return path;
    }

    /// What holds after every action: tree, list, location, status, menus and buttons tell of the
    /// same directory and selection, and of what is on the disk. With a text, the entry says that
    /// instead of the directory.
    static void ExpectConsistent(DiskState disk = DISK_AS_SHOWN, const std::optional<std::string>& typed = {},
                                 const Where& where = Where::Current());
    /// The same, and which directory below files is shown; with a text, which names are selected.
    void ExpectAt(const std::string& directory, const std::optional<std::string>& selected = {},
                  const Where& where = Where::Current()) const;

    ScratchDirectory home;
    ScratchDirectory files;
    ScopedVariable home_variable{"HOME", home.Path().c_str()};

private:
    static std::optional<GtkTreeIter> FindNode(const std::string& path);
    static void ExpectNodeConsistent(const std::string& path, DiskState disk);

    GtkWidget* window_ = nullptr;
    bool is_painted_ = false;
    int click_shift_ = 0;
};
