// New directory, New file, Copy and Move, from the menu to what the window shows afterwards.

#include "commands/fnkfilemenu-operation.h"

#include <filesystem>

#include "acts.h"
#include "commands/fnkfilemenu-new.h"

namespace {

class Operations : public WindowTest {
protected:
    /// Chooses an entry of the File menu as a user does, who has to open the menu first.
    static void Choose(GtkWidget* item)
    {
        OpenFileMenu();
        ASSERT_TRUE(gtk_widget_is_sensitive(item));
        gtk_menu_item_activate(GTK_MENU_ITEM(item));
    }
    static void OpenFileMenu()
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_COPY]);
        gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
    }
    static void Choose(MenuEntry entry) { Choose(pMainW->MenuItem[entry]); }
    static void ChooseNew(int place)
    {
        GtkWidget* const menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(pMainW->MenuItem[MENU_NEW]));
        GList* const items = gtk_container_get_children(GTK_CONTAINER(menu));
        auto* const item = static_cast<GtkWidget*>(g_list_nth_data(items, static_cast<guint>(place)));
        g_list_free(items);
        Choose(item);
    }
    static void NewDirectory() { ChooseNew(0); }
    static void NewFile() { ChooseNew(1); }
    static void Copy() { Choose(MENU_COPY); }
    static void Move() { Choose(MENU_MOVE); }

    bool Exists(const std::string& name) const { return std::filesystem::exists(files.At(name)); }
};

TEST_F(Operations, ANewDirectoryIsMadeWhereTheUserIsAndEntered)
{
    files.Directory("a");
    Start();
    Visit("a");
    DuringDialogs(NewDirectory, {[&](GtkWidget* dialog) {
                      EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Create a new directory");
                      EXPECT_NE(FindByText(dialog, "New directory name:"), nullptr);
                      GtkWidget* const entry = gtk_window_get_focus(GTK_WINDOW(dialog));
                      EXPECT_EQ(gtk_entry_get_text(GTK_ENTRY(entry)), files.At("a/"));
                      EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(dialog)), FindByText(dialog, "Cancel"));
                      EnterText("b\xC3\xA4r")(dialog);
                  }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/b\xC3\xA4r/"));
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(files.Status("a/b\xC3\xA4r").st_mode & 07777U, 0775U & ~mask);
    ExpectConsistent();
    DuringDialogs(NewDirectory, {EnterText("../c")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/c/"));
    DuringDialogs(NewDirectory, {EnterText(files.At("d"))});
    EXPECT_EQ(pGTable->CurrentDir, files.At("d/"));
    ExpectConsistent();
}

TEST_F(Operations, WhatCannotBeMadeIsSaidAndNothingChanges)
{
    files.File("taken", "kept");
    files.Directory("closed");
    Start();
    // A path that no command could use keeps the dialog open, to be typed anew.
    DuringDialogs(NewDirectory,
                  {EnterText("/elsewhere"), ReadBox("The specified path cannot be operated."), EnterText("no/such"),
                   ReadBox("Path is inaccurate."), EnterText(""), ReadBox("Path is too short."), EnterText("closed"),
                   ReadBox("The specified directory already exists.")});
    DuringDialogs(NewFile, {EnterText("taken"), ReadBox("The specified file already exists.")});
    DuringDialogs(NewFile, {EnterText("given//up"), ReadBox("Path is inaccurate."), PressEscape()});
    DuringDialogs(NewFile, {SendClose});
    // It appeared since the dialog was closed.
    DuringDialogs([&] { EXPECT_FALSE(CreateNewFile(files.At("taken"))); },
                  {ReadBox("Cannot create file " + files.At("taken") + "\ncause:" + g_strerror(EEXIST))});
    EXPECT_EQ(files.Contents("taken"), "kept");
    const OrdinaryUser user({&files, &home});
    files.SetMode("closed", 0555);
    const std::string cause = std::string("\ncause:") + g_strerror(EACCES);
    DuringDialogs(NewFile, {EnterText("closed/x"), ReadBox("Cannot create file " + files.At("closed/x") + cause)});
    DuringDialogs(NewDirectory,
                  {EnterText("closed/x"), ReadBox("Cannot create directory " + files.At("closed/x/") + cause)});
    EXPECT_EQ(files.Names(), (Names{"closed", "taken"}));
    ExpectConsistent();
}

TEST_F(Operations, ANewFileComesIntoViewUnlessItIsHidden)
{
    for (int i = 0; i < 200; ++i) {
        files.File("many\xFF/" + std::to_string(i));
    }
    Start();
    Visit("many\xFF");
    DuringDialogs(NewFile, {EnterText("zz")});
    EXPECT_EQ(files.Status("many\xFF/zz").st_size, 0);
    EXPECT_TRUE(Await([&] { return RowVisibilityOf(RowOf("zz")) == ROW_VISIBLE; }));
    DuringDialogs(NewFile, {EnterText("00")});
    EXPECT_TRUE(Await([&] { return RowVisibilityOf(RowOf("00")) == ROW_VISIBLE; }));
    DuringDialogs(NewFile, {EnterText(".hidden")});
    EXPECT_TRUE(Exists("many\xFF/.hidden"));
    ExpectConsistent();
    // In another directory it is shown there.
    DuringDialogs(NewFile, {EnterText("../beside")});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(ListNames(), (Names{"..", "many\xFF", "beside"}));
    ExpectConsistent();
}

TEST_F(Operations, SeveralGoIntoADirectoryWhichIsMadeWhenItIsMissing)
{
    files.File("a", "1");
    files.File("b", "2");
    files.File("dir/sub/c", "3");
    Start();
    SelectNames({"dir", "a", "b"});
    DuringDialogs(Copy, {[](GtkWidget* dialog) {
                      EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Copy");
                      EXPECT_NE(FindByText(dialog, "Copy 3 file/directory to:"), nullptr);
                      EnterText("new")(dialog);
                  }});
    EXPECT_EQ(pGTable->CurrentDir, files.At("new/"));
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "a", "b"}));
    EXPECT_EQ(files.Contents("new/dir/sub/c"), "3");
    EXPECT_EQ(files.Contents("a"), "1");
    ExpectConsistent();
    // Back to where the same names are: asked once, for all.
    SelectNames({"a", "b"});
    files.File("new/a", "4");
    files.File("new/b", "5");
    DuringDialogs(Move, {EnterText(files.Path()), PressButton("Yes")});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(files.Contents("a") + files.Contents("b"), "45");
    EXPECT_EQ(files.Names("new"), Names{"dir"});
    ExpectConsistent();
    // Onto a file they would replace one another.
    SelectNames({"dir", "b"});
    DuringDialogs(Move, {EnterText("a"), ReadBox("The specified file already exists.")});
    EXPECT_EQ(files.Contents("a") + files.Contents("b"), "45");
    EXPECT_EQ(SelectedNames(), (Names{"dir", "b"}));
    ExpectConsistent();
}

