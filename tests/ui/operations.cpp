// New directory, New file, Copy, Move and Delete, from the menu to what the window shows afterwards.

#include <filesystem>

#include "acts.h"

namespace {

class Operations : public WindowTest {
protected:
    void TearDown() override { ExpectConsistent(); }
    static void New(guint place, const DialogActs& acts)
    {
        GtkWidget* const menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(pMainW->MenuItem[MENU_NEW]));
        GList* const items = gtk_container_get_children(GTK_CONTAINER(menu));
        DuringDialogs([&] { gtk_menu_item_activate(GTK_MENU_ITEM(g_list_nth_data(items, place))); }, acts);
        g_list_free(items);
    }
    static void NewDirectory(const DialogActs& acts) { New(0, acts); }
    static void NewFile(const DialogActs& acts) { New(1, acts); }
    /// A command for these rows; for the shown directory if there are none.
    static void On(const Names& names, MenuEntry entry, const DialogActs& acts)
    {
        SelectNames(names);
        DuringDialogs([entry] { Choose(entry); }, acts);
        EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    }
    static void Copy(const Names& names, const DialogActs& acts) { On(names, MENU_COPY, acts); }
    static void Move(const Names& names, const DialogActs& acts) { On(names, MENU_MOVE, acts); }
    static void Delete(const Names& names, const DialogActs& acts) { On(names, MENU_DELETE, acts); }
    /// Then presses Cancel while the files are counted, on a slow disk.
    static DialogAct CancelAfter(const DialogAct& act)
    {
        return [act](GtkWidget* dialog) {
            LetRead(0);
            const auto cancel = [](gpointer) -> gboolean {
                if (pGTable->ProgressDlg == nullptr) {
                    return G_SOURCE_CONTINUE;
                }
                EXPECT_EQ(pGTable->ProgressTotal, 0);
                PressButton("Cancel")(pGTable->ProgressDlg);
                LetRead(G_MAXINT);
                return G_SOURCE_REMOVE;
            };
            g_timeout_add(5, cancel, nullptr);
            act(dialog);
        };
    }
    void ExpectListed(const std::string& directory, const std::string& names) const
    {
        EXPECT_EQ(Joined(ListNames()), names);
        ExpectAt(directory);
    }
};

TEST_F(Operations, NewEntriesAreShown)
{
    MakeMany(100, "many\xFF/");
    Start();
    Visit("many\xFF");
    NewFile({EnterText("zz")});
    EXPECT_TRUE(Await([] { return RowVisibilityOf(RowOf("zz")) == ROW_VISIBLE; }));
    EXPECT_EQ(files.Status("many\xFF/zz").st_mode & 07777U, 0644U);
    NewFile({EnterText(".hidden")});
    ExpectConsistent();
    NewFile({EnterText("../beside")});
    ExpectListed("", "..,many\xFF,beside");
    NewDirectory({EnterText("b\u00e4r")});
    EXPECT_EQ(files.Status("b\u00e4r").st_mode & 07777U, 0755U);
    ExpectAt("b\u00e4r/");
}

TEST_F(Operations, FailuresAreReported)
{
    Make({"closed/"});
    std::string deep;
    while (files.At(deep).size() < kMaxPathBytes - 200) {
        deep += std::string(100, 'd') + "/";
    }
    const std::string long_name(210, 'f');
    Make({deep + long_name});
    Start();
    NewDirectory({EnterText("/elsewhere"), ReadBox("The specified path cannot be operated."), EnterText("closed"),
                  ReadBox("The specified directory already exists.")});
    Visit(deep);
    Copy({long_name}, {ReadBox("Path is too long.")});
    // The name fits, but not the "/" behind a directory.
    NewDirectory({EnterText(std::string(kMaxPathBytes - files.At(deep).size(), 'n')), ReadBox("Path is too long.")});
    EXPECT_EQ(files.Names(deep), Names{long_name});
}

TEST_F(Operations, AFailureNamesItsCause)
{
    Start("/proc/tty", "");  // Nobody can make anything there.
    const std::string cause = std::string("\ncause:") + g_strerror(ENOENT);
    NewFile({EnterText("x"), ReadBox("Cannot create file /proc/tty/x" + cause)});
    NewDirectory({EnterText("x"), ReadBox("Cannot create directory /proc/tty/x/" + cause)});
}

