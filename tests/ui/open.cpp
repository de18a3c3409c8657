// Opening entries: by a double click, by keys and by the menu.

#include <gdk/gdkkeysyms.h>

#include <filesystem>

#include "acts.h"
#include "core/fnkutil.h"
#include "program.h"

namespace {

using Words = std::vector<std::string>;

class Open : public WindowTest {
protected:
    /// Starts the window with programs associated with files.
    void Start()
    {
        home.File(".extension", "[Extension]\nx=" + view + "\n\n[Application]\nOther=" + other + "\n");
        WindowTest::Start();
    }
    static bool IsOpenOffered()
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_OPEN]);
        gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
        return gtk_widget_get_sensitive(pMainW->MenuItem[MENU_OPEN]) != FALSE;
    }
    static void OpenByMenu()
    {
        gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_OPEN]));
        Settle();
    }
    /// Opens the row by Return while a box is answered by its button.
    void ReturnAnswering(const std::string& name, const char* text, const char* button)
    {
        SelectNames({name});
        bool found = false;
        DuringDialog([this] { Press(GDK_KEY_Return); },
                     [&](GtkWidget* box) {
                         found = FindByText(box, text) != nullptr;
                         gtk_button_clicked(GTK_BUTTON(FindByText(box, button)));
                     });
        EXPECT_TRUE(found) << text;
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
    }

    ReportingPrograms programs;
    const std::string view = programs.Make("view");
    const std::string other = programs.Make("other");
};

TEST_F(Open, ADoubleClickReturnF3AndTheMenuDoTheSame)
{
    const std::string path = files.File("a \xFF.x");
    files.File("b");
    Start();
    DoubleClickRow("a \xFF.x");
    EXPECT_EQ(programs.Next(), (Words{view, path}));
    Press(GDK_KEY_Return);
    EXPECT_EQ(programs.Next(), (Words{view, path}));
    Press(GDK_KEY_F3);
    EXPECT_EQ(programs.Next(), (Words{view, path}));
    ASSERT_TRUE(IsOpenOffered());
    OpenByMenu();
    EXPECT_EQ(programs.Next(), (Words{view, path}));
    EXPECT_EQ(SelectedNames(), Names{"a \xFF.x"}) << "opening changes nothing here";
    ExpectConsistent();
}

TEST_F(Open, F3FollowsTheSelectionOfNowNotOfTheLastMenu)
{
    const std::string path = files.File("a.x");
    files.File("b.x");
    Start();
    SelectNames({"a.x", "b.x"});
    EXPECT_FALSE(IsOpenOffered());
    Press(GDK_KEY_F3);
    SelectNames({"a.x"});
    Press(GDK_KEY_F3);
    EXPECT_EQ(programs.Next(), (Words{view, path})) << "and nothing before";
    EXPECT_TRUE(IsOpenOffered());
    SelectNames({"a.x", "b.x"});
    Press(GDK_KEY_F3);
    SelectNames({"a.x"});
    OpenByMenu();
    EXPECT_EQ(programs.Next(), (Words{view, path}));
}

TEST_F(Open, ATreeNodeIsExpandedWhileItIsCollapsed)
{
    files.Directory("a/below");
    files.Directory("b");
    Start();
    EXPECT_FALSE(IsOpenOffered()) << "the root is expanded";
    ClickNode(files.At("a/"));
    EXPECT_TRUE(IsOpenOffered());
    Press(GDK_KEY_F3);
    EXPECT_TRUE(IsExpanded(files.At("a/")));
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    EXPECT_FALSE(IsOpenOffered());
    ClickNode(files.At("b/"));
    EXPECT_FALSE(IsOpenOffered()) << "nothing to expand";
    ExpectConsistent();
}

