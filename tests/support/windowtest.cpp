#include "windowtest.h"

#include <fnmatch.h>
#include <grp.h>

#include <clocale>

#include "panes/fnkfilelist-status.h"
#include "app/fnkmainwindow.h"
#include "core/fnkstring.h"
#include "app/fnktable-life.h"
#include "app/fnktable-start.h"
#include "core/fnkutil.h"

namespace {

constexpr uid_t kNobody = 65534;

/// More than the toolkit allows between the clicks of a double click, in pixels.
constexpr int kClickShift = 12;

struct DiskEntry {
    std::string name;
    bool is_directory;
};

/// What the settings let pass of a directory; nothing when it cannot be read.
std::vector<DiskEntry> ReadDisk(const std::string& directory)
{
    std::vector<DiskEntry> entries;
    DIR* const stream = opendir(directory.c_str());
    while (const struct dirent* const entry = stream != nullptr ? readdir(stream) : nullptr) {
        const std::string name = entry->d_name;
        struct stat st = {};
        if (name == "." || name == ".." || lstat((directory + name).c_str(), &st) != 0) {
            continue;
        }
        const bool is_hidden = name.front() == '.';
        const bool is_backup =
            name.back() == '~' || (name.size() > 4 && strcasecmp(&name[name.size() - 4], ".bak") == 0);
        const bool is_filtered = pGTable->Filter && fnmatch(pGTable->FilterName.c_str(), name.c_str(), 0) != 0;
        if ((is_hidden && !pGTable->ShowHidden) || (is_backup && !pGTable->ShowBackup)) {
            continue;
        }
        if (S_ISDIR(st.st_mode) || !is_filtered) {
            entries.push_back({name, S_ISDIR(st.st_mode)});
        }
    }
    if (stream != nullptr) {
        closedir(stream);
    }
    return entries;
}

Names Subdirectories(const std::string& directory)
{
    Names names;
    for (const DiskEntry& entry : ReadDisk(directory)) {
        if (entry.is_directory) {
            names.push_back(entry.name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<GtkTreeIter> Children(GtkTreeIter node)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(MainTree());
    std::vector<GtkTreeIter> children;
    GtkTreeIter child;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, &node); more;
         more = gtk_tree_model_iter_next(model, &child)) {
        children.push_back(child);
    }
    return children;
}

std::string StatusBarText(GtkWidget* bar)
{
    GList* const labels = gtk_container_get_children(GTK_CONTAINER(gtk_statusbar_get_message_area(GTK_STATUSBAR(bar))));
    const std::string text = gtk_label_get_text(GTK_LABEL(labels->data));
    g_list_free(labels);
    return text;
}

/// What the status line has to say about the selection.
std::string ExpectedStatus(const std::string& tree_selected, const Names& selected)
{
    if (selected.empty()) {
        return " " + DisplayText(tree_selected);
    }
    std::uint64_t total = 0;
    Names counted;
    for (const std::string& name : selected) {
        struct stat st = {};
        if (lstat((pGTable->CurrentDir + name).c_str(), &st) == 0) {
            total += static_cast<std::uint64_t>(st.st_size);
            counted.push_back(name);
        }
    }
    const std::string what =
        counted.size() == 1 ? DisplayText(counted.front()) : std::to_string(counted.size()) + " files";
    return " " + what + "  " + ConvertSize(total);
}

}  // namespace

OrdinaryUser::OrdinaryUser(std::initializer_list<const ScratchDirectory*> owned)
{
    if (geteuid() != 0) {
        return;
    }
    for (const ScratchDirectory* const directory : owned) {
        Require(chown(directory->Path().c_str(), kNobody, kNobody) == 0, "chown");
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory->Path())) {
            Require(lchown(entry.path().c_str(), kNobody, kNobody) == 0, "chown");
        }
    }
    groups_.resize(static_cast<std::size_t>(getgroups(0, nullptr)));
    Require(getgroups(static_cast<int>(groups_.size()), groups_.data()) >= 0, "getgroups");
    Require(setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, 0) == 0 && setresuid(kNobody, kNobody, 0) == 0,
            "setresuid");
    changed_ = true;
}

OrdinaryUser::~OrdinaryUser()
{
    if (changed_ &&
        (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0 || setgroups(groups_.size(), groups_.data()) != 0)) {
        std::abort();
    }
}

