// The directory tree: what it shows, how it is opened, collapsed and read again.

#include "acts.h"

namespace {

class Tree : public WindowTest {
protected:
    Tree()
    {
        Make({"alpha/", "Zeta/one/two/three/", "beta/x/", "beta/y/", "only-hidden/.secret/", "backup~/",
              ".hidden/below/", "only-files/file", "file", "link -> beta", "only-links/link -> ../beta"});
    }
    /// Whether the directory shown is expanded in the tree.
    std::string State() const override { return IsExpanded(pGTable->CurrentDir) ? "+" : "-"; }
};

TEST_F(Tree, OpensAPathAsFarAsItExists)
{
    Start(files.Path(), files.At("Zeta/one/two"));
    EXPECT_EQ(Joined(ChildNames(files.Path())), "Zeta,alpha,beta,only-files,only-hidden,only-links");
    EXPECT_EQ(ChildNames(files.At("beta")).size(), 1U) << "one child is enough for an expander";
    EXPECT_EQ(GetRowVisibility(MainTree(), NodePath(pGTable->CurrentDir).get()), ROW_VISIBLE);
    GdkRectangle outer = {}, inner = {};
    GtkTreeViewColumn* const column = gtk_tree_view_get_column(MainTree(), 0);
    gtk_tree_view_get_cell_area(MainTree(), NodePath(files.At("Zeta")).get(), column, &outer);
    gtk_tree_view_get_cell_area(MainTree(), NodePath(files.At("Zeta/one")).get(), column, &inner);
    EXPECT_EQ(inner.x - outer.x, 10);
    EXPECT_EQ(pGTable->LocationDirHistory, (History{files.At("Zeta/one/two/"), files.Path()}));
    ExpectAt("Zeta/one/two/");
    EXPECT_EQ(State(), "-");
    Steps(
        "open beta = beta/ - -; visit beta/ = beta/ - +; visit Zeta/one/two/three = Zeta/one/two/three/ - -;"
        "open file = . - +; visit only-files/file = only-files/ - -; open Zeta/gone/further = Zeta/ - +;"
        "open link/x = . - +; open .hidden/below = .hidden/below/ - -; open alpha// = alpha/ - -");
    const std::string root = files.Path();
    for (const std::string& path : Names{"/", root.substr(0, root.size() - 2)}) {
        OpenChildTree(MainTree(), path, EXPAND_LAST_YES);
        ExpectAt("alpha/");
    }
    // It may be younger than the tree, and its name begin as another one.
    Steps(
        "expand beta; make beta/middle/; open beta/middle = beta/middle/; make alpha/new/newer/;"
        "open alpha/new/newer = alpha/new/newer/; make be/; visit be = be/");
    Steps("node beta = beta/ -; select x; node beta = beta/ x");  // A click enters a directory once.
}

TEST_F(Tree, CollapsingMovesTheSelectionExpandingAddsAndRescanningAlsoRemoves)
{
    Start();
    // Collapsing around the selection selects the collapsed node.
    Steps(
        "visit Zeta/one/two; expand beta; collapse beta = Zeta/one/two/; collapse Zeta = Zeta/ - -;"
        "make Zeta2/below/; reread; visit Zeta2/below; expand Zeta; collapse Zeta = Zeta2/below/");
    Steps("visit beta; collapse beta; make beta/new/; remove beta/x; expand beta");
    EXPECT_EQ(Joined(ChildNames(files.At("beta"))), "new,x,y");
    RescanTree(MainTree(), pGTable->CurrentDir);
    EXPECT_EQ(Joined(ChildNames(files.At("beta"))), "new,y");
    Steps("visit beta = beta/ - +");
    // The selection stays, as far as its node is still displayed.
    Steps("visit Zeta/one; collapse beta");
    RescanTree(MainTree(), files.At("Zeta/"));
    EXPECT_TRUE(IsExpanded(files.At("Zeta")));
    ExpectAt("Zeta/one/");
    RescanTree(MainTree(), files.Path());
    EXPECT_EQ(TreeSelected(), files.At("Zeta/"));
    EXPECT_EQ(pGTable->CurrentDir, files.At("Zeta/one/")) << "no directory was entered on the way";
    Steps("visit Zeta/one = Zeta/one/; visit beta; select y");
    Ask(MENU_MOVE, {EnterText(files.At("Zeta/one"))});
    ExpectAt("Zeta/one/");
}

TEST_F(Tree, TheSelectedNameIsScrolledIntoView)
{
    const std::string deep = "level-1/level-2/level-3/level-4/level-5/level-6/level-7/level-8/level-9/level-10/";
    Make({deep + "a-name-that-is-rather-long/"});
    Start();
    GtkAdjustment* const sideways = gtk_scrollable_get_hadjustment(GTK_SCROLLABLE(MainTree()));
    GtkTreeViewColumn* const column = gtk_tree_view_get_column(MainTree(), 0);
    Visit(deep + "a-name-that-is-rather-long");
    GdkRectangle cell;
    gtk_tree_view_get_cell_area(MainTree(), NodePath(pGTable->CurrentDir).get(), column, &cell);
    const auto begin = [sideways] { return gtk_adjustment_get_value(sideways); };
    EXPECT_TRUE(Await([&] {
        const double end = begin() + gtk_adjustment_get_page_size(sideways);
        return begin() > 0 && (end >= gtk_tree_view_column_get_width(column) || begin() + 1 > cell.x);
    })) << begin()
        << ", from " << cell.x << " to " << gtk_tree_view_column_get_width(column);
    EXPECT_LE(begin(), cell.x);
    Visit("");
    EXPECT_TRUE(Await([&] { return begin() <= 40; }));
}

}  // namespace
