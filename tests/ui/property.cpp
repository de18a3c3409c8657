// The property dialog: what it shows, what it lets one change, and that it changes no more.

#include "commands/fnkfilemenu-property.h"

#include <gdk/gdkkeysyms.h>
#include <unistd.h>

#include <filesystem>

#include "acts.h"

namespace {

class Property : public WindowTest {
protected:
    static void Open() { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_PROPERTY])); }
    /// Opens the dialog for one entry of the list.
    void Open(const std::string& name, const DialogActs& acts)
    {
        SelectNames({name});
        DuringDialogs([] { Open(); }, acts);
    }
    static std::string Text(GtkWidget* dialog, const char* name)
    {
        return gtk_entry_get_text(GTK_ENTRY(FindNamed(dialog, name)));
    }
    static bool Says(GtkWidget* dialog, const std::string& text) { return FindByText(dialog, text) != nullptr; }
    static void Toggle(GtkWidget* dialog, const char* name)
    {
        GtkToggleButton* const toggle = GTK_TOGGLE_BUTTON(FindNamed(dialog, name));
        gtk_toggle_button_set_active(toggle, !gtk_toggle_button_get_active(toggle));
    }
    static void Fill(GtkWidget* dialog, const char* name, const std::string& text)
    {
        gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, name)), text.c_str());
    }
    static DialogAct Rename(const std::string& name)
    {
        return [name](GtkWidget* dialog) {
            Fill(dialog, "File name:", name);
            PressButton("OK")(dialog);
        };
    }
    mode_t Mode(const std::string& name) const { return files.Status(name).st_mode & 07777; }
};

const char* const kToggles[] = {"User Read",  "User Write", "User Exec",  "Set UID",     "Group Read", "Group Write",
                                "Group Exec", "Set GID",    "Other Read", "Other Write", "Other Exec", "Sticky"};