WindowTest::WindowTest()
{
    // The same on every machine and in every session.
    setenv("LANG", "C.UTF-8", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    Settings("");
}

WindowTest::~WindowTest()
{
    // Without a home nothing is written, so that most tests do not wait for the disk.
    home_variable.Set(nullptr);
    TerminateGlobalTable();
    if (window_ != nullptr) {
        RunUntilQuit([this] { gtk_widget_destroy(window_); });
    }
}

void WindowTest::Start(const std::string& root, const std::string& start)
{
    ASSERT_EQ(window_, nullptr) << "a test can start one window";
    gdk_set_allowed_backends("x11");
    gtk_init(nullptr, nullptr);
    // Away from where windows open: a button that comes up under the pointer shows its tip.
    GdkDisplay* const display = gdk_display_get_default();
    gdk_device_warp(gdk_seat_get_pointer(gdk_display_get_default_seat(display)),
                    gdk_display_get_default_screen(display), 10'000, 10'000);
    // So that what an event leads to is done when it has been handled.
    g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
    ASSERT_EQ(InitGlobalTable(), 0);
    SetStartDirectories({.is_version_requested = false, .root = WithSlash(root), .start = start});
    SeedHistories();
    window_ = CreateMainWindow();
    ASSERT_NE(window_, nullptr);
    g_signal_connect(window_, "destroy", G_CALLBACK(gtk_widget_destroyed), &window_);
    g_signal_connect_after(window_, "key-press-event",
                           G_CALLBACK(+[](GtkWidget*, GdkEvent*, gpointer untaken) -> gboolean {
                               *static_cast<bool*>(untaken) = true;
                               return FALSE;
                           }),
                           &untaken_);
    ShowMainWindow();
    int paintings = 0;
    const gulong painting = g_signal_connect_after(pMainW->FileList, "draw",
                                                   G_CALLBACK(+[](GtkWidget*, cairo_t*, gpointer count) -> gboolean {
                                                       ++*static_cast<int*>(count);
                                                       return FALSE;
                                                   }),
                                                   &paintings);
    EXPECT_TRUE(Await([&] { return gtk_window_is_active(GTK_WINDOW(window_)) && paintings > 0; }));
    g_signal_handler_disconnect(pMainW->FileList, painting);
    Settle();
}

void WindowTest::Close()
{
    RunUntilQuit([this] { SendClose(window_); });
}

bool WindowTest::Press(guint key, guint state)
{
    untaken_ = false;
    SendKey(window_, key, state);
    Settle();
    return !untaken_;
}

void WindowTest::Click(GtkTreeView* view, GtkTreePath* path, guint state)
{
    click_shift_ = kClickShift - click_shift_;
    GtkTreeViewColumn* const column = gtk_tree_view_get_column(view, gtk_tree_view_get_n_columns(view) > 1 ? 1 : 0);
    gtk_tree_view_scroll_to_cell(view, path, nullptr, FALSE, 0, 0);
    Settle();
    GdkRectangle area = {};
    gtk_tree_view_get_cell_area(view, path, column, &area);
    ASSERT_GT(area.height, 0);
    GdkWindow* const window = gtk_tree_view_get_bin_window(view);
    const double x = area.x + 4 + click_shift_;
    const double y = area.y + area.height / 2.0;
    SendButton(window, GDK_BUTTON_PRESS, x, y, state);
    SendButton(window, GDK_BUTTON_RELEASE, x, y, state | GDK_BUTTON1_MASK);
    Settle();
}

void WindowTest::ClickRow(const std::string& name, guint state)
{
    const TreePath path(gtk_tree_path_new_from_indices(static_cast<int>(RowOf(name)), -1));
    Click(MainList(), path.get(), state);
}

void WindowTest::DoubleClickRow(const std::string& name)
{
    ClickRow(name);
    click_shift_ = kClickShift - click_shift_;  // Where the first one was.
    ClickRow(name);
}

void WindowTest::ClickNode(const std::string& path)
{
    Click(MainTree(), NodePath(path).get());
}

void WindowTest::ClickTitle(int column)
{
    gtk_button_clicked(GTK_BUTTON(gtk_tree_view_column_get_button(ListViewColumn(column))));
    Settle();
}

void WindowTest::ClickTool(ToolSlot slot)
{
    GtkWidget* const button = gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[slot]));
    ASSERT_TRUE(gtk_widget_is_sensitive(button)) << "tool " << slot;
    gtk_button_clicked(GTK_BUTTON(button));
    Settle();
}

void WindowTest::Type(const std::string& text)
{
    gtk_widget_grab_focus(Entry());
    gtk_entry_set_text(GTK_ENTRY(Entry()), text.c_str());
}

std::size_t WindowTest::RowOf(const std::string& name) const
{
    std::size_t row = 0;
    while (row < ListRows().Count() && ListRows().Name(row) != name) {
        ++row;
    }
    EXPECT_LT(row, ListRows().Count()) << name << " is not listed";
    return row;
}

Names WindowTest::ListNames() const
{
    Names names;
    for (std::size_t row = 0; row < ListRows().Count(); ++row) {
        names.emplace_back(ListRows().Name(row));
    }
    return names;
}

Names WindowTest::SelectedNames() const
{
    Names names;
    for (const std::size_t row : ListSelection()) {
        names.emplace_back(ListRows().Name(row));
    }
    return names;
}

void WindowTest::SelectNames(const Names& names) const
{
    UnselectAllListRows();
    for (const std::string& name : names) {
        SelectListRows(RowOf(name), RowOf(name));
    }
}

RowVisibility WindowTest::RowVisibilityOf(std::size_t row) const
{
    const TreePath path(gtk_tree_path_new_from_indices(static_cast<int>(row), -1));
    return GetRowVisibility(MainList(), path.get());
}

