#include "fnkdirtree.h"

#include <algorithm>

#include "fnkdirtree-walk.h"
#include "fnkmainwindow-record.h"
#include "fnkraii.h"
#include "fnkstring.h"
#include "fnkutil-widget.h"
#include "fnkutil.h"

DirTreeEvents OnDirTree;

namespace {

/// The store's only column: bytes. The root's name is the whole RootDir, every other a single
/// component.
constexpr int kNameColumn = 0;

constexpr int kIconSpacing = 5;
/// Insets of the cells, and a little air behind the name.
constexpr int kCellInsets = 10;
constexpr const char* kFitKey = "fennick-fit";

/// What the window shows now. CurrentDir may run ahead of it: commands set it before they open it.
std::string shown_directory;

GtkTreeStore* StoreOf(GtkTreeView* tree)
{
    return GTK_TREE_STORE(gtk_tree_view_get_model(tree));
}

std::string NodeName(GtkTreeModel* model, const GtkTreeIter& node)
{
    GtkTreeIter iter = node;
    char* name = nullptr;
    gtk_tree_model_get(model, &iter, kNameColumn, &name, -1);
    const GlibPointer<char> owner(name);
    return name != nullptr ? name : "";
}

TreePath PathOf(GtkTreeView* tree, const GtkTreeIter& node)
{
    GtkTreeIter iter = node;
    return TreePath(gtk_tree_model_get_path(gtk_tree_view_get_model(tree), &iter));
}

bool HasChildren(GtkTreeView* tree, const GtkTreeIter& node)
{
    GtkTreeIter iter = node;
    return gtk_tree_model_iter_has_child(gtk_tree_view_get_model(tree), &iter);
}

/// Inserts a node behind the first so many children of parent. The store counts its way there.
GtkTreeIter InsertNode(GtkTreeStore* store, GtkTreeIter* parent, std::size_t position, const std::string& name)
{
    GtkTreeIter node;
    gtk_tree_store_insert_with_values(store, &node, parent, static_cast<int>(position), kNameColumn, name.c_str(), -1);
    return node;
}

struct ExistingChild {
    std::string name;
    GtkTreeIter node;
};

std::vector<ExistingChild> ListChildren(GtkTreeModel* model, GtkTreeIter* parent)
{
    std::vector<ExistingChild> children;
    GtkTreeIter child;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, parent); more;
         more = gtk_tree_model_iter_next(model, &child)) {
        children.push_back({NodeName(model, child), child});
    }
    return children;
}

void AddEarlyChild(GtkTreeStore* store, GtkTreeIter* parent, const std::string& name)
{
    if (name.empty()) {
        return;
    }
    const std::vector<ExistingChild> children = ListChildren(GTK_TREE_MODEL(store), parent);
    const auto place =
        std::lower_bound(children.begin(), children.end(), name,
                         [](const ExistingChild& child, const std::string& text) { return child.name < text; });
    if (place == children.end() || place->name != name) {
        InsertNode(store, parent, static_cast<std::size_t>(place - children.begin()), name);
    }
}

/// Merges found, which is sorted, into the children of parent. It goes backwards, so that a new
/// node has only old ones before it, usually none, to be counted.
void MergeChildren(GtkTreeStore* store, GtkTreeIter* parent, const std::vector<Subdirectory>& found)
{
    std::vector<ExistingChild> existing = ListChildren(GTK_TREE_MODEL(store), parent);
    for (auto child = found.rbegin(); child != found.rend(); ++child) {
        while (!existing.empty() && existing.back().name > child->name) {
            existing.pop_back();
        }
        GtkTreeIter node;
        if (!existing.empty() && existing.back().name == child->name) {
            node = existing.back().node;
            existing.pop_back();
        } else {
            node = InsertNode(store, parent, existing.size(), child->name);
        }
        AddEarlyChild(store, &node, child->early_child);
    }
}

