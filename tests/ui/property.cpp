// The property dialog: what it shows, and that it changes what the user changed and nothing else.

#include <unistd.h>

#include "acts.h"

namespace {

/// What can be changed, by the names that screen readers use.
const char* const kFields[] = {"File name:", "Owner",      "Group",       "User Read",   "User Write",
                               "User Exec",  "Set UID",    "Group Read",  "Group Write", "Group Exec",
                               "Set GID",    "Other Read", "Other Write", "Other Exec",  "Sticky"};

class Property : public WindowTest {
protected:
    /// Opens the dialog for these rows; for the shown directory if there are none.
    static void Open(const Names& names, const DialogActs& acts)
    {
        SelectNames(names);
        DuringDialogs([] { Choose(MENU_PROPERTY); }, acts);
    }
    /// Flips a toggle or fills an entry, and presses the button.
    static DialogAct Change(const std::string& name, const std::string& text = "")
    {
        return [=](GtkWidget* dialog) {
            GtkWidget* const widget = FindNamed(dialog, name);
            if (GTK_IS_ENTRY(widget)) {
                gtk_entry_set_text(GTK_ENTRY(widget), text.c_str());
            } else {
                gtk_button_clicked(GTK_BUTTON(widget));
            }
            PressButton("OK")(dialog);
        };
    }
    static DialogAct Rename(const std::string& name) { return Change("File name:", name); }
    /// Whether each field can be changed.
    static std::string Sensitive(GtkWidget* dialog)
    {
        std::string digits;
        for (const char* const name : kFields) {
            digits += gtk_widget_is_sensitive(FindNamed(dialog, name)) ? '1' : '0';
        }
        return digits;
    }
    mode_t Mode(const std::string& name) const { return files.Status(name).st_mode & 07777; }
};

TEST_F(Property, ShowsWhatIsKnown)
{
    Make({"file\xFF:1536", "link -> no\xFFwhere" + std::string(300, 'x')});
    files.SetMode("file\xFF", 04751);
    files.SetTimes("file\xFF", 1'000'000'000, 1'100'000'000);
    const ScopedVariable zone("TZ", "UTC");
    Start();
    Open({"file\xFF"}, {[this](GtkWidget* dialog) {
             EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(FindNamed(dialog, "File name:"))), "file\uFFFD");
             for (const char* const text :
                  {files.Path().c_str(), "1.5KByte (1536Byte)", "Sep 09 2001 01:46:40", "Nov 09 2004 11:33:20"}) {
                 EXPECT_NE(FindByText(dialog, text), nullptr) << text;
             }
             std::string ticks;
             for (const char* const name : std::vector(kFields + 3, std::end(kFields))) {
                 GtkWidget* const tick = gtk_button_get_image(GTK_BUTTON(FindNamed(dialog, name)));
                 ticks += gtk_widget_get_opacity(tick) > 0.5 ? '1' : '0';
             }
             EXPECT_EQ(ticks, "111110100010");
             SendKey(dialog, GDK_KEY_Return);  // Presses Cancel.
         }});
    const struct stat before = files.Status("link");
    Open({"link"}, {[](GtkWidget* dialog) {
             EXPECT_NE(FindByText(dialog, "Stalled link file (Exist file:no\uFFFDwhere" + std::string(300, 'x') + ")"),
                       nullptr);
             EXPECT_LT(gtk_widget_get_allocated_width(dialog), 800);
             EXPECT_EQ(Sensitive(dialog), getuid() == 0 ? "111000000000000" : "101000000000000");
             PressButton("OK")(dialog);
         }});
    EXPECT_EQ(files.Status("link").st_ctim.tv_nsec, before.st_ctim.tv_nsec) << "nothing was changed";
}

TEST_F(Property, ChangesOnlyWhatDiffers)
{
    Make({"file\xFF", "taken"});
    Start();
    // What was applied is shown although the rest is given up.
    Open({"file\xFF"}, {[](GtkWidget* dialog) {
                            PressButton("Set UID")(dialog);
                            Rename("taken")(dialog);
                        },
                        ReadBox("The specified file already exists."), PressButton("Cancel")});
    EXPECT_EQ(ListRows().Row(RowOf("file\xFF")).mode & 07777U, 04644U);
    Open({"file\xFF"}, {[](GtkWidget* dialog) {
             PressButton("Sticky")(dialog);
             Change("User Write")(dialog);
         }});
    EXPECT_EQ(Mode("file\xFF"), 05444U);
    Open({"taken"}, {[](GtkWidget* dialog) {
             PressButton("Set GID")(dialog);
             Rename("both")(dialog);
         }});
    EXPECT_EQ(Mode("both"), 02644U);
    Open({"file\xFF"}, {[this](GtkWidget* dialog) {
                            files.Remove("file\xFF");
                            Change("User Exec")(dialog);
                        },
                        ReadBox("The specified file does not exist.")});
    ExpectAt("");
}