TEST_F(Operations, WhatGoesWhereNothingIsShownIsGoneFromTheList)
{
    files.File("a", "1");
    files.File("b", "2");
    files.Directory(".hidden");
    Start();
    SelectNames({"a"});
    DuringDialogs(Move, {EnterText(".hidden")});
    EXPECT_EQ(files.Contents(".hidden/a"), "1");
    EXPECT_EQ(ListNames(), (Names{"..", "b"}));
    ExpectConsistent();
}

TEST_F(Operations, ADirectoryMadeForNothingGoesAgain)
{
    files.File("a", "1");
    files.File("b", "2");
    Start();
    SelectNames({"a", "b"});
    const auto type_and_cancel = [](GtkWidget* dialog) {
        // Its turn comes while the files are counted.
        g_idle_add(
            [](gpointer) -> gboolean {
                if (pGTable->ProgressDlg == nullptr) {
                    return G_SOURCE_CONTINUE;
                }
                gtk_button_clicked(GTK_BUTTON(FindByText(pGTable->ProgressDlg, "Cancel")));
                return G_SOURCE_REMOVE;
            },
            nullptr);
        EnterText("new")(dialog);
    };
    DuringDialogs(Move, {type_and_cancel});
    EXPECT_EQ(files.Names(), (Names{"a", "b"}));
    ExpectConsistent();
}

TEST_F(Operations, ADirectoryForSeveralThatCannotBeMadeStopsThem)
{
    files.File("a");
    files.File("b");
    files.Directory("closed");
    Start();
    const OrdinaryUser user({&files, &home});
    files.SetMode("closed", 0555);
    SelectNames({"a", "b"});
    DuringDialogs(Move, {EnterText("closed/x"),
                         ReadBox("Cannot create directory " + files.At("closed/x") + "\ncause:" + g_strerror(EACCES))});
    EXPECT_EQ(files.Names(), (Names{"a", "b", "closed"}));
    ExpectConsistent();
}

TEST_F(Operations, OneTakesTheNameThatItIsGiven)
{
    files.File("a\xFF", "1");
    files.File("up/shown/file");
    Start();
    SelectNames({"a\xFF"});
    DuringDialogs(Copy, {EnterText("copy")});
    EXPECT_EQ(ListNames(), (Names{"..", "up", "a\xFF", "copy"}));
    EXPECT_EQ(files.Contents("copy"), "1");
    ExpectConsistent();
    SelectNames({"copy"});
    DuringDialogs(Move, {EnterText("moved")});
    EXPECT_EQ(ListNames(), (Names{"..", "up", "a\xFF", "moved"}));
    ExpectConsistent();
    // The directory that is shown: the window goes along.
    Visit("up/shown");
    DuringDialogs(Move, {EnterText(files.At("here"))});
    EXPECT_EQ(pGTable->CurrentDir, files.At("here/"));
    EXPECT_EQ(ListNames(), (Names{"..", "file"}));
    EXPECT_FALSE(Exists("up/shown"));
    ExpectConsistent();
    // To the top of the tree, where no parent can be read anew.
    files.Directory("up/dir");
    Visit("up");
    SelectNames({"dir"});
    DuringDialogs(Move, {EnterText(files.Path())});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "here", "up", "a\xFF", "moved"}));
    ExpectConsistent();
    // Into itself: refused by the engine.
    SelectNames({"dir"});
    DuringDialogs(Move, {EnterText("dir/inside"), ReadBox("Cannot move to a sub directory.")});
    EXPECT_TRUE(Exists("dir"));
    ExpectConsistent();
}