TEST_F(Operations, SeveralEntriesGoIntoADirectory)
{
    Make({"a:1", "b:2", "dir/sub/c:3"});
    Start();
    // A missing directory is made, and removed again if nothing came into it.
    Move({"a", "dir"}, {CancelAfter(EnterText("new"))});
    Copy({"dir"}, {CancelAfter(EnterText("other"))});
    ExpectListed("", "..,dir,a,b");
    Copy({"dir", "a"}, {[](GtkWidget* dialog) {
             EXPECT_NE(FindByText(dialog, "Copy 2 file/directory to:"), nullptr);
             EnterText("new")(dialog);
         }});
    ExpectListed("new/", "..,dir,a");
    EXPECT_EQ(files.Status("new/dir/sub/c").st_size + files.Status("a").st_size, 4);
    // Back to where the same names are: asked once, for all.
    Make({"new/a:4", "new/b:5"});
    ClickTool(TOOL_RESCAN);
    Move({"a", "b"}, {EnterText(files.Path()), PressButton("Yes")});
    ExpectListed("", "..,dir,new,a,b");
    EXPECT_EQ(files.Contents("a") + files.Contents("b"), ".........");
    EXPECT_EQ(files.Names("new"), Names{"dir"});
    // Onto a file they would replace one another.
    Move({"dir", "b"}, {EnterText("a"), ReadBox("The specified file already exists.")});
    ExpectAt("", "dir,b");
}

TEST_F(Operations, OneEntryTakesTheNameThatItIsGiven)
{
    Make({"a\xFF:1", "up/shown/file", "up/dir/", ".hidden/"});
    Start();
    Copy({"a\xFF", "up"}, {PressButton("Cancel")});
    ExpectAt("", "up,a\xFF");
    Copy({"a\xFF"}, {EnterText("copy")});
    ExpectListed("", "..,up,a\xFF,copy");
    Move({"copy"}, {EnterText(".hidden")});
    ExpectListed(".hidden/", "..,copy");
    Visit("");
    // The window follows the shown directory.
    Visit("up/shown");
    Move({}, {EnterText(files.At("here"))});
    ExpectListed("here/", "..,file");
    Visit("up");
    Move({"dir"}, {EnterText("../here/dir")});
    ExpectAt("here/dir/");
    // To the top of the tree, where no parent can be read again.
    Move({}, {EnterText(files.Path())});
    ExpectListed("", "..,dir,here,up,a\xFF");
    Move({"dir"}, {EnterText("dir/inside"), ReadBox("Cannot move to a sub directory.")});
}

TEST_F(Operations, OneYesDeletesOneFullDirectory)
{
    Make({"a", "b", "empty/", "tree1/x", "tree2/y", "tree3/z", "tree4/z", "keep"});
    Start();
    Delete({"a", "tree1"}, {PressButton("No")});
    ExpectAt("", "tree1,a");
    Delete({"a", "tree1"}, {CancelAfter(PressButton("Yes"))});
    Delete({"a", "tree1"}, {PressButton("Yes"), PressButton("Cancel")});
    ExpectListed("", "..,empty,tree1,tree2,tree3,tree4,a,b,keep");
    Delete({"empty", "tree1", "tree2", "tree3", "a"},
           {PressButton("Yes"), PressButton("Yes"), PressButton("No"), PressButton("Yes")});
    ExpectListed("", "..,tree2,tree4,b,keep");
    Delete({"tree2", "tree4", "b"}, {PressButton("Yes"), [](GtkWidget* box) {
                                         PressButton("Do the same for the rest")(box);
                                         PressButton("Yes")(box);
                                     }});
    ExpectListed("", "..,keep");
}

TEST_F(Operations, DeletingTheShownDirectoryLeadsToItsParent)
{
    Settings("[Setting]\nConfilmDel=no\n");
    Make({"up/shown/file"});
    Start();
    Visit("up/shown");
    Delete({}, {PressButton("No")});
    ExpectAt("up/shown/");
    Delete({}, {PressButton("Yes")});
    ExpectAt("up/");
    pGTable->ShowProgress = 0;
    Delete({}, {});
    ExpectListed("", "..");
}

TEST_F(Operations, TheTopDirectoryIsNeitherCopiedNorMovedNorDeleted)
{
    Make({"dir/a"});
    Start();
    // A drag over the tree leaves a directory selected there that is not shown.
    const auto expect_offered = [](const std::string& selected_node, bool offered) {
        DisconnectTreeSelectSignal();
        SetTreeSelectPath(MainTree(), selected_node);
        ConnectTreeSelectSignal();
        for (const MenuEntry entry : {MENU_COPY, MENU_MOVE, MENU_DELETE}) {
            EXPECT_EQ(IsOffered(entry), offered) << entry;
        }
    };
    expect_offered(files.At("dir/"), false);
    expect_offered(files.Path(), false);
    Visit("dir");
    expect_offered(files.Path(), false);
    expect_offered(files.At("dir/"), true);
}

}  // namespace
