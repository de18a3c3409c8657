// Symbolic links, from the menu to what is on the disk.

#include "acts.h"
#include "core/fnkutil.h"

namespace {

class Links : public WindowTest {
protected:
    /// Chooses the entry as a user does, who has to open the menu first.
    static bool IsOffered()
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_SYMBOLIC_LINK]);
        gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
        return gtk_widget_get_sensitive(pMainW->MenuItem[MENU_SYMBOLIC_LINK]) != FALSE;
    }
    static void MakeLink(const DialogActs& acts)
    {
        ASSERT_TRUE(IsOffered());
        DuringDialogs([] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_SYMBOLIC_LINK])); }, acts);
    }
    /// Types both texts and presses OK.
    static DialogAct Fill(const std::string& existing, const std::string& link)
    {
        return [=](GtkWidget* dialog) {
            gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, "Existing file name:")), existing.c_str());
            gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, "Symbolic link file name:")), link.c_str());
            PressButton("OK")(dialog);
        };
    }
    std::string Target(const std::string& name) const
    {
        std::string target;
        EXPECT_TRUE(ReadLink(files.At(name), target)) << name;
        return target;
    }
};

TEST_F(Links, WhatIsSelectedIsLinkedTo)
{
    files.Directory("src");
    files.File("bro\xFFken");
    files.Directory("place");
    Start();
    SelectNames({"src", "bro\xFFken"});
    EXPECT_FALSE(IsOffered());
    SelectNames({"bro\xFFken"});
    MakeLink({EnterText("place/link")});
    EXPECT_EQ(Target("place/link"), files.At("bro\xFFken")) << "the name as it is, not as it is shown";
    EXPECT_EQ(pGTable->CurrentDir, files.At("place/"));
    EXPECT_EQ(ListNames(), (Names{"..", "link"}));
    ExpectConsistent();
    // Nothing selected in the list: the directory of the tree. The "/" behind a link is none of it.
    MakeLink({EnterText("../up/")});
    EXPECT_EQ(Target("up"), files.At("place/"));
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    EXPECT_EQ(pGTable->DirHistory, History{files.Path()}) << "nothing is recorded";
    ExpectConsistent();
}

TEST_F(Links, TheTextOfTheLinkIsWhatWasTyped)
{
    files.File("dir/file");
    files.Directory("dir/sub");
    Start();
    Visit("dir");
    // From where the user is, not from where the program was started.
    MakeLink({Fill("file", "../a")});
    EXPECT_EQ(Target("a"), "file");
    MakeLink({Fill("dir//sub", files.At("b"))});
    EXPECT_EQ(Target("b"), "dir//sub/");
    ExpectConsistent();
}

TEST_F(Links, DirectoriesGetASlashAndLinksAreNotFollowed)
{
    files.File("dir/file");
    files.Link("dangling", "nowhere");
    files.Link("to-dir", "dir");
    Start();
    MakeLink({Fill("dir", "a")});
    EXPECT_EQ(Target("a"), "dir/");
    MakeLink({Fill("dangling", "b")});
    EXPECT_EQ(Target("b"), "dangling");
    MakeLink({Fill("to-dir", "c")});
    EXPECT_EQ(Target("c"), "to-dir");
    // What leads to something in its canonical form only is written so.
    MakeLink({Fill("dir/file/", "d")});
    EXPECT_EQ(Target("d"), files.At("dir/file"));
    ExpectConsistent();
}

TEST_F(Links, NothingIsReplacedAndWhatIsWrongIsSaid)
{
    files.File("file", "kept");
    files.Directory("dir");
    files.Link("dangling", "free");
    files.Link("same", "dir/same");
    const Names before = files.Names();
    Start();
    const auto refused = [](const char* existing, const char* link, const char* message) {
        MakeLink({Fill(existing, link), ReadBox(message), PressEscape()});
    };
    refused("missing", "link", "The specified file does not exist.");
    refused("", "link", "Path is too short.");
    refused("no/such", "link", "Path is inaccurate.");
    refused("/no-such-file-outside", "link", "The specified path cannot be operated.");
    refused("file", "", "Path is too short.");
    refused("file", "dir", "The specified directory already exists.");
    refused("dir", "file", "The specified file already exists.");
    refused("file", "dangling", "The specified file already exists.");
    refused("file", "same", "The specified file already exists.");
    refused("file", "no/such", "Path is inaccurate.");
    refused("file", "file/below", "Parent directory does not exist.");
    refused("file", "/link", "The specified path cannot be operated.");
    MakeLink({PressButton("Cancel")});
    const OrdinaryUser user({&files, &home});
    files.SetMode("dir", 0555);
    MakeLink({Fill("file", "dir/link"),
              ReadBox(std::string("Symbolic link has not been created.\ncause:") + g_strerror(EACCES)), SendClose});
    EXPECT_EQ(files.Names(), before);
    EXPECT_EQ(files.Contents("file"), "kept");
    EXPECT_EQ(Target("dangling"), "free");
    ExpectConsistent();
}

}  // namespace
