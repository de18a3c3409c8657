#include "windowtest.h"

#include <clocale>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>

#include "app/fnkmainwindow.h"
#include "app/fnktable-life.h"
#include "app/fnktable-start.h"
#include "core/fnkstring.h"
#include "core/fnkthread.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkvisit.h"
#include "model/fnkdirtree-scan.h"
#include "model/fnkfilelist-rows.h"
#include "panes/fnkdirtree-nodes.h"
#include "panes/fnkfilelist-status.h"

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

std::string Joined(const Names& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ",") + name;
    }
    return text;
}

WindowTest::~WindowTest()
{
    // Without a home nothing is written, so that most tests do not wait for the disk.
    home_variable.Set(nullptr);
    LetRead(G_MAXINT);
    TerminateGlobalTable();
    if (window_ != nullptr) {
        RunUntilQuit([this] { gtk_widget_destroy(window_); });
    }
    EXPECT_TRUE(AwaitThreads(std::chrono::seconds(10)));
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

void WindowTest::Start(const std::string& root, const std::string& start)
{
    std::setlocale(LC_ALL, "");  // Which the toolkit does only once.
    gdk_set_allowed_backends("x11");
    gtk_init(nullptr, nullptr);
    // Away from where windows open: a button that comes up under the pointer shows its tip.
    GdkDisplay* const display = gdk_display_get_default();
    gdk_device_warp(gdk_seat_get_pointer(gdk_display_get_default_seat(display)),
                    gdk_display_get_default_screen(display), 10'000, 10'000);
    // So that what an event leads to is done when it has been handled.
    g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
    is_painted_ = false;
    VisitPatience = std::chrono::seconds(20);
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
    ShowMainWindow();
    g_signal_connect_after(pMainW->FileList, "draw", G_CALLBACK(note), &is_painted_);
    EXPECT_TRUE(Await([this] { return gtk_window_is_active(GTK_WINDOW(window_)) && is_painted_; }));
    Settle();
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

void WindowTest::Steps(const std::string& text, const Where& where)
{
    std::string act, argument;
    const auto at = [this, &argument] { return files.At(argument == "." ? "" : argument); };
    const std::map<std::string, std::function<void()>> acts = {
        {"make", [&] { Make({argument}); }},
        {"remove", [&] { std::filesystem::remove_all(at()); }},
        {"visit", [&] { OpenChildTree(MainTree(), at(), EXPAND_LAST_YES); }},
        {"open", [&] { OpenChildTree(MainTree(), at(), EXPAND_LAST_NO); }},
        {"node", [&] { Click(MainTree(), NodePath(at()).get()); }},
        {"expand", [&] { SetExpanded(at(), true); }},
        {"collapse", [&] { SetExpanded(at(), false); }},
        {"select", [&] { SelectNames({argument}); }},
        {"click", [&] { ClickRow(argument); }},
        {"ctrl", [&] { ClickRow(argument, GDK_CONTROL_MASK); }},
        {"shift", [&] { ClickRow(argument, GDK_SHIFT_MASK); }},
        {"ctrl+shift", [&] { ClickRow(argument, GDK_CONTROL_MASK | GDK_SHIFT_MASK); }},
        {"double", [&] { DoubleClickRow(argument); }},
        {"title", [&] { ClickTitle(std::stoi(argument)); }},
        {"key", [&] { Press(argument.c_str()); }},
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
        const ::testing::ScopedTrace trace(where.file, where.line, step);
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

void WindowTest::ExpectNodeConsistent(const std::string& path, DiskState disk)
{
    const Names names = ChildNames(path);
    Names on_disk = names;
    if (disk == DISK_AS_SHOWN) {
        std::vector<Subdirectory> found;
        ScanSubdirectories(path, found);
        on_disk.clear();
        for (const Subdirectory& subdirectory : found) {
            on_disk.push_back(subdirectory.name);
        }
        // What is hidden may have a node because it was asked for.
        for (const std::string& name : names) {
            if (CheckFileName(name) == 0 && IsDirectory(path + name)) {
                on_disk.insert(std::lower_bound(on_disk.begin(), on_disk.end(), name), name);
            }
        }
    }
    // Of a collapsed directory it is enough to know whether there is anything to expand.
    const bool is_expanded = IsExpanded(path);
    EXPECT_TRUE(is_expanded ? names == on_disk : names.empty() == on_disk.empty()) << path << ": " << Joined(names);
    for (std::size_t i = 0; is_expanded && i < names.size(); ++i) {
        ExpectNodeConsistent(path + names[i] + "/", disk);
    }
}

void WindowTest::ExpectConsistent(DiskState disk, const std::optional<std::string>& typed, const Where& where)
{
    const ::testing::ScopedTrace trace(where.file, where.line, "inconsistent");
    const std::string& current = pGTable->CurrentDir;
    EXPECT_EQ(TreeSelected(), current);
    EXPECT_EQ(LocationShown(), typed.value_or(DisplayText(current)));
    EXPECT_EQ(IsToolSensitive(TOOL_UP), current != pGTable->RootDir);
    EXPECT_NE(pGTable->TreeSelectSignal, 0UL);
    const Names selected = SelectedNames();
    EXPECT_TRUE(selected.empty() || selected.front() != "..");
    EXPECT_EQ(IsToolSensitive(TOOL_PROPERTY), selected.size() <= 1);
    if (disk == DISK_AS_SHOWN) {
        Names listed = ListNames();
        FileRows rows;
        ReadFileRows(current, rows);
        Names on_disk = ListNames(rows);
        std::sort(listed.begin(), listed.end());
        std::sort(on_disk.begin(), on_disk.end());
        EXPECT_EQ(listed, on_disk);
        // A typed path that leads nowhere is told of.
        const std::string missing = " " + std::string(_("There is no directory %s."));
        const bool is_refused = StatusShown().starts_with(missing.substr(0, missing.find('%'))) ||
                                StatusShown() == " " + std::string(_("The specified path cannot be operated."));
        EXPECT_EQ(StatusShown() == " " + DisplayText(current), selected.empty() && !is_refused) << StatusShown();
    }
    EXPECT_EQ(StatusShown(), pGTable->StatusText);
    ExpectNodeConsistent(pGTable->RootDir, disk);
}

void WindowTest::ExpectAt(const std::string& directory, const std::optional<std::string>& selected,
                          const Where& where) const
{
    const ::testing::ScopedTrace trace(where.file, where.line, "elsewhere");
    EXPECT_EQ(pGTable->CurrentDir, files.At(directory));
    EXPECT_EQ(Joined(SelectedNames()), selected.value_or(Joined(SelectedNames())));
    ExpectConsistent(DISK_AS_SHOWN, {}, where);
}
