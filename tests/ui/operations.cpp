// New directory, New file, Copy, Move and Delete, from the menu to what the window shows afterwards.

#include "commands/fnkfilemenu-operation.h"

#include <filesystem>

#include "acts.h"
#include "commands/fnkfilemenu-new.h"

namespace {

class Operations : public WindowTest {
protected:
    void TearDown() override { ExpectConsistent(); }
    static void OpenFileMenu()
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_COPY]);
        gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
    }
    static void Choose(GtkWidget* item, const DialogActs& acts)
    {
        OpenFileMenu();
        ASSERT_TRUE(gtk_widget_is_sensitive(item));
        DuringDialogs([item] { gtk_menu_item_activate(GTK_MENU_ITEM(item)); }, acts);
    }
    static void ChooseNew(guint place, const DialogActs& acts)
    {
        GtkWidget* const menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(pMainW->MenuItem[MENU_NEW]));
        GList* const items = gtk_container_get_children(GTK_CONTAINER(menu));
        auto* const item = static_cast<GtkWidget*>(g_list_nth_data(items, place));
        g_list_free(items);
        Choose(item, acts);
    }
    static void NewDirectory(const DialogActs& acts) { ChooseNew(0, acts); }
    static void NewFile(const DialogActs& acts) { ChooseNew(1, acts); }
    /// A command for these rows; for the shown directory if there are none.
    void On(const Names& names, MenuEntry entry, const DialogActs& acts)
    {
        SelectNames(names);
        Choose(pMainW->MenuItem[entry], acts);
        EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    }
    void Copy(const Names& names, const DialogActs& acts) { On(names, MENU_COPY, acts); }
    void Move(const Names& names, const DialogActs& acts) { On(names, MENU_MOVE, acts); }
    void Delete(const Names& names, const DialogActs& acts) { On(names, MENU_DELETE, acts); }

    /// Then presses Cancel while the files are counted.
    static DialogAct CancelAfter(const DialogAct& act)
    {
        return [act](GtkWidget* dialog) {
            g_idle_add(
                [](gpointer) -> gboolean {
                    if (pGTable->ProgressDlg != nullptr) {
                        EXPECT_EQ(pGTable->ProgressTotal, 0);
                        PressButton("Cancel")(pGTable->ProgressDlg);
                    }
                    return pGTable->ProgressDlg == nullptr;
                },
                nullptr);
            act(dialog);
        };
    }
    bool Exists(const std::string& name) const { return std::filesystem::exists(files.At(name)); }
};