void ExpandNode(GtkTreeView* tree, const GtkTreeIter& node)
{
    gtk_tree_view_expand_row(tree, PathOf(tree, node).get(), FALSE);
}

void EnterSelected(GtkTreeView* tree)
{
    std::string path;
    if (pGTable == nullptr || OnDirTree.Entered == nullptr || !GetTreeSelect(tree, nullptr, &path)) {
        return;
    }
    if (path == pGTable->CurrentDir && path == shown_directory) {
        return;
    }
    shown_directory = path;
    OnDirTree.Entered(path);
}

void on_DirTree_select_row(GtkTreeSelection* selection, gpointer)
{
    EnterSelected(gtk_tree_selection_get_tree_view(selection));
}

/// The picker's tree: never touches CurrentDir, which names what the file list shows.
void on_PickerTree_select_row(GtkTreeSelection* selection, gpointer combo)
{
    std::string path;
    if (GetTreeSelect(gtk_tree_selection_get_tree_view(selection), nullptr, &path)) {
        SetEntryBytes(ComboEntry(GTK_WIDGET(combo)), path);
    }
}

void SetTreeCursor(GtkTreeView* tree, const char* name)
{
    GdkWindow* const window = gtk_widget_get_window(GTK_WIDGET(tree));
    if (window == nullptr) {
        return;
    }
    GdkDisplay* const display = gdk_window_get_display(window);
    GdkCursor* cursor = name != nullptr ? gdk_cursor_new_from_name(display, name) : nullptr;
    gdk_window_set_cursor(window, cursor);
    g_clear_object(&cursor);
    gdk_display_flush(display);
}

/// Runs before the toolkit expands the node, which it then does: false.
gboolean on_DirTree_expand(GtkTreeView* tree, GtkTreeIter* node, GtkTreePath*, gpointer)
{
    if (pGTable == nullptr) {
        return TRUE;
    }
    SetTreeCursor(tree, "wait");
    CreateChildtree(tree, node);
    SetTreeCursor(tree, nullptr);
    return FALSE;
}

/// Runs before the toolkit collapses the node: a selection inside it moves up to it.
gboolean on_DirTree_collapse(GtkTreeView* tree, GtkTreeIter* node, GtkTreePath*, gpointer)
{
    if (pGTable == nullptr) {
        return FALSE;
    }
    const std::string path = GetNodePath(tree, *node);
    std::string selected;
    if (GetTreeSelect(tree, nullptr, &selected) && selected.size() > path.size() && selected.starts_with(path)) {
        const GtkTreeIter collapsing = *node;
        SetTreeSelectNode(tree, collapsing);
    }
    return FALSE;
}

int NodeWidth(GtkTreeView* tree, const TreeWalk& walk, const GtkTreeIter& node)
{
    GdkRectangle cell;
    gtk_tree_view_get_cell_area(tree, walk.PathOf(node).get(), gtk_tree_view_get_column(tree, 0), &cell);
    const std::string shown = DisplayText(NodeName(gtk_tree_view_get_model(tree), node));
    const int icon_width = gdk_pixbuf_get_width(pGTable->CloseDirPixmap);
    return cell.x + icon_width + kIconSpacing + GetTextWidth(GTK_WIDGET(tree), shown.c_str()) + kCellInsets;
}

/// Makes the column as wide as the widest row on the screen needs. All rows are of one height and
/// the column of a fixed width, or the toolkit would measure every row that is added, whether it
/// is ever seen or not: a second for ten thousand of them.
gboolean FitTreeColumn(gpointer data)
{
    GtkTreeView* const tree = GTK_TREE_VIEW(data);
    g_object_set_data(G_OBJECT(tree), kFitKey, nullptr);
    if (pGTable == nullptr) {
        return G_SOURCE_REMOVE;
    }
    const TreeWalk walk(tree);
    const std::optional<TreeWalk::Page> page = walk.VisiblePage();
    if (!page) {
        return G_SOURCE_REMOVE;
    }
    int width = 1;
    OptionalNode node = page->top;
    // One more than the page has: the last may be visible in part.
    for (int step = -1; step <= page->steps && node; ++step, node = walk.Below(*node)) {
        width = std::max(width, NodeWidth(tree, walk, *node));
    }
    gtk_tree_view_column_set_fixed_width(gtk_tree_view_get_column(tree, 0), width);
    return G_SOURCE_REMOVE;
}