TEST_F(Property, TurningThePageLeavesTheFocusOnTheTab)
{
    Make({"file"});
    Start();
    const auto click_tab = [](GtkWidget* book) {
        GtkAllocation tab = {};
        GtkWidget* const page = gtk_notebook_get_nth_page(GTK_NOTEBOOK(book), 1);
        gtk_widget_get_allocation(gtk_notebook_get_tab_label(GTK_NOTEBOOK(book), page), &tab);
        for (GList* each = gdk_window_peek_children(gtk_widget_get_window(book)); each != nullptr; each = each->next) {
            GdkWindow* const window = GDK_WINDOW(each->data);
            gpointer owner = nullptr;
            int x = 0, y = 0;
            gdk_window_get_user_data(window, &owner);
            gdk_window_get_position(window, &x, &y);
            if (owner == book) {
                SendButton(window, GDK_BUTTON_PRESS, tab.x + 2 - x, tab.y + 2 - y);
            }
        }
    };
    const auto turn = [&](bool by_key) {
        return [=](GtkWidget* dialog) {
            GtkWidget* const name = FindNamed(dialog, "File name:");
            GtkWidget* const book = gtk_widget_get_ancestor(name, GTK_TYPE_NOTEBOOK);
            gtk_widget_grab_focus(name);
            by_key ? SendKey(dialog, GDK_KEY_Page_Down, GDK_CONTROL_MASK) : click_tab(book);
            EXPECT_EQ(gtk_notebook_get_current_page(GTK_NOTEBOOK(book)), 1);
            EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), book);
            SendKey(dialog, GDK_KEY_Tab);
            EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(dialog)), FindNamed(dialog, "User Read"));
            SendKey(dialog, GDK_KEY_Return);  // Presses Cancel.
        };
    };
    Open({"file"}, {turn(true)});
    Open({"file"}, {turn(false)});
}

TEST_F(Property, ANewNameMustBeFree)
{
    Make({"bad\xFF", "dir/", "dangling -> dir/new"});
    Start();
    DialogActs acts;
    for (const auto& [name, message] : {std::pair(std::string("dir"), "The specified directory already exists."),
                                        {"dangling", "The specified file already exists."},
                                        {std::string(511, 'x') + "\u00e9", "Path is too long."},
                                        {"../none", "The specified path cannot be operated."}}) {
        acts.insert(acts.end(), {Rename(name), ReadBox(message)});
    }
    acts.push_back(EnterText("good"));  // The refused name has the focus and is selected.
    Open({"bad\xFF"}, acts);
    EXPECT_EQ(Joined(ListNames()), "..,dir,dangling,good");
    EXPECT_TRUE(files.Names("dir").empty());
    ExpectConsistent();
}

TEST_F(Property, TheWindowFollowsARenamedDirectory)
{
    Make({"up/shown/file", "side/"});
    Start();
    Visit("up/shown");
    Open({}, {Rename("renamed")});
    ExpectAt("up/renamed/");
    Visit("up");
    Open({"renamed"}, {Rename("../side/again")});
    ExpectAt("up/");
    Visit("side/again");
    Open({}, {Rename("../up/moved")});
    // A directory above the shown one is selected, as a drag over the tree leaves it.
    DisconnectTreeSelectSignal();
    SetTreeSelectPath(MainTree(), files.At("up/"));
    ConnectTreeSelectSignal();
    Open({}, {Rename("above")});
    ExpectAt("above/moved/");
    Visit("");
    Open({}, {[](GtkWidget* dialog) {
             EXPECT_EQ(Sensitive(dialog).front(), '0') << "the top directory keeps its name";
             SendClose(dialog);
         }});
}

TEST_F(Property, TheSuperuserChangesOwners)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs files of two users";
    }
    Make({"nobodys"});
    Require(chown(files.At("nobodys").c_str(), 54321, 0) == 0, "chown");
    Start();
    const std::string refused = "Owner/Group cannot be changed.";
    // An owner without a name: whatever else is changed, the dialog asks for one.
    Open({"nobodys"}, {Change("Set UID"), ReadBox(refused), Change("Owner", "nobody")});
    EXPECT_EQ(files.Status("nobodys").st_uid, 65534U);
    EXPECT_EQ(Mode("nobodys"), 0644U) << "the set-id bit would lend the rights of the new owner";
    Open({"nobodys"}, {Change("Group", "daemon")});
    EXPECT_EQ(files.Status("nobodys").st_gid, 1U);
}

}  // namespace
