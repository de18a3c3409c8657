#pragma once
// The fixture of the window tests: the real main window over a directory of the test's own, driven
// by events.

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "driving.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"
#include "kit/fnkmainwindow-record.h"
#include "core/fnktable.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "scratch.h"
#include "tabletest.h"

using Names = std::vector<std::string>;
using Rows = std::vector<std::size_t>;

/// While it lives, the program runs with the ids of a user whom permissions stop. The display was
/// connected before and stays so. The directories are given to that user.
class OrdinaryUser {
public:
    explicit OrdinaryUser(std::initializer_list<const ScratchDirectory*> owned);
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser();

private:
    bool changed_ = false;
    std::vector<gid_t> groups_;
};

/// Whether the directories on disk are still those that the window read.
enum DiskState { DISK_AS_SHOWN, DISK_CHANGED };

/// A parameter with a name that a test can be called by.
struct NamedText {
    const char* name;
    std::string text;
};
inline void PrintTo(const NamedText& text, std::ostream* stream)
{
    *stream << text.name;
}
inline std::string NameOfText(const ::testing::TestParamInfo<NamedText>& parameter)
{
    return parameter.param.name;
}

/// A test may start one window: the toolkit and the program's records live once a process.
class WindowTest : public ::testing::Test {
protected:
    WindowTest();
    ~WindowTest() override;

    /// The settings file that the window starts with. To be called before Start.
    void Settings(const std::string& text) { home.File(".fennick", text); }
    /// Starts the program rooted at files, or at another root, as its main procedure does.
    void Start() { Start(files.Path(), ""); }
    void Start(const std::string& root, const std::string& start);
    /// Asks the window to close, as the window manager does.
    void Close();

    /// A key for whatever has the focus; whether anything took it.
    bool Press(guint key, guint state = 0);
    /// A click of the left button into a row. Consecutive clicks are no double click.
    void Click(GtkTreeView* view, GtkTreePath* path, guint state = 0);
    void ClickRow(const std::string& name, guint state = 0);
    void DoubleClickRow(const std::string& name);
    void ClickNode(const std::string& path);
    void ClickTitle(int column);
    void ClickTool(ToolSlot slot);
    bool IsToolSensitive(ToolSlot slot) const { return gtk_widget_get_sensitive(pMainW->ToolButton[slot]); }
    /// Puts the focus into the location entry and replaces its text, as typing would.
    void Type(const std::string& text);

    /// Goes to a directory below the root by way of the tree.
    void Visit(const std::string& name) { OpenChildTree(MainTree(), pGTable->RootDir + name, EXPAND_LAST_YES); }

    std::size_t RowOf(const std::string& name) const;
    Names ListNames() const;
    Names SelectedNames() const;
    void SelectNames(const Names& names) const;
    RowVisibility RowVisibilityOf(std::size_t row) const;
    /// The first row that is at least partly visible.
    std::size_t FirstVisibleRow() const;
    std::string StatusShown() const;
    std::string LocationShown() const;
    GtkWidget* Entry() const { return ComboEntry(pMainW->LocationCombo); }
    GtkWindow* Window() const { return GTK_WINDOW(pMainW->MainWindow); }

    /// Names of the children of a node, given by its path.
    Names ChildNames(const std::string& path) const;
    bool IsInTree(const std::string& path) const;
    bool IsExpanded(const std::string& path) const;
    bool HasExpander(const std::string& path) const;
    void SetExpanded(const std::string& path, bool expanded) const;
    TreePath NodePath(const std::string& path) const;
    std::string TreeSelected() const;

    /// What holds after every action: tree, list, location, status and buttons tell of the same
    /// directory, and of what a bare reading of it finds. With a text, the entry says that instead
    /// of the directory.
    void ExpectConsistent(DiskState disk = DISK_AS_SHOWN, const std::optional<std::string>& typed = {}) const;

    ScratchDirectory home;
    ScratchDirectory files;
    ScopedVariable home_variable{"HOME", home.Path().c_str()};

private:
    void ExpectListMatchesDisk() const;
    void ExpectTreeConsistent(const GtkTreeIter& node, DiskState disk) const;

    GtkWidget* window_ = nullptr;
    bool untaken_ = false;
    int click_shift_ = 0;
};