void StopFitting(GtkWidget* tree, gpointer)
{
    if (const guint source = GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(tree), kFitKey)); source != 0) {
        g_source_remove(source);
        g_object_set_data(G_OBJECT(tree), kFitKey, nullptr);
    }
}

/// Connected to all that changes what is on the screen; fits once before the next picture.
void QueueFit(GtkWidget* tree)
{
    StopFitting(tree, nullptr);
    const guint source = g_idle_add_full(GTK_PRIORITY_RESIZE + 1, FitTreeColumn, tree, nullptr);
    g_object_set_data(G_OBJECT(tree), kFitKey, GUINT_TO_POINTER(source));
}

void FitToContent(GtkWidget* scroll, GtkTreeView* tree)
{
    GtkAdjustment* const vertical = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroll));
    // Its bounds change with every row that comes or goes, its value with the scrolling.
    g_signal_connect_object(vertical, "changed", G_CALLBACK(QueueFit), tree, G_CONNECT_SWAPPED);
    g_signal_connect_object(vertical, "value-changed", G_CALLBACK(QueueFit), tree, G_CONNECT_SWAPPED);
    g_signal_connect(tree, "row-expanded", G_CALLBACK(QueueFit), nullptr);
    g_signal_connect(tree, "row-collapsed", G_CALLBACK(QueueFit), nullptr);
    g_signal_connect(tree, "destroy", G_CALLBACK(StopFitting), nullptr);
}

void DrawName(GtkTreeViewColumn*, GtkCellRenderer* cell, GtkTreeModel* model, GtkTreeIter* node, gpointer)
{
    g_object_set(cell, "text", DisplayText(NodeName(model, *node)).c_str(), nullptr);
}

void AddTreeColumn(GtkTreeView* tree)
{
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    GtkCellRenderer* const icon = gtk_cell_renderer_pixbuf_new();
    g_object_set(icon, "pixbuf", pGTable->CloseDirPixmap, "pixbuf-expander-closed", pGTable->CloseDirPixmap,
                 "pixbuf-expander-open", pGTable->OpenDirPixmap, nullptr);
    gtk_tree_view_column_pack_start(column, icon, FALSE);
    GtkCellRenderer* const text = gtk_cell_renderer_text_new();
    g_object_set(text, "single-paragraph-mode", TRUE, nullptr);
    KeepRowHeight(GTK_WIDGET(tree), text);
    gtk_tree_view_column_pack_start(column, text, TRUE);
    gtk_tree_view_column_set_cell_data_func(column, text, DrawName, nullptr, nullptr);
    gtk_tree_view_column_set_spacing(column, kIconSpacing);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_append_column(tree, column);
}

GtkTreeView* NewTreeView()
{
    GtkTreeStore* const store = gtk_tree_store_new(1, G_TYPE_STRING);
    GtkWidget* const widget = CreateTreeView(_("Directory tree"));
    GtkTreeView* const tree = GTK_TREE_VIEW(widget);
    gtk_tree_view_set_model(tree, GTK_TREE_MODEL(store));
    g_object_unref(store);
    gtk_tree_view_set_headers_visible(tree, FALSE);
    gtk_tree_view_set_enable_tree_lines(tree, TRUE);
    gtk_tree_view_set_enable_search(tree, FALSE);
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(tree), GTK_SELECTION_BROWSE);
    AddTreeColumn(tree);
    gtk_tree_view_set_fixed_height_mode(tree, TRUE);
    return tree;
}

