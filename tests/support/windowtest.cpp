#include "windowtest.h"

#include <fnmatch.h>
#include <grp.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>

#include "panes/fnkdirtree-nodes.h"
#include "panes/fnkfilelist-status.h"
#include "app/fnkmainwindow.h"
#include "core/fnkstring.h"
#include "app/fnktable-life.h"
#include "app/fnktable-start.h"
#include "core/fnkutil.h"

namespace {

constexpr uid_t kNobody = 65534;

/// The names in a directory that the settings let pass, sorted; none when it cannot be read.
Names ReadDisk(const std::string& directory, bool directories_only)
{
    Names names;
    std::error_code unreadable;
    for (const auto& entry : std::filesystem::directory_iterator(directory, unreadable)) {
        const std::string name = entry.path().filename();
        const bool is_backup =
            name.ends_with('~') || (name.size() > 4 && strcasecmp(&name[name.size() - 4], ".bak") == 0);
        const bool is_filtered = pGTable->Filter && fnmatch(pGTable->FilterName.c_str(), name.c_str(), 0) != 0;
        const bool is_directory = std::filesystem::is_directory(entry.symlink_status());
        if ((pGTable->ShowHidden || name.front() != '.') && (pGTable->ShowBackup || !is_backup) &&
            (is_directory || (!directories_only && !is_filtered))) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::optional<GtkTreeIter> WindowTest::FindNode(const std::string& path)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(MainTree());
    GtkTreeIter node;
    gtk_tree_model_get_iter_first(model, &node);
    std::istringstream below(path.substr(std::min(path.size(), pGTable->RootDir.size())));
    for (std::string name; std::getline(below, name, '/');) {
        if (!FindChildNode(model, &node, name)) {
            return std::nullopt;
        }
    }
    return node;
}

/// What the status line has to say of the selection.
static std::string ExpectedStatus(const Names& selected)
{
    std::uint64_t total = 0;
    Names counted;
    for (const std::string& name : selected) {
        struct stat st = {};
        if (lstat((pGTable->CurrentDir + name).c_str(), &st) == 0) {
            total += static_cast<std::uint64_t>(st.st_size);
            counted.push_back(DisplayText(name));
        }
    }
    const std::string what = counted.size() == 1 ? counted.front() : std::to_string(counted.size()) + " files";
    return selected.empty() ? " " + DisplayText(pGTable->CurrentDir) : " " + what + "  " + ConvertSize(total);
}

std::string Joined(const Names& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ",") + name;
    }
    return text;
}

OrdinaryUser::OrdinaryUser(std::initializer_list<const ScratchDirectory*> owned)
{
    std::string roots = std::string(" ") + std::getenv("XDG_DATA_HOME");
    for (const ScratchDirectory* const directory : owned) {
        roots += " " + directory->Path();
    }
    Require(!is_root_ || (std::system(("chown -hR 65534:65534" + roots).c_str()) == 0 && setgroups(0, nullptr) == 0 &&
                          setresgid(kNobody, kNobody, 0) == 0 && setresuid(kNobody, kNobody, 0) == 0),
            "to become an ordinary user");
}

