// The menu bar, the tips that menus and toolbar show in the status line, and colours.

#include <cstring>
#include <set>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "kit/fnkutil-color.h"
#include "language.h"
#include "windowtest.h"

namespace {

class Menus : public WindowTest {
protected:
    static void Cross(GdkEventType type, GtkWidget* button)
    {
        const Event event = NewPointerEvent(gtk_button_get_event_window(GTK_BUTTON(button)), type);
        event->crossing.mode = GDK_CROSSING_NORMAL;
        event->crossing.detail = GDK_NOTIFY_ANCESTOR;
        gtk_main_do_event(event.get());
        Settle();
    }
};

TEST_F(Menus, TellWhatEntriesAndToolsDo)
{
    Make({"a/b/", "a/c", "a/d"});
    Start();
    Steps("visit a; visit a/b; back");
    Choose(MENU_SELECT_ALL);
    ExpectAt("a/", "b,c,d");
    SelectNames({"c"});
    EXPECT_TRUE(IsOffered(MENU_OPEN) && IsOffered(MENU_SELECT_ALL));
    const std::string status = StatusShown();
    std::set<std::string> tips = {status};
    for (GtkWidget* const item : pMainW->MenuItem) {
        if (GTK_IS_SEPARATOR_MENU_ITEM(item)) {
            continue;
        }
        EXPECT_TRUE(gtk_widget_get_sensitive(item)) << gtk_menu_item_get_label(GTK_MENU_ITEM(item));
        EXPECT_NE(gtk_label_get_attributes(GTK_LABEL(gtk_bin_get_child(GTK_BIN(item)))), nullptr) << "no underline";
        gtk_menu_item_select(GTK_MENU_ITEM(item));
        EXPECT_TRUE(tips.insert(StatusShown()).second) << StatusShown();
        const GlibPointer<char> tooltip(gtk_widget_get_tooltip_text(item));
        EXPECT_EQ(StatusShown(), std::string(" ") + (tooltip != nullptr ? tooltip.get() : ""));
        gtk_menu_item_deselect(GTK_MENU_ITEM(item));
        EXPECT_EQ(StatusShown(), status);
    }
    EXPECT_EQ(tips.count(" Delete files."), 1U);
    for (const ToolSlot slot : {TOOL_BACK, TOOL_UP, TOOL_FORWARD, TOOL_RESCAN, TOOL_HOME, TOOL_PROPERTY}) {
        GtkWidget* const button = gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[slot]));
        Cross(GDK_ENTER_NOTIFY, button);
        EXPECT_TRUE(tips.insert(StatusShown()).second) << StatusShown();
        Cross(GDK_LEAVE_NOTIFY, button);
        EXPECT_EQ(StatusShown(), status) << slot;
    }
    EXPECT_EQ(tips.count("Rescan the current directory."), 1U);
    ExpectAt("a/", "c");
    for (const char* const name : {FENNICK_LANGUAGES}) {
        const ScopedLanguage language(name);
        std::set<std::pair<GtkWidget*, int>> mnemonics;
        for (GtkWidget* const item : pMainW->MenuItem) {
            const char* const label = gtk_menu_item_get_label(GTK_MENU_ITEM(item));
            const char* const mark = std::strchr(*label != '\0' ? _(label) : "", '_');
            EXPECT_TRUE(mark == nullptr ||
                        mnemonics.emplace(gtk_widget_get_parent(item), g_ascii_tolower(mark[1])).second)
                << name << " has another " << mark;
        }
        EXPECT_GT(mnemonics.size(), 15U);
    }
}

TEST_F(Menus, RunShortcutsWhileTheyAreOpen)
{
    Make({"a", "b"});
    Start();
    for (const char* const menu : {"<Alt>f", "<Alt>e", "F10"}) {
        SelectNames({});
        Press(menu);
        EXPECT_NE(gtk_grab_get_current(), nullptr) << menu;
        Press("<Control>a");
        EXPECT_EQ(gtk_grab_get_current(), nullptr) << menu;
        ExpectAt("", "a,b");
    }
}

TEST_F(Menus, NothingStartsUnderADialogEvenIfAnAssistiveProgramAsks)
{
    Make({"a/", "file"});
    Start();
    SelectNames({"file"});
    Ask(MENU_OPTION, {[](GtkWidget* dialog) {
            for (const int entry : {MENU_OPEN, MENU_COPY, MENU_DELETE, MENU_PROPERTY, MENU_SELECT_ALL, MENU_FIND_FILE,
                                    MENU_SYMBOLIC_LINK, MENU_RESCAN_DIRECTORY, MENU_OPTION, MENU_SORT_COLUMN}) {
                gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[static_cast<std::size_t>(entry)]));
                Settle();
                EXPECT_EQ(gtk_grab_get_current(), dialog) << entry;
            }
            gtk_button_clicked(GTK_BUTTON(gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[TOOL_RESCAN]))));
            gtk_tree_view_row_activated(MainList(), RowPath(1).get(), ListViewColumn(1));
            gtk_tree_selection_select_path(gtk_tree_view_get_selection(MainTree()),
                                           NodePath(pGTable->RootDir + "a").get());
            Settle();
            EXPECT_EQ(gtk_grab_get_current(), dialog);
            SendKey(dialog, GDK_KEY_Escape);
        }});
    ExpectAt("", "file");
}

}  // namespace

TEST(Colors, ChangeOnlyAsFarAsTheyCannotBeRead)
{
    for (const double light : {0.0, 0.18, 0.5, 1.0}) {
        const GdkRGBA ground = {light, light, light, 1.0};
        for (const Color& color : GTable().Colors) {
            EXPECT_GE(Contrast(ReadableColor(ShownColor(color), ground), ground), 4.5);
        }
    }
    const GdkRGBA white = {1, 1, 1, 1};
    EXPECT_EQ(ReadableColor({0, 0, 1, 1}, white).blue, 1);
    EXPECT_NEAR(Contrast(ReadableColor({1, 1, 0, 1}, white), white), 4.5, 0.1) << "no darker than it must be";
}