/// While it lives, selecting in the main tree has no effect; other trees are not concerned.
class SelectionPause {
public:
    explicit SelectionPause(GtkTreeView* tree) : paused_(tree == MainTree() && pGTable->TreeSelectSignal != 0)
    {
        if (paused_) {
            DisconnectTreeSelectSignal();
        }
    }
    SelectionPause(const SelectionPause&) = delete;
    SelectionPause& operator=(const SelectionPause&) = delete;
    ~SelectionPause()
    {
        if (paused_) {
            ConnectTreeSelectSignal();
        }
    }

private:
    bool paused_;
};

}  // namespace

GtkTreeView* MainTree()
{
    return pMainW != nullptr && pMainW->DirTree != nullptr ? GTK_TREE_VIEW(pMainW->DirTree) : nullptr;
}

GtkWidget* CreateRootTree(GtkWidget** scroll, GtkWidget* combo)
{
    if (scroll == nullptr) {
        return nullptr;
    }
    GtkTreeView* const tree = NewTreeView();
    *scroll = CreateScroll();
    gtk_container_add(GTK_CONTAINER(*scroll), GTK_WIDGET(tree));
    FitToContent(*scroll, tree);
    GtkTreeIter root = InsertNode(StoreOf(tree), nullptr, 0, pGTable->RootDir);
    if (CreateChildtree(tree, &root) != SCAN_DONE) {
        g_object_ref_sink(*scroll);
        gtk_widget_destroy(*scroll);
        g_object_unref(*scroll);
        *scroll = nullptr;
        return nullptr;
    }
    ExpandNode(tree, root);
    if (combo != nullptr) {
        SetEntryBytes(ComboEntry(combo), pGTable->RootDir);
        g_signal_connect(gtk_tree_view_get_selection(tree), "changed", G_CALLBACK(on_PickerTree_select_row), combo);
    }
    g_signal_connect(tree, "test-expand-row", G_CALLBACK(on_DirTree_expand), nullptr);
    g_signal_connect(tree, "test-collapse-row", G_CALLBACK(on_DirTree_collapse), nullptr);
    return GTK_WIDGET(tree);
}

GtkWidget* CreateDirTree(GtkWidget* paned)
{
    pMainW->DirTree = CreateRootTree(&pMainW->TreeScroll, nullptr);
    if (pMainW->DirTree == nullptr) {
        return nullptr;
    }
    gtk_paned_pack1(GTK_PANED(paned), pMainW->TreeScroll, FALSE, TRUE);
    pGTable->CurrentDir = pGTable->StartDir.empty() ? pGTable->RootDir : pGTable->StartDir;
    shown_directory.clear();
    SetEntryBytes(ComboEntry(pMainW->LocationCombo), pGTable->RootDir);
    ConnectTreeSelectSignal();
    return pMainW->DirTree;
}

ScanResult CreateChildtree(GtkTreeView* tree, GtkTreeIter* node)
{
    std::vector<Subdirectory> found;
    const ScanResult result = ScanSubdirectories(GetNodePath(tree, *node), found);
    if (result == SCAN_DONE) {
        MergeChildren(StoreOf(tree), node, found);
    }
    return result;
}

bool CreateTreeNode(GtkTreeView* tree, const std::string& path, GtkTreeIter* node)
{
    std::string parent = GetParentDirectory(path);
    const std::string name = GetLastPath(path);
    GtkTreeIter parent_node;
    if (name.empty() || CheckChildDirectory(path) != 0 || !GetPathNode(tree, parent, &parent_node)) {
        return false;
    }
    const std::vector<ExistingChild> children = ListChildren(GTK_TREE_MODEL(StoreOf(tree)), &parent_node);
    const auto next = std::find_if(children.begin(), children.end(),
                                   [&name](const ExistingChild& child) { return child.name > name; });
    *node = InsertNode(StoreOf(tree), &parent_node, static_cast<std::size_t>(next - children.begin()), name);
    return true;
}