TEST_F(Open, DirectoriesAndLinksToThemAreEntered)
{
    files.Directory("a/below");
    files.File("a/below/file");
    files.Link("link", "a/../a/below");
    files.Link("loop", "loop");
    Start();
    SelectNames({"a"});
    Press(GDK_KEY_F3);
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    ExpectConsistent();
    Visit("");
    SelectNames({"link"});
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/below/"));
    EXPECT_EQ(SelectedNames(), Names{"file"});
    ExpectConsistent();
    // The ".." row cannot be selected, but what opens rows knows it.
    ActivateListRow(0);
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    Visit("");
    SelectNames({"loop"});
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    // A row whose file has become a directory since.
    files.File("turned.x");
    Visit("");
    std::filesystem::remove(files.At("turned.x"));
    files.Directory("turned.x");
    SelectNames({"turned.x"});
    Press(GDK_KEY_Return);
    EXPECT_EQ(pGTable->CurrentDir, files.At("turned.x/"));
    ExpectConsistent(DISK_CHANGED);
}

TEST_F(Open, WhatLeadsOutOfTheRootIsRefused)
{
    const ScratchDirectory outside;
    files.Link("out", outside.Path());
    files.Link("dots", "../" + GetLastPath(outside.Path()) + "/");
    Start();
    for (const char* const name : {"out", "dots"}) {
        ReturnAnswering(name, "The specified path cannot be operated.", "OK");
        EXPECT_EQ(pGTable->CurrentDir, files.Path());
        EXPECT_EQ(SelectedNames(), Names{name});
    }
    ExpectConsistent();
}

TEST_F(Open, TheSettingHasEveryProgramAskedFor)
{
    const std::string data = files.File("data.x");
    const std::string run = programs.Make("run", files);
    files.Link("link", "run");
    Start();
    pGTable->ConfilmExec = 1;
    ReturnAnswering("data.x", ("Execute " + view + " ?").c_str(), "No");
    ReturnAnswering("run", ("Execute " + run + " ?").c_str(), "No");
    ReturnAnswering("link", ("Execute " + run + " ?").c_str(), "Yes");
    EXPECT_EQ(programs.Next(), Words{run}) << "and nothing before";
    ReturnAnswering("data.x", ("Execute " + view + " ?").c_str(), "Yes");
    EXPECT_EQ(programs.Next(), (Words{view, data}));
    ExpectConsistent();
}

TEST_F(Open, WithoutAnAssociationAProgramIsChosen)
{
    const std::string path = files.File("README\xFF");
    Start();
    SelectNames({"README\xFF"});
    const auto press = [this] { Press(GDK_KEY_Return); };
    DuringDialog(press, [](GtkWidget* box) { SendKey(box, GDK_KEY_Return); });
    DuringDialog(press, [](GtkWidget* box) {
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(box)), "Select application");
        SendKey(box, GDK_KEY_Down);
        SendKey(box, GDK_KEY_Return);
    });
    EXPECT_EQ(programs.Next(), (Words{other, path})) << "and nothing before";
    ExpectConsistent();
}

TEST_F(Open, AnotherWindowIsAnotherProcess)
{
    Start();
    const std::string fennick = programs.Make("fennick");
    const ScopedVariable path("PATH", (programs.directory.Path() + ":/usr/bin:/bin").c_str());
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_NEW_WINDOW]));
    EXPECT_EQ(programs.Next(), Words{fennick});
    ExpectConsistent();
}

TEST_F(Open, WhatHasTooLongAPathIsRefusedInWords)
{
    std::string deep;
    while (files.At(deep).size() < kMaxPathBytes - 200) {
        deep += std::string(100, 'd') + "/";
    }
    const std::string file(210, 'f');
    const std::string directory(210, 'd');
    files.File(deep + file);
    files.Directory(deep + directory);
    Start();
    Visit(deep);
    for (const std::string& name : {file, directory}) {
        SelectNames({name});
        ASSERT_GT(ListRowPath(RowOf(name)).size(), kMaxPathBytes);
        for (const MenuEntry entry :
             {MENU_OPEN, MENU_SYMBOLIC_LINK, MENU_COPY, MENU_MOVE, MENU_DELETE, MENU_PROPERTY}) {
            DuringDialogs([entry] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[entry])); },
                          {ReadBox("Path is too long.")});
        }
    }
    EXPECT_EQ(pGTable->CurrentDir, files.At(deep));
    EXPECT_EQ(files.Names(deep), (std::vector<std::string>{directory, file}));
}

}  // namespace