std::size_t WindowTest::FirstVisibleRow() const
{
    std::size_t row = 0;
    while (row < ListRows().Count() && RowVisibilityOf(row) == ROW_HIDDEN) {
        ++row;
    }
    return row;
}

std::string WindowTest::StatusShown() const
{
    return StatusBarText(pMainW->StatusBar);
}

std::string WindowTest::LocationShown() const
{
    return gtk_entry_get_text(GTK_ENTRY(Entry()));
}

TreePath WindowTest::NodePath(const std::string& path) const
{
    std::string directory = path;
    GtkTreeIter node;
    if (!GetPathNode(MainTree(), directory, &node)) {
        ADD_FAILURE() << path << " is not in the tree";
        return TreePath(gtk_tree_path_new_first());
    }
    return TreePath(gtk_tree_model_get_path(gtk_tree_view_get_model(MainTree()), &node));
}

Names WindowTest::ChildNames(const std::string& path) const
{
    GtkTreeIter node;
    gtk_tree_model_get_iter(gtk_tree_view_get_model(MainTree()), &node, NodePath(path).get());
    Names names;
    for (const GtkTreeIter& child : Children(node)) {
        names.push_back(GetLastPath(GetNodePath(MainTree(), child)));
    }
    return names;
}

bool WindowTest::IsInTree(const std::string& path) const
{
    std::string directory = path;
    GtkTreeIter node;
    return GetPathNode(MainTree(), directory, &node);
}

bool WindowTest::IsExpanded(const std::string& path) const
{
    return gtk_tree_view_row_expanded(MainTree(), NodePath(path).get());
}

bool WindowTest::HasExpander(const std::string& path) const
{
    return !ChildNames(path).empty();
}

void WindowTest::SetExpanded(const std::string& path, bool expanded) const
{
    const TreePath node = NodePath(path);
    if (expanded) {
        gtk_tree_view_expand_row(MainTree(), node.get(), FALSE);
    } else {
        gtk_tree_view_collapse_row(MainTree(), node.get());
    }
    Settle();
}

std::string WindowTest::TreeSelected() const
{
    std::string path;
    GetTreeSelect(MainTree(), nullptr, &path);
    return path;
}

void WindowTest::ExpectListMatchesDisk() const
{
    Names listed = ListNames();
    ASSERT_FALSE(listed.empty());
    EXPECT_EQ(listed.front(), "..");
    listed.erase(listed.begin());
    Names on_disk;
    for (const DiskEntry& entry : ReadDisk(pGTable->CurrentDir)) {
        on_disk.push_back(entry.name);
    }
    std::sort(listed.begin(), listed.end());
    std::sort(on_disk.begin(), on_disk.end());
    EXPECT_EQ(listed, on_disk);
}

void WindowTest::ExpectTreeConsistent(const GtkTreeIter& node, DiskState disk) const
{
    const std::string path = GetNodePath(MainTree(), node);
    Names names;
    const std::vector<GtkTreeIter> children = Children(node);
    for (const GtkTreeIter& child : children) {
        names.push_back(GetLastPath(GetNodePath(MainTree(), child)));
    }
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end())) << path;
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end()) << path;
    GtkTreeIter copy = node;
    const TreePath row(gtk_tree_model_get_path(gtk_tree_view_get_model(MainTree()), &copy));
    if (!gtk_tree_view_row_expanded(MainTree(), row.get())) {
        if (disk == DISK_AS_SHOWN) {
            EXPECT_EQ(names.empty(), Subdirectories(path).empty()) << path;
        }
        return;
    }
    if (disk == DISK_AS_SHOWN) {
        EXPECT_EQ(names, Subdirectories(path)) << path;
    }
    for (const GtkTreeIter& child : children) {
        ExpectTreeConsistent(child, disk);
    }
}

void WindowTest::ExpectConsistent(DiskState disk, const std::optional<std::string>& typed) const
{
    const std::string& current = pGTable->CurrentDir;
    EXPECT_TRUE(current.ends_with("/")) << current;
    EXPECT_TRUE(current.starts_with(pGTable->RootDir)) << current;
    EXPECT_EQ(TreeSelected(), current);
    EXPECT_EQ(LocationShown(), typed.value_or(DisplayText(current)));
    EXPECT_EQ(IsToolSensitive(TOOL_UP), current != pGTable->RootDir);
    EXPECT_NE(pGTable->TreeSelectSignal, 0UL);
    if (disk == DISK_AS_SHOWN) {
        ExpectListMatchesDisk();
        EXPECT_EQ(pGTable->StatusText, ExpectedStatus(current, SelectedNames()));
    }
    EXPECT_EQ(StatusShown(), pGTable->StatusText);
    const Rows selection = ListSelection();
    EXPECT_TRUE(std::is_sorted(selection.begin(), selection.end()));
    EXPECT_TRUE(selection.empty() || selection.front() > 0) << "\"..\" is selected";
    GtkTreeIter root;
    ASSERT_TRUE(gtk_tree_model_get_iter_first(gtk_tree_view_get_model(MainTree()), &root));
    ExpectTreeConsistent(root, disk);
}