std::string GetNodePath(GtkTreeView* tree, const GtkTreeIter& node)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(tree);
    std::string path = WithSlash(NodeName(model, node));
    GtkTreeIter child = node;
    GtkTreeIter parent;
    while (gtk_tree_model_iter_parent(model, &parent, &child)) {
        path.insert(0, WithSlash(NodeName(model, parent)));
        child = parent;
    }
    return path;
}

namespace {

bool FindChild(GtkTreeModel* model, GtkTreeIter* node, const std::string& name)
{
    GtkTreeIter child;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, node); more;
         more = gtk_tree_model_iter_next(model, &child)) {
        if (NodeName(model, child) == name) {
            *node = child;
            return true;
        }
    }
    return false;
}

}  // namespace

bool GetPathNode(GtkTreeView* tree, std::string& path, GtkTreeIter* node)
{
    if (!IsDirectory(path) || CheckChildDirectory(path) != 0) {
        return false;
    }
    path = WithSlash(path);
    GtkTreeModel* const model = gtk_tree_view_get_model(tree);
    GtkTreeIter reached;
    if (!gtk_tree_model_get_iter_first(model, &reached)) {
        return false;
    }
    const char* component = path.c_str() + pGTable->RootDir.size();
    for (const char* slash = CharNext(component, '/'); slash != nullptr; slash = CharNext(component, '/')) {
        if (!FindChild(model, &reached, std::string(component, slash))) {
            return false;
        }
        component = slash + 1;
    }
    *node = reached;
    return true;
}

bool GetTreeSelect(GtkTreeView* tree, GtkTreeIter* node, std::string* path)
{
    GtkTreeIter selected;
    if (tree == nullptr || !gtk_tree_selection_get_selected(gtk_tree_view_get_selection(tree), nullptr, &selected)) {
        return false;
    }
    if (node != nullptr) {
        *node = selected;
    }
    if (path != nullptr) {
        *path = GetNodePath(tree, selected);
    }
    return true;
}

void SetTreeSelectNode(GtkTreeView* tree, const GtkTreeIter& node)
{
    const TreePath path = PathOf(tree, node);
    const bool acts = tree == MainTree() && pGTable->TreeSelectSignal != 0;
    const bool was_visible = GetRowVisibility(tree, path.get()) == ROW_VISIBLE;
    {
        const SelectionPause pause(tree);
        gtk_tree_view_set_cursor(tree, path.get(), nullptr, FALSE);
    }
    if (!was_visible) {
        gtk_tree_view_scroll_to_cell(tree, path.get(), nullptr, TRUE, 0.5F, 0.0F);
    }
    if (acts) {
        EnterSelected(tree);
    }
}

void SetTreeSelectPath(GtkTreeView* tree, const std::string& path)
{
    std::string directory = path;
    GtkTreeIter node;
    if (GetPathNode(tree, directory, &node)) {
        SetTreeSelectNode(tree, node);
    }
}

namespace {

/// The node of a directory on the way down from parent, read again when the tree does not know it
/// yet: it may be younger than the tree.
bool FindOnDisk(GtkTreeView* tree, std::string& prefix, GtkTreeIter* parent, GtkTreeIter* node)
{
    if (GetPathNode(tree, prefix, node)) {
        return true;
    }
    return IsDirectory(prefix) && CreateChildtree(tree, parent) == SCAN_DONE && GetPathNode(tree, prefix, node);
}

/// Expands along path, which lies inside the root, and returns the deepest node reached.
GtkTreeIter ExpandAlong(GtkTreeView* tree, const std::string& path, ExpandLast expand_last)
{
    GtkTreeIter reached;
    gtk_tree_model_get_iter_first(gtk_tree_view_get_model(tree), &reached);
    ExpandNode(tree, reached);
    std::size_t done = std::min(pGTable->RootDir.size(), path.size());
    for (const char* slash = CharNext(path.c_str() + done, '/'); slash != nullptr;
         slash = CharNext(path.c_str() + done, '/')) {
        done = static_cast<std::size_t>(slash - path.c_str()) + 1;
        std::string prefix = path.substr(0, done);
        GtkTreeIter node;
        if (!FindOnDisk(tree, prefix, &reached, &node)) {
            break;
        }
        reached = node;
        if (done == path.size() && expand_last == EXPAND_LAST_NO) {
            break;
        }
        // A node without children cannot be expanded, but may have got some since.
        if (!HasChildren(tree, node)) {
            CreateChildtree(tree, &node);
        }
        ExpandNode(tree, node);
    }
    return reached;
}

}  // namespace