OrdinaryUser::~OrdinaryUser()
{
    if (is_root_ && (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0)) {
        std::abort();
    }
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

void WindowTest::Make(const Names& names) const
{
    for (const std::string& name : names) {
        if (const std::size_t arrow = name.find(" -> "); arrow != std::string::npos) {
            files.Link(name.substr(0, arrow), name.substr(arrow + 4));
        } else if (name.ends_with('/')) {
            files.Directory(name);
        } else if (const std::size_t colon = name.find(':'); colon != std::string::npos) {
            files.File(name.substr(0, colon), std::string(std::stoul(name.substr(colon + 1)), '.'));
        } else {
            files.File(name);
        }
    }
}

void WindowTest::MakeMany(int count, const std::string& prefix, const std::string& suffix) const
{
    for (int i = 100; i < 100 + count; ++i) {
        Make({prefix + std::to_string(i) + suffix});
    }
}

void WindowTest::Start(const std::string& root, const std::string& start)
{
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
    const auto note = +[](GtkWidget*, gpointer, gpointer happened) -> gboolean {
        *static_cast<bool*>(happened) = true;
        return FALSE;
    };
    g_signal_connect_after(window_, "key-press-event", G_CALLBACK(note), &untaken_);
    ShowMainWindow();
    bool is_painted = false;
    const gulong painting = g_signal_connect_after(pMainW->FileList, "draw", G_CALLBACK(note), &is_painted);
    EXPECT_TRUE(Await([&] { return gtk_window_is_active(GTK_WINDOW(window_)) && is_painted; }));
    g_signal_handler_disconnect(pMainW->FileList, painting);
    Settle();
}

bool WindowTest::Press(guint key, guint state)
{
    untaken_ = false;
    SendKey(window_, key, state);
    Settle();
    return !untaken_;
}

bool WindowTest::Press(const char* accelerator)
{
    guint key = 0;
    GdkModifierType state = {};
    gtk_accelerator_parse(accelerator, &key, &state);
    EXPECT_NE(key, 0U) << accelerator;
    return Press(key, state);
}

void WindowTest::Click(GtkTreeView* view, GtkTreePath* path, guint state)
{
    // More than the toolkit allows between the clicks of a double click.
    click_shift_ = 12 - click_shift_;
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

void WindowTest::DoubleClickRow(const std::string& name)
{
    ClickRow(name);
    click_shift_ = 12 - click_shift_;
    ClickRow(name);
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

bool WindowTest::IsOffered(MenuEntry entry)
{
    GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[entry]);
    gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
    return gtk_widget_is_sensitive(pMainW->MenuItem[entry]);
}

void WindowTest::Choose(MenuEntry entry)
{
    ASSERT_TRUE(IsOffered(entry)) << "menu entry " << entry;
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[entry]));
    Settle();
}

void WindowTest::Type(const std::string& text)
{
    gtk_widget_grab_focus(Entry());
    gtk_entry_set_text(GTK_ENTRY(Entry()), text.c_str());
}

void WindowTest::Steps(const std::string& text, const Where& where)
{
    std::string act, argument;
    const auto at = [this, &argument] { return files.At(argument == "." ? "" : argument); };
    const std::map<std::string, std::function<void()>> acts = {
        {"make", [&] { Make({argument}); }},
        {"remove", [&] { std::filesystem::remove_all(at()); }},
        {"visit", [&] { OpenChildTree(MainTree(), at(), EXPAND_LAST_YES); }},
        {"open", [&] { OpenChildTree(MainTree(), at(), EXPAND_LAST_NO); }},
        {"node", [&] { ClickNode(at()); }},
        {"expand", [&] { SetExpanded(at(), true); }},
        {"collapse", [&] { SetExpanded(at(), false); }},
        {"select", [&] { SelectNames({argument}); }},
        {"click", [&] { ClickRow(argument); }},
        {"ctrl", [&] { ClickRow(argument, GDK_CONTROL_MASK); }},
        {"shift", [&] { ClickRow(argument, GDK_SHIFT_MASK); }},
        {"ctrl+shift", [&] { ClickRow(argument, GDK_CONTROL_MASK | GDK_SHIFT_MASK); }},
        {"double", [&] { DoubleClickRow(argument); }},
        {"title", [&] { ClickTitle(std::stoi(argument)); }},
        {"key", [&] { EXPECT_TRUE(Press(argument.c_str())); }},
        {"type", [&] { Type(at()); }},
        {"back", [] { ClickTool(TOOL_BACK); }},
        {"forward", [] { ClickTool(TOOL_FORWARD); }},
        {"up", [] { ClickTool(TOOL_UP); }},
        {"rescan", [] { ClickTool(TOOL_RESCAN); }},
        {"home", [] { ClickTool(TOOL_HOME); }},
        {"reread", [] { Choose(MENU_RESCAN_DIRECTORY); }},
    };
    std::istringstream steps(text);
    for (std::string step; std::getline(steps, step, ';');) {
        const ::testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), step);
        const std::size_t end = step.find('=');
        argument.clear();
        std::istringstream(step.substr(0, end)) >> act >> argument;
        acts.at(act)();
        if (end != std::string::npos) {
            std::string directory, selected = Joined(SelectedNames()), state = State();
            std::istringstream(step.substr(end + 1)) >> directory >> selected >> state;
            ExpectAt(directory == "." ? "" : directory, selected == "-" ? "" : selected, where);
            EXPECT_EQ(State(), state);
        }
    }
}

Names WindowTest::ListNames()
{
    Names names(ListRows().Count());
    for (std::size_t row = 0; row < names.size(); ++row) {
        names[row] = ListRows().Name(row);
    }
    return names;
}