TEST_F(Operations, WhatIsNewIsShown)
{
    umask(022);
    for (int i = 0; i < 200; ++i) {
        files.File("many\xFF/" + std::to_string(i));
    }
    Start();
    Visit("many\xFF");
    for (const char* const name : {"zz", "00"}) {
        NewFile({EnterText(name)});
        EXPECT_TRUE(Await([&] { return RowVisibilityOf(RowOf(name)) == ROW_VISIBLE; })) << name;
    }
    NewFile({EnterText(".hidden")});
    EXPECT_EQ(files.Status("many\xFF/.hidden").st_mode & 07777U, 0644U);
    ExpectConsistent();
    NewFile({EnterText("../beside")});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(ListNames(), (Names{"..", "many\xFF", "beside"}));
    NewDirectory({[&](GtkWidget* dialog) {
        EXPECT_EQ(gtk_entry_get_text(GTK_ENTRY(gtk_window_get_focus(GTK_WINDOW(dialog)))), files.Path());
        EnterText("b\u00e4r")(dialog);
    }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("b\u00e4r/"));
    EXPECT_EQ(files.Status("b\u00e4r").st_mode & 07777U, 0755U);
    ExpectConsistent();
    NewDirectory({EnterText("../c")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("c/"));
}

TEST_F(Operations, WhatCannotBeMadeIsReported)
{
    files.File("taken", "kept");
    files.Directory("closed");
    Start();
    // A path that no command can use keeps the dialog open.
    NewDirectory({EnterText("/elsewhere"), ReadBox("The specified path cannot be operated."), EnterText(""),
                  ReadBox("Path is too short."), EnterText("closed"),
                  ReadBox("The specified directory already exists.")});
    NewFile({EnterText("given//up"), ReadBox("Path is inaccurate."), PressEscape()});
    // It appeared after the dialog was closed.
    DuringDialogs([&] { EXPECT_FALSE(CreateNewFile(files.At("taken"))); },
                  {ReadBox("Cannot create file " + files.At("taken") + "\ncause:" + g_strerror(EEXIST))});
    EXPECT_EQ(files.Contents("taken"), "kept");
    const OrdinaryUser user({&files, &home});
    files.SetMode("closed", 0555);
    const std::string cause = std::string("\ncause:") + g_strerror(EACCES);
    NewFile({EnterText("closed/x"), ReadBox("Cannot create file " + files.At("closed/x") + cause)});
    NewDirectory({EnterText("closed/x"), ReadBox("Cannot create directory " + files.At("closed/x/") + cause)});
    Move({"closed", "taken"},
         {EnterText("closed/x"), ReadBox("Cannot create directory " + files.At("closed/x") + cause)});
    EXPECT_EQ(files.Names(), (Names{"closed", "taken"}));
}

TEST_F(Operations, SeveralGoIntoADirectory)
{
    for (const char* const name : {"a", "b", "dir/sub/c"}) {
        files.File(name, name);
    }
    Start();
    // A missing directory is made, and goes again if nothing came into it.
    Move({"a", "b"}, {CancelAfter(EnterText("new"))});
    Move({"a", "b"}, {CancelAfter(EnterText("dir"))});
    EXPECT_EQ(files.Names(), (Names{"a", "b", "dir"}));
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    Copy({"dir", "a"}, {[](GtkWidget* dialog) {
             EXPECT_NE(FindByText(dialog, "Copy 2 file/directory to:"), nullptr);
             EnterText("new")(dialog);
         }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("new/"));
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "a"}));
    EXPECT_EQ(files.Contents("new/dir/sub/c") + files.Contents("a"), "dir/sub/ca");
    ExpectConsistent();
    // Back to where the same names are: asked once, for all.
    files.File("new/a", "4");
    files.File("new/b", "5");
    ClickTool(TOOL_RESCAN);
    Move({"a", "b"}, {EnterText(files.Path()), PressButton("Yes")});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(files.Contents("a") + files.Contents("b"), "45");
    EXPECT_EQ(files.Names("new"), Names{"dir"});
    ExpectConsistent();
    // Onto a file they would replace one another.
    Move({"dir", "b"}, {EnterText("a"), ReadBox("The specified file already exists.")});
    EXPECT_EQ(files.Contents("a") + files.Contents("b"), "45");
    EXPECT_EQ(SelectedNames(), (Names{"dir", "b"}));
}

TEST_F(Operations, OneTakesTheNameThatItIsGiven)
{
    files.File("a\xFF", "1");
    files.File("up/shown/file");
    files.Directory("up/dir");
    files.Directory(".hidden");
    Start();
    for (const DialogAct& give_up : {DialogAct(SendClose), PressEscape(), PressButton("Cancel")}) {
        Copy({"a\xFF", "up"}, {give_up});
        EXPECT_EQ(SelectedNames(), (Names{"up", "a\xFF"}));
    }
    Copy({"a\xFF"}, {EnterText("copy")});
    EXPECT_EQ(ListNames(), (Names{"..", "up", "a\xFF", "copy"}));
    Move({"copy"}, {EnterText("moved")});
    EXPECT_EQ(ListNames(), (Names{"..", "up", "a\xFF", "moved"}));
    EXPECT_EQ(files.Contents("moved"), "1");
    Move({"moved"}, {EnterText(".hidden")});
    EXPECT_EQ(ListNames(), (Names{"..", "up", "a\xFF"}));
    ExpectConsistent();
    // The window goes along with the shown directory.
    Visit("up/shown");
    Move({}, {EnterText(files.At("here"))});
    EXPECT_EQ(pGTable->CurrentDir, files.At("here/"));
    EXPECT_EQ(ListNames(), (Names{"..", "file"}));
    EXPECT_FALSE(Exists("up/shown"));
    ExpectConsistent();
    Visit("up");
    Move({"dir"}, {EnterText("../here/dir")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("here/dir/"));
    ExpectConsistent();
    // To the top of the tree, where no parent can be read again.
    Move({}, {EnterText(files.Path())});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "here", "up", "a\xFF"}));
    ExpectConsistent();
    Move({"dir"}, {EnterText("dir/inside"), ReadBox("Cannot move to a sub directory.")});
}