void OpenChildTree(GtkTreeView* tree, const std::string& path, ExpandLast expand_last)
{
    if (tree == nullptr || path.empty() || CheckChildDirectory(path) != 0) {
        return;
    }
    // A copy: the caller's string may be a field of the record that entering a directory changes.
    const std::string target = IsDirectory(path) ? WithSlash(path) : path;
    const bool was_shown = target == pGTable->CurrentDir && target == shown_directory;
    GtkTreeIter reached;
    {
        const SelectionPause pause(tree);
        reached = ExpandAlong(tree, target, expand_last);
    }
    SetTreeSelectNode(tree, reached);
    // Entering it would have filled the list already.
    if (was_shown && target == pGTable->CurrentDir && tree == MainTree()) {
        OnDirTree.Reopened();
    }
}

namespace {

void RemoveChildren(GtkTreeStore* store, GtkTreeIter* node)
{
    GtkTreeIter child;
    while (gtk_tree_model_iter_children(GTK_TREE_MODEL(store), &child, node)) {
        gtk_tree_store_remove(store, &child);
    }
}

/// Selects the deepest node on the way to path that is displayed, without acting on it.
void RestoreSelection(GtkTreeView* tree, const std::string& path)
{
    GtkTreeIter node;
    if (!gtk_tree_model_get_iter_first(gtk_tree_view_get_model(tree), &node)) {
        return;
    }
    std::size_t done = pGTable->RootDir.size();
    while (done < path.size() && gtk_tree_view_row_expanded(tree, PathOf(tree, node).get())) {
        const char* const slash = CharNext(path.c_str() + done, '/');
        if (slash == nullptr) {
            break;
        }
        const std::string name(path.c_str() + done, slash);
        if (!FindChild(gtk_tree_view_get_model(tree), &node, name)) {
            break;
        }
        done = static_cast<std::size_t>(slash - path.c_str()) + 1;
    }
    gtk_tree_view_set_cursor(tree, PathOf(tree, node).get(), nullptr, FALSE);
}

}  // namespace

void RescanTree(GtkTreeView* tree, const std::string& path)
{
    std::string directory = path;
    GtkTreeIter node;
    if (tree == nullptr || !GetPathNode(tree, directory, &node)) {
        return;
    }
    const SelectionPause pause(tree);
    std::string selected;
    const bool had_selection = GetTreeSelect(tree, nullptr, &selected);
    const bool was_expanded = gtk_tree_view_row_expanded(tree, PathOf(tree, node).get());
    RemoveChildren(StoreOf(tree), &node);
    CreateChildtree(tree, &node);
    if (was_expanded) {
        ExpandNode(tree, node);
    }
    if (had_selection) {
        RestoreSelection(tree, selected);
    }
}

void ConnectTreeSelectSignal()
{
    if (pGTable->TreeSelectSignal == 0) {
        pGTable->TreeSelectSignal = g_signal_connect(gtk_tree_view_get_selection(MainTree()), "changed",
                                                     G_CALLBACK(on_DirTree_select_row), nullptr);
    }
}

void DisconnectTreeSelectSignal()
{
    if (pGTable->TreeSelectSignal != 0) {
        g_signal_handler_disconnect(gtk_tree_view_get_selection(MainTree()), pGTable->TreeSelectSignal);
        pGTable->TreeSelectSignal = 0;
    }
}