std::size_t WindowTest::RowOf(const std::string& name)
{
    const Names names = ListNames();
    const auto row = std::find(names.begin(), names.end(), name);
    EXPECT_NE(row, names.end()) << name << " is not listed";
    return static_cast<std::size_t>(row - names.begin());
}

Names WindowTest::SelectedNames()
{
    Names names;
    for (const std::size_t row : ListSelection()) {
        names.emplace_back(ListRows().Name(row));
    }
    return names;
}

void WindowTest::SelectNames(const Names& names)
{
    UnselectAllListRows();
    for (const std::string& name : names) {
        SelectListRows(RowOf(name), RowOf(name));
    }
}

TreePath WindowTest::NodePath(const std::string& path)
{
    std::optional<GtkTreeIter> node = FindNode(path);
    EXPECT_TRUE(node.has_value()) << path << " is not in the tree";
    return TreePath(node ? gtk_tree_model_get_path(gtk_tree_view_get_model(MainTree()), &*node)
                         : gtk_tree_path_new_first());
}

Names WindowTest::ChildNames(const std::string& path)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(MainTree());
    GtkTreeIter node;
    GtkTreeIter child;
    gtk_tree_model_get_iter(model, &node, NodePath(path).get());
    Names names;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, &node); more;
         more = gtk_tree_model_iter_next(model, &child)) {
        names.push_back(GetNodeName(model, child));
    }
    return names;
}

void WindowTest::SetExpanded(const std::string& path, bool expanded)
{
    const TreePath node = NodePath(path);
    expanded ? gtk_tree_view_expand_row(MainTree(), node.get(), FALSE)
             : gtk_tree_view_collapse_row(MainTree(), node.get());
    Settle();
}

void WindowTest::ExpectNodeConsistent(const std::string& path, DiskState disk)
{
    const Names names = ChildNames(path);
    const Names on_disk = disk == DISK_AS_SHOWN ? ReadDisk(path, true) : names;
    // Of a collapsed directory it is enough to know whether there is anything to expand.
    const bool is_expanded = IsExpanded(path);
    EXPECT_TRUE(is_expanded ? names == on_disk : names.empty() == on_disk.empty()) << path << ": " << Joined(names);
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end(), std::greater_equal<>()), names.end()) << Joined(names);
    for (std::size_t i = 0; is_expanded && i < names.size(); ++i) {
        ExpectNodeConsistent(path + names[i] + "/", disk);
    }
}

void WindowTest::ExpectConsistent(DiskState disk, const std::optional<std::string>& typed, const Where& where)
{
    const ::testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "inconsistent");
    const std::string& current = pGTable->CurrentDir;
    EXPECT_TRUE(current.ends_with("/") && current.starts_with(pGTable->RootDir)) << current;
    EXPECT_EQ(TreeSelected(), current);
    EXPECT_EQ(LocationShown(), typed.value_or(DisplayText(current)));
    EXPECT_EQ(IsToolSensitive(TOOL_UP), current != pGTable->RootDir);
    EXPECT_NE(pGTable->TreeSelectSignal, 0UL);
    const Names selected = SelectedNames();
    EXPECT_TRUE(selected.empty() || selected.front() != "..");
    EXPECT_EQ(IsToolSensitive(TOOL_PROPERTY), selected.size() <= 1);
    if (disk == DISK_AS_SHOWN) {
        Names listed = ListNames();
        EXPECT_EQ(listed.empty() ? "nothing" : listed.front(), "..");
        std::sort(listed.begin(), listed.end());
        Names on_disk = ReadDisk(current, false);
        on_disk.insert(std::upper_bound(on_disk.begin(), on_disk.end(), ".."), "..");
        EXPECT_EQ(listed, on_disk);
        EXPECT_EQ(StatusShown(), ExpectedStatus(selected));
    }
    EXPECT_EQ(StatusShown(), pGTable->StatusText);
    ExpectNodeConsistent(pGTable->RootDir, disk);
}

void WindowTest::ExpectAt(const std::string& directory, const std::optional<std::string>& selected,
                          const Where& where) const
{
    const ::testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "elsewhere");
    EXPECT_EQ(pGTable->CurrentDir, files.At(directory));
    EXPECT_EQ(Joined(SelectedNames()), selected.value_or(Joined(SelectedNames())));
    ExpectConsistent(DISK_AS_SHOWN, {}, where);
}