TEST_F(Property, ItShowsWhatThereIsToKnow)
{
    files.File("file\xFF", std::string(1536, 'x'), 0644);
    files.SetMode("file\xFF", 04755);
    files.SetTimes("file\xFF", 1'000'000'000, 1'100'000'000);
    files.Link("link", "no\xFFwhere");
    const ScopedVariable zone("TZ", "UTC");
    Start();
    Open("file\xFF", {[this](GtkWidget* dialog) {
             EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Property - file\uFFFD");
             EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(dialog)), FindByText(dialog, "Cancel"));
             EXPECT_EQ(Text(dialog, "File name:"), "file\uFFFD");
             for (const std::string& text :
                  {files.Path(), std::string("Execute file"), std::string("1.5KByte (1536Byte)"),
                   std::string("Sep 09 2001 01:46:40"), std::string("Nov 09 2004 11:33:20"), std::string("4755")}) {
                 EXPECT_TRUE(Says(dialog, text)) << text;
             }
             EXPECT_EQ(Text(dialog, "Owner"), getuid() == 0 ? "root" : Text(dialog, "Owner"));
             std::string set;
             for (const char* const name : kToggles) {
                 set += gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(FindNamed(dialog, name))) ? '1' : '0';
             }
             EXPECT_EQ(set, "111110101010");
             SendKey(dialog, GDK_KEY_Escape);
         }});
    const struct stat before = files.Status("link");
    Open("link", {[](GtkWidget* dialog) {
             EXPECT_TRUE(Says(dialog, "Stalled link file (Exist file:no\uFFFDwhere)"));
             for (const char* const name : kToggles) {
                 EXPECT_FALSE(gtk_widget_is_sensitive(FindNamed(dialog, name))) << name;
             }
             EXPECT_TRUE(gtk_widget_is_sensitive(FindNamed(dialog, "File name:")));
             EXPECT_TRUE(gtk_widget_is_sensitive(FindNamed(dialog, "Group")));
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(files.Status("link").st_ctime, before.st_ctime);
    ExpectConsistent();
}

TEST_F(Property, KeysAloneReachEveryToggle)
{
    files.File("file", "", 0644);
    Start();
    Open("file", {[](GtkWidget* dialog) {
             std::vector<GtkWidget*> reached;
             SendKey(dialog, GDK_KEY_Tab);  // From Cancel, round to the tabs.
             SendKey(dialog, GDK_KEY_Right);
             for (std::size_t i = 0; i < std::size(kToggles); ++i) {
                 SendKey(dialog, GDK_KEY_Tab);
                 EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), FindNamed(dialog, kToggles[i])) << kToggles[i];
                 if (i == 2 || i == 5) {
                     SendKey(dialog, GDK_KEY_space);
                     EXPECT_TRUE(Await([&] { return Says(dialog, i == 2 ? "0744" : "0764"); }));
                 }
             }
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(Mode("file"), 0764U);
    ExpectConsistent();
}

TEST_F(Property, OnlyWhatDiffersIsChanged)
{
    files.File("file\xFF", "text", 0644);
    files.File("other", "", 0600);
    Start();
    struct stat before = files.Status("file\xFF");
    Open("file\xFF", {[](GtkWidget* dialog) {
             Toggle(dialog, "User Exec");
             EXPECT_TRUE(Says(dialog, "0744"));
             Toggle(dialog, "User Exec");
             EXPECT_TRUE(Says(dialog, "0644"));
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(files.Status("file\xFF").st_ctim.tv_nsec, before.st_ctim.tv_nsec) << "nothing was to be done";
    Open("file\xFF", {[](GtkWidget* dialog) {
             Toggle(dialog, "User Exec");
             PressButton("Cancel")(dialog);
         }});
    EXPECT_EQ(Mode("file\xFF"), 0644U);
    Open("file\xFF", {[](GtkWidget* dialog) {
             Toggle(dialog, "User Exec");
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(Mode("file\xFF"), 0744U);
    EXPECT_EQ(ListNames(), (Names{"..", "file\xFF", "other"})) << "the name has kept its bytes";
    EXPECT_EQ(Mode("other"), 0600U);
    ExpectConsistent();
}

TEST_F(Property, ANewNameMustBeFree)
{
    files.File("bad\xFF", "text");
    files.File("taken", "kept");
    files.Directory("dir");
    files.Link("dangling", "dir/new");
    Start();
    Open("bad\xFF", {Rename("taken"), ReadBox("The specified file already exists."), Rename("dir"),
                     ReadBox("The specified directory already exists."), Rename("dangling"),
                     ReadBox("The specified file already exists."), Rename(""), ReadBox("Path is too short."),
                     Rename("."), ReadBox("The specified directory already exists."), Rename("/x"),
                     ReadBox("Path is inaccurate."), Rename("no/such"), ReadBox("Path is inaccurate."), Rename("../x"),
                     ReadBox("The specified path cannot be operated."), [](GtkWidget* dialog) {
                         GtkWidget* const entry = FindNamed(dialog, "File name:");
                         EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), entry);
                         EXPECT_TRUE(gtk_editable_get_selection_bounds(GTK_EDITABLE(entry), nullptr, nullptr));
                         Fill(dialog, "File name:", "good");
                         SendKey(dialog, GDK_KEY_Return);
                     }});
    EXPECT_EQ(ListNames(), (Names{"..", "dir", "dangling", "good", "taken"}));
    EXPECT_EQ(files.Contents("good") + files.Contents("taken"), "textkept");
    EXPECT_TRUE(files.Names("dir").empty());
    ExpectConsistent();
}

TEST_F(Property, WhatWasAppliedIsShownEvenIfTheRestIsGivenUp)
{
    files.File("file", "", 0644);
    files.File("taken");
    Start();
    Open("file", {[](GtkWidget* dialog) {
                      Toggle(dialog, "User Exec");
                      Rename("taken")(dialog);
                  },
                  ReadBox("The specified file already exists."), PressButton("Cancel")});
    EXPECT_EQ(Mode("file"), 0744U);
    EXPECT_EQ(SetPermission(ListRows().Row(RowOf("file")).mode), "-rwxr--r--");
    ExpectConsistent();
    Open("file", {PressButton("Cancel")});
    EXPECT_EQ(SelectedNames(), Names{"file"});  // Nothing was applied: nothing is read again.
}

TEST_F(Property, TheWindowFollowsARenamedDirectory)
{
    files.File("up/shown/file");
    files.Directory("up/shown/below");
    Start();
    Visit("up/shown");
    DuringDialogs([] { Open(); }, {Rename("renamed")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("up/renamed/"));
    EXPECT_EQ(ListNames(), (Names{"..", "below", "file"}));
    ExpectConsistent();
    Visit("up");
    Open("renamed", {Rename("again")});
    EXPECT_EQ(ListNames(), (Names{"..", "again"}));
    EXPECT_EQ(ChildNames(files.At("up/")), Names{"again"});
    ExpectConsistent();
    // Into another directory.
    files.Directory("side");
    ClickTool(TOOL_RESCAN);
    Visit("up/again");
    DuringDialogs([] { Open(); }, {Rename("../side/moved")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("side/moved/"));
    ExpectConsistent();
    // The top of the tree keeps its name.
    Visit("");
    DuringDialogs([] { Open(); }, {[](GtkWidget* dialog) {
                      EXPECT_FALSE(gtk_widget_is_sensitive(FindNamed(dialog, "File name:")));
                      EXPECT_TRUE(gtk_widget_is_sensitive(FindNamed(dialog, "User Read")));
                      PressButton("OK")(dialog);
                  }});
    ExpectConsistent();
}

TEST_F(Property, TheWindowFollowsADirectoryAboveIt)
{
    files.File("up/shown/file");
    Start();
    Visit("up/shown");
    // As a drag over the tree leaves it.
    DisconnectTreeSelectSignal();
    SetTreeSelectPath(MainTree(), files.At("up/"));
    ConnectTreeSelectSignal();
    DuringDialogs([] { Open(); }, {Rename("renamed")});
    EXPECT_EQ(pGTable->CurrentDir, files.At("renamed/shown/"));
    ExpectConsistent();
}

TEST_F(Property, AnOrdinaryUserChangesWhatIsTheirs)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs files of two users";
    }
    files.File("theirs", "", 0644);
    files.File("mine", "", 0644);
    Start();
    const OrdinaryUser user({&files, &home});
    {
        Require(setresuid(0, 0, 0) == 0, "setresuid");
        Require(chown(files.At("theirs").c_str(), 0, 0) == 0, "chown");
        Require(setresuid(65534, 65534, 0) == 0, "setresuid");
    }
    const auto sensitive_widgets = [](GtkWidget* dialog) {
        std::string sensitive;
        for (const char* const name : {"File name:", "Owner", "Group"}) {
            sensitive += gtk_widget_is_sensitive(FindNamed(dialog, name)) ? '1' : '0';
        }
        for (const char* const name : kToggles) {
            sensitive += gtk_widget_is_sensitive(FindNamed(dialog, name)) ? '1' : '0';
        }
        return sensitive;
    };
    Open("theirs", {[&](GtkWidget* dialog) {
             EXPECT_EQ(sensitive_widgets(dialog), "000000000000000");
             EXPECT_EQ(Text(dialog, "Owner"), "root");
             PressButton("OK")(dialog);
         }});
    Open("mine", {[&](GtkWidget* dialog) {
             EXPECT_EQ(sensitive_widgets(dialog), "101111111111111");
             Toggle(dialog, "Other Write");
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(Mode("theirs"), 0644U);
    EXPECT_EQ(Mode("mine"), 0646U);
    // It was given away while the dialog was open: said, and the rest goes on.
    Open("mine", {[&](GtkWidget* dialog) {
                      Toggle(dialog, "Other Write");
                      Require(setresuid(0, 0, 0) == 0 && chown(files.At("mine").c_str(), 0, 65534) == 0 &&
                                  setresuid(65534, 65534, 0) == 0,
                              "chown");
                      PressButton("OK")(dialog);
                  },
                  ReadBox("Permission cannot be changed."), ReadBox("Owner/Group cannot be changed.")});
    EXPECT_EQ(Mode("mine"), 0646U);
    ExpectConsistent();
}

TEST_F(Property, TheSuperUserGivesFilesAway)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the super-user may";
    }
    files.File("nobodys", "", 0755);
    files.Link("link", "nobodys");
    Require(chown(files.At("nobodys").c_str(), 54321, 0) == 0, "chown");
    Start();
    // An owner without a name: whatever else is changed, the dialog asks for one.
    Open("nobodys", {[](GtkWidget* dialog) {
                         EXPECT_EQ(Text(dialog, "Owner"), "");
                         EXPECT_EQ(Text(dialog, "Group"), "root");
                         Toggle(dialog, "Set UID");
                         PressButton("OK")(dialog);
                     },
                     ReadBox("Owner/Group cannot be changed."),
                     [](GtkWidget* dialog) {
                         Fill(dialog, "Owner", "no such user");
                         PressButton("OK")(dialog);
                     },
                     ReadBox("Owner/Group cannot be changed."),
                     [](GtkWidget* dialog) {
                         Fill(dialog, "Owner", "nobody");
                         PressButton("OK")(dialog);
                     }});
    EXPECT_EQ(files.Status("nobodys").st_uid, 65534U);
    EXPECT_EQ(Mode("nobodys"), 04755U) << "both were asked for";
    Open("link", {[](GtkWidget* dialog) {
             Fill(dialog, "Owner", "nobody");
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(files.Status("link").st_uid, 65534U);
    EXPECT_EQ(Mode("nobodys"), 04755U);
    ExpectConsistent();
}

TEST_F(Property, WhatVanishedHasNoProperties)
{
    files.File("a");
    files.File("b");
    Start();
    SelectNames({"a", "b"});
    EXPECT_FALSE(IsToolSensitive(TOOL_PROPERTY));
    SelectNames({"a"});
    EXPECT_TRUE(IsToolSensitive(TOOL_PROPERTY));
    files.Remove("a");
    EXPECT_EQ(CreatePropertyDlg(), kArgumentError);
    SelectNames({"b"});
    DuringDialogs([this] { ClickTool(TOOL_PROPERTY); }, {[this](GtkWidget* dialog) {
                                                             files.Remove("b");
                                                             Toggle(dialog, "User Exec");
                                                             PressButton("OK")(dialog);
                                                         },
                                                         ReadBox("The specified file does not exist.")});
    EXPECT_EQ(ListNames(), Names{".."});
    ExpectConsistent();
}

}  // namespace
