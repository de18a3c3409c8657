// The menu bar, and the tips that menus and toolbar show in the status line.

#include <set>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "language.h"
#include "windowtest.h"

namespace {

class Menus : public WindowTest {
protected:
    static std::vector<GtkWidget*> Items(GtkWidget* shell)
    {
        GList* const list = gtk_container_get_children(GTK_CONTAINER(shell));
        std::vector<GtkWidget*> items;
        for (GList* link = list; link != nullptr; link = link->next) {
            items.push_back(GTK_WIDGET(link->data));
        }
        g_list_free(list);
        return items;
    }
    static GtkWidget* Submenu(GtkWidget* item) { return gtk_menu_item_get_submenu(GTK_MENU_ITEM(item)); }
    static GtkWidget* Bar()
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_OPEN]);
        return gtk_widget_get_parent(gtk_menu_get_attach_widget(GTK_MENU(menu)));
    }
    static void Cross(GdkEventType type, GtkWidget* button)
    {
        const Event event = NewPointerEvent(gtk_button_get_event_window(GTK_BUTTON(button)), type);
        event->crossing.mode = GDK_CROSSING_NORMAL;
        event->crossing.detail = GDK_NOTIFY_ANCESTOR;
        gtk_main_do_event(event.get());
        Settle();
    }
};

class MenusInLanguage : public Menus, public ::testing::WithParamInterface<const char*> {
    ScopedLanguage language_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Every, MenusInLanguage, ::testing::ValuesIn(kLanguages),
                         [](const auto& language) { return std::string(language.param); });

TEST_P(MenusInLanguage, EveryLetterChoosesOneEntry)
{
    Start();
    std::vector<GtkWidget*> shells = {Bar(), Submenu(pMainW->MenuItem[MENU_NEW])};
    std::vector<GtkWidget*> stored;
    for (GtkWidget* const title : Items(Bar())) {
        shells.push_back(Submenu(title));
        const std::vector<GtkWidget*> items = Items(Submenu(title));
        stored.insert(stored.end(), items.begin(), items.end());
    }
    EXPECT_TRUE(std::equal(stored.begin(), stored.end(), pMainW->MenuItem.begin(), pMainW->MenuItem.end()));
    for (GtkWidget* const shell : shells) {
        std::set<guint> letters = {GDK_KEY_VoidSymbol};
        for (GtkWidget* const item : Items(shell)) {
            if (!GTK_IS_SEPARATOR_MENU_ITEM(item)) {
                const guint letter = gtk_label_get_mnemonic_keyval(GTK_LABEL(gtk_bin_get_child(GTK_BIN(item))));
                EXPECT_TRUE(letters.insert(letter).second) << gtk_menu_item_get_label(GTK_MENU_ITEM(item));
            }
        }
    }
}

TEST_F(Menus, TellWhatEntriesAndToolsDo)
{
    Make({"a/b/", "a/c", "a/d"});
    Start();
    Steps("visit a; visit a/b; back");
    Choose(MENU_SELECT_ALL);
    ExpectAt("a/", "b,c,d");
    SelectNames({"c"});
    for (const MenuEntry entry : {MENU_OPEN, MENU_SELECT_ALL}) {
        EXPECT_TRUE(IsOffered(entry));
    }
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
    GtkWidget* const new_directory = Items(Submenu(pMainW->MenuItem[MENU_NEW])).at(0);
    gtk_menu_item_select(GTK_MENU_ITEM(new_directory));
    EXPECT_EQ(StatusShown(), " Create a new directory.");
    gtk_menu_item_deselect(GTK_MENU_ITEM(new_directory));
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
