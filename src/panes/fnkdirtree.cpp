#include "panes/fnkdirtree.h"

#include <algorithm>
#include <vector>

#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-view.h"
#include "panes/fnkdirtree-walk.h"

DirTreeEvents OnDirTree;

namespace {

void ExpandNode(GtkTreeView* tree, const GtkTreeIter& node)
{
    gtk_tree_view_expand_row(tree, TreeWalk(tree).PathOf(node).get(), FALSE);
}

void EnterSelected(GtkTreeView* tree)
{
    std::string path;
    if (pGTable == nullptr || OnDirTree.Entered == nullptr || !GetTreeSelect(tree, nullptr, &path)) {
        return;
    }
    if (path != pGTable->CurrentDir) {
        OnDirTree.Entered(path);
    }
}

void on_DirTree_select_row(GtkTreeSelection* selection, gpointer)
{
    EnterSelected(gtk_tree_selection_get_tree_view(selection));
}

/// Unlike the main tree, a picker's tree does not change CurrentDir.
void on_PickerTree_select_row(GtkTreeSelection* selection, gpointer combo)
{
    std::string path;
    if (GetTreeSelect(gtk_tree_selection_get_tree_view(selection), nullptr, &path)) {
        SetEntryBytes(ComboEntry(GTK_WIDGET(combo)), path);
    }
}

void SetMousePointer(GtkTreeView* tree, const char* name)
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

/// Reads the node's children before the toolkit expands the node. FALSE lets the toolkit go on.
gboolean on_DirTree_expand(GtkTreeView* tree, GtkTreeIter* node, GtkTreePath*, gpointer)
{
    if (pGTable == nullptr) {
        return TRUE;
    }
    SetMousePointer(tree, "wait");
    CreateChildtree(tree, node);
    SetMousePointer(tree, nullptr);
    return FALSE;
}

/// Before the toolkit collapses the node: if a node below it is selected, selects the node instead.
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

/// During its lifetime, selecting in the main tree enters no directory. Does nothing for other trees.
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
    *scroll = CreateScroll();
    GtkTreeStore* const nodes = CreateNodeStore();
    GtkTreeView* const tree = CreateNodeView(*scroll, GTK_TREE_MODEL(nodes), _("Directory tree"));
    g_object_unref(nodes);
    GtkTreeIter root = *TreeWalk(tree).Root();
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
    SetEntryBytes(ComboEntry(pMainW->LocationCombo), pGTable->RootDir);
    ConnectTreeSelectSignal();
    return pMainW->DirTree;
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
    const TreePath path = TreeWalk(tree).PathOf(node);
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

/// Finds the node of prefix, a subdirectory of parent. If there is none, reads parent again, as the
/// directory may be newer than the tree.
bool FindOrReadNode(GtkTreeView* tree, std::string& prefix, GtkTreeIter* parent, GtkTreeIter* node)
{
    if (GetPathNode(tree, prefix, node)) {
        return true;
    }
    return IsDirectory(prefix) && CreateChildtree(tree, parent) == SCAN_DONE && GetPathNode(tree, prefix, node);
}

/// Expands the tree along path, which is inside RootDir. Returns the deepest node reached.
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
        if (!FindOrReadNode(tree, prefix, &reached, &node)) {
            break;
        }
        reached = node;
        if (done == path.size() && expand_last == EXPAND_LAST_NO) {
            break;
        }
        // The toolkit does not expand a node without children, but the directory may have some by now.
        if (!TreeWalk(tree).HasChildren(node)) {
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
    // Copied, because path may refer to a field of pGTable that changes on entering a directory.
    const std::string target = IsDirectory(path) ? WithSlash(path) : path;
    const std::string shown = pGTable->CurrentDir;
    GtkTreeIter reached;
    {
        const SelectionPause pause(tree);
        reached = ExpandAlong(tree, target, expand_last);
    }
    if (tree == MainTree()) {
        ConnectTreeSelectSignal();
    }
    SetTreeSelectNode(tree, reached);
    // Entering a different directory has filled the list. If the directory is still the same, read it
    // again: commands end here and may have changed it.
    std::string selected;
    if (tree == MainTree() && GetTreeSelect(tree, nullptr, &selected) && selected == shown) {
        OnDirTree.Reopened();
    }
}

namespace {

/// Selects the deepest displayed node on the way to path. The caller holds a SelectionPause, so that
/// this enters no directory.
void RestoreSelection(GtkTreeView* tree, const std::string& path)
{
    GtkTreeIter node;
    if (!gtk_tree_model_get_iter_first(gtk_tree_view_get_model(tree), &node)) {
        return;
    }
    std::size_t done = pGTable->RootDir.size();
    while (done < path.size() && gtk_tree_view_row_expanded(tree, TreeWalk(tree).PathOf(node).get())) {
        const char* const slash = CharNext(path.c_str() + done, '/');
        if (slash == nullptr) {
            break;
        }
        const std::string name(path.c_str() + done, slash);
        if (!FindChildNode(gtk_tree_view_get_model(tree), &node, name)) {
            break;
        }
        done = static_cast<std::size_t>(slash - path.c_str()) + 1;
    }
    gtk_tree_view_set_cursor(tree, TreeWalk(tree).PathOf(node).get(), nullptr, FALSE);
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
    const bool was_expanded = gtk_tree_view_row_expanded(tree, TreeWalk(tree).PathOf(node).get());
    RemoveChildren(tree, &node);
    CreateChildtree(tree, &node);
    if (was_expanded) {
        ExpandNode(tree, node);
    }
    if (had_selection) {
        RestoreSelection(tree, selected);
    }
}

namespace {

std::vector<std::string> ListExpandedPaths(GtkTreeView* tree)
{
    std::vector<std::string> paths;
    gtk_tree_view_map_expanded_rows(
        tree,
        [](GtkTreeView* view, GtkTreePath* path, gpointer data) {
            GtkTreeIter node;
            gtk_tree_model_get_iter(gtk_tree_view_get_model(view), &node, path);
            static_cast<std::vector<std::string>*>(data)->push_back(GetNodePath(view, node));
        },
        &paths);
    return paths;
}

}  // namespace

void RebuildTree()
{
    GtkTreeView* const tree = MainTree();
    {
        const SelectionPause pause(tree);
        std::vector<std::string> expanded = ListExpandedPaths(tree);
        RescanTree(tree, pGTable->RootDir);
        for (std::string& path : expanded) {
            GtkTreeIter node;
            if (GetPathNode(tree, path, &node)) {
                ExpandNode(tree, node);
            }
        }
    }
    OpenChildTree(tree, pGTable->CurrentDir, EXPAND_LAST_NO);
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