TEST_F(Operations, GivingUpChangesNothing)
{
    files.File("a");
    files.File("b");
    files.Directory("dir");
    Start();
    SelectNames({"a", "b"});
    for (const DialogAct& act : {DialogAct(SendClose), PressEscape(), PressButton("Cancel")}) {
        DuringDialogs(Copy, {act});
        DuringDialogs(Move, {act});
        EXPECT_EQ(SelectedNames(), (Names{"a", "b"}));
    }
    // Cancel while the files are counted: its turn comes when the dialog is painted first.
    DuringDialogs(Move, {[](GtkWidget* dialog) {
                      g_idle_add(
                          [](gpointer) -> gboolean {
                              if (pGTable->ProgressDlg != nullptr) {
                                  gtk_button_clicked(GTK_BUTTON(FindByText(pGTable->ProgressDlg, "Cancel")));
                                  return G_SOURCE_REMOVE;
                              }
                              return G_SOURCE_CONTINUE;
                          },
                          nullptr);
                      EnterText("dir")(dialog);
                  }});
    EXPECT_EQ(files.Names(), (Names{"a", "b", "dir"}));
    EXPECT_TRUE(files.Names("dir").empty());
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    ExpectConsistent();
}

TEST_F(Operations, ALongNameLosesItsMiddleInThePrompt)
{
    const std::string name(250, 'n');
    files.File(name);
    Start();
    SelectNames({name});
    DuringDialogs(Copy, {[&](GtkWidget* dialog) {
                      GtkWidget* const prompt = FindByText(dialog, "Copy " + name + " file to:");
                      ASSERT_NE(prompt, nullptr);
                      EXPECT_TRUE(pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(prompt))));
                      EXPECT_LT(gtk_widget_get_allocated_width(dialog), 800);
                      SendKey(dialog, GDK_KEY_Escape);
                  }});
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
    EXPECT_FALSE(sensitive());
    SelectNames({"dir"});
    EXPECT_TRUE(sensitive());
    UnselectAllListRows();
    EXPECT_FALSE(sensitive());
    Visit("dir");
    EXPECT_TRUE(sensitive());
    // As a drag over the tree leaves it.
    DisconnectTreeSelectSignal();
    SetTreeSelectPath(MainTree(), pGTable->RootDir);
    ConnectTreeSelectSignal();
    EXPECT_FALSE(sensitive());
    EXPECT_EQ(pGTable->CurrentDir, files.Path() + "dir/");
}

/// Opens the popup as a release of the button over the list does, and then does something.
PopupChoice ChooseFromPopup(const std::function<void(GtkWidget*)>& act)
{
    struct Waiting {
        const std::function<void(GtkWidget*)>& act;
        bool done = false;
    } waiting{act};
    const guint source = g_timeout_add(
        1,
        [](gpointer data) -> gboolean {
            auto* const now = static_cast<Waiting*>(data);
            GtkWidget* const menu = gtk_grab_get_current();
            if (menu == nullptr || !GTK_IS_MENU(menu) || !gtk_widget_get_mapped(menu)) {
                return G_SOURCE_CONTINUE;
            }
            now->done = true;
            now->act(menu);
            return G_SOURCE_REMOVE;
        },
        &waiting);
    const Event event = NewPointerEvent(gtk_tree_view_get_bin_window(MainList()), GDK_BUTTON_RELEASE);
    event->button.time = GDK_CURRENT_TIME;
    event->button.button = GDK_BUTTON_PRIMARY;
    const PopupChoice choice = CreateFileOperationPopup(event.get());
    if (!waiting.done) {
        ADD_FAILURE() << "no menu came up";
        g_source_remove(source);
    }
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    return choice;
}

TEST_F(Operations, ThePopupIsAnsweredByALetter)
{
    Start();
    const auto key = [](guint value) {
        return [value](GtkWidget* menu) { SendKey(gtk_widget_get_toplevel(menu), value); };
    };
    EXPECT_EQ(ChooseFromPopup(key(GDK_KEY_c)), POPUP_COPY);
    EXPECT_EQ(ChooseFromPopup(key(GDK_KEY_m)), POPUP_MOVE);
    EXPECT_EQ(ChooseFromPopup(key(GDK_KEY_Escape)), POPUP_NOTHING);
    EXPECT_EQ(ChooseFromPopup([](GtkWidget* menu) { gtk_menu_shell_deactivate(GTK_MENU_SHELL(menu)); }), POPUP_NOTHING);
    ExpectConsistent();
}

}  // namespace
