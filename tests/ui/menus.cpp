// The menu bar, and the tips that menus and toolbar show in the status line.

#include <set>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
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
}

}  // namespace