TEST_F(Operations, OneYesDeletesOneFullDirectory)
{
    for (const char* const name : {"a", "b", "tree1/x", "tree2/y", "tree3/z", "tree4/z", "keep"}) {
        files.File(name);
    }
    files.Directory("empty");
    Start();
    Delete({"a", "tree1"}, {PressButton("No")});
    EXPECT_EQ(SelectedNames(), (Names{"tree1", "a"}));
    Delete({"a", "tree1"}, {CancelAfter(PressButton("Yes"))});
    Delete({"a", "tree1"}, {PressButton("Yes"), PressButton("Cancel")});
    EXPECT_TRUE(Exists("tree1/x") && Exists("a"));
    // Each is asked about; one that is not full is not.
    Delete({"empty", "tree1", "tree2", "tree3", "a"},
           {PressButton("Yes"), PressButton("Yes"), PressButton("No"), PressButton("Yes")});
    EXPECT_EQ(ListNames(), (Names{"..", "tree2", "tree4", "b", "keep"}));
    ExpectConsistent();
    Delete({"tree2", "tree4", "b"}, {PressButton("Yes"), [](GtkWidget* box) {
                                         PressButton("Do the same for the rest")(box);
                                         PressButton("Yes")(box);
                                     }});
    EXPECT_EQ(ListNames(), (Names{"..", "keep"}));
}

TEST_F(Operations, DeletingTheShownDirectoryLeadsToItsParent)
{
    Settings("[Setting]\nConfilmDel=no\n");
    files.File("up/shown/file");
    Start();
    Visit("up/shown");
    Delete({}, {PressButton("No")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("up/shown/"));
    Delete({}, {PressButton("Yes")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("up/"));
    EXPECT_FALSE(Exists("up/shown"));
    ExpectConsistent();
    pGTable->ShowProgress = 0;
    Delete({}, {});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_TRUE(files.Names().empty());
}

TEST_F(Operations, TheTopDirectoryIsNeitherCopiedNorMovedNorDeleted)
{
    files.File("dir/a");
    Start();
    const auto sensitive = [] {
        OpenFileMenu();
        const bool copy = gtk_widget_get_sensitive(pMainW->MenuItem[MENU_COPY]);
        EXPECT_EQ(gtk_widget_get_sensitive(pMainW->MenuItem[MENU_MOVE]), copy);
        EXPECT_EQ(gtk_widget_get_sensitive(pMainW->MenuItem[MENU_DELETE]), copy);
        return copy;
    };
    // A drag over the tree leaves another directory selected there than the one that is shown.
    const auto select = [](const std::string& path) {
        DisconnectTreeSelectSignal();
        SetTreeSelectPath(MainTree(), path);
        ConnectTreeSelectSignal();
    };
    EXPECT_FALSE(sensitive());
    SelectNames({"dir"});
    EXPECT_TRUE(sensitive());
    UnselectAllListRows();
    select(files.At("dir/"));
    EXPECT_FALSE(sensitive());
    select(files.Path());
    Visit("dir");
    EXPECT_TRUE(sensitive());
    select(files.Path());
    EXPECT_FALSE(sensitive());
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_DELETE]));
    EXPECT_TRUE(Exists("dir/a"));
    select(files.At("dir/"));
}

}  // namespace
