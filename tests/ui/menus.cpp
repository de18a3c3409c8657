// The menu bar and the tips that menus and toolbar show in the status line.

#include <algorithm>
#include <set>

#include "core/fnkstring.h"
#include "language.h"
#include "windowtest.h"

namespace {

class Menus : public WindowTest {
protected:
    /// Items of a menu or menu bar.
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
    GtkWidget* Bar() const
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_OPEN]);
        return gtk_widget_get_parent(gtk_menu_get_attach_widget(GTK_MENU(menu)));
    }
    GtkWidget* Title(std::size_t index) const { return Items(Bar()).at(index); }

    void Cross(GdkEventType type, GtkWidget* button) const
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
    std::vector<std::size_t> counts;
    for (GtkWidget* const title : Items(Bar())) {
        shells.push_back(Submenu(title));
        counts.push_back(Items(Submenu(title)).size());
    }
    EXPECT_EQ(counts, (std::vector<std::size_t>{10, 9, 1, 2, 3}));
    for (GtkWidget* const shell : shells) {
        std::set<guint> letters;
        std::set<std::string> labels;
        for (GtkWidget* const item : Items(shell)) {
            if (GTK_IS_SEPARATOR_MENU_ITEM(item)) {
                continue;
            }
            const std::string label = gtk_menu_item_get_label(GTK_MENU_ITEM(item));
            GtkWidget* const text = gtk_bin_get_child(GTK_BIN(item));
            EXPECT_NE(gtk_label_get_mnemonic_keyval(GTK_LABEL(text)), static_cast<guint>(GDK_KEY_VoidSymbol)) << label;
            EXPECT_TRUE(letters.insert(gtk_label_get_mnemonic_keyval(GTK_LABEL(text))).second) << label;
            EXPECT_TRUE(labels.insert(label).second) << label;
        }
    }
    // The stored items stand in the order of the menus.
    std::size_t stored = 0;
    for (GtkWidget* const title : Items(Bar())) {
        for (GtkWidget* const item : Items(Submenu(title))) {
            EXPECT_EQ(pMainW->MenuItem.at(stored++), item);
        }
    }
    EXPECT_EQ(stored, pMainW->MenuItem.size());
}

TEST_P(MenusInLanguage, EveryToolFitsIntoAWindowOfTheDefaultWidth)
{
    Start();
    PangoLayout* const layout = gtk_widget_create_pango_layout(pMainW->MainWindow, GetToolTipsString(0).c_str());
    const bool is_readable = pango_layout_get_unknown_glyphs_count(layout) == 0;
    g_object_unref(layout);
    if (!is_readable) {
        GTEST_SKIP() << "this machine has no letters of that language";
    }
    for (GtkWidget* const tool : pMainW->ToolButton) {
        EXPECT_TRUE(gtk_widget_get_child_visible(tool));
    }
    int narrowest = 0;
    gtk_widget_get_preferred_width(pMainW->MainWindow, &narrowest, nullptr);
    EXPECT_LE(narrowest, GTable().WindowWidth);
}

TEST_F(Menus, WithSomethingSelectedEveryEntryCanBeChosen)
{
    files.File("a");
    Start();
    SelectNames({"a"});
    for (std::size_t title = 0; title < 5; ++title) {
        gtk_menu_item_activate(GTK_MENU_ITEM(Title(title)));
    }
    for (GtkWidget* const item : pMainW->MenuItem) {
        EXPECT_TRUE(GTK_IS_SEPARATOR_MENU_ITEM(item) || gtk_widget_get_sensitive(item));
    }
    for (GtkWidget* const item : Items(Submenu(pMainW->MenuItem[MENU_NEW]))) {
        EXPECT_TRUE(gtk_widget_get_sensitive(item));
    }
    EXPECT_TRUE(IsToolSensitive(TOOL_PROPERTY));
}

TEST_F(Menus, EntriesTellWhatTheyDoWhileTheyAreHighlighted)
{
    files.File("a");
    Start();
    SelectNames({"a"});
    const std::string status = StatusShown();
    for (std::size_t i = 0; i < pMainW->MenuItem.size(); ++i) {
        GtkWidget* const item = pMainW->MenuItem[i];
        const std::string tip = GetMenuTipsString(static_cast<int>(i));
        const bool is_separator = GTK_IS_SEPARATOR_MENU_ITEM(item);
        gtk_menu_item_select(GTK_MENU_ITEM(item));
        EXPECT_EQ(StatusShown(), is_separator ? status : " " + tip) << i;
        // Without a change of selection in between, the old text is back at once.
        gtk_menu_item_deselect(GTK_MENU_ITEM(item));
        EXPECT_EQ(StatusShown(), status);
        char* const tooltip = gtk_widget_get_tooltip_text(item);
        EXPECT_EQ(tooltip != nullptr ? tooltip : "", tip);
        g_free(tooltip);
    }
    const std::vector<GtkWidget*> submenu = Items(Submenu(pMainW->MenuItem[MENU_NEW]));
    gtk_menu_item_select(GTK_MENU_ITEM(submenu.at(0)));
    EXPECT_EQ(StatusShown(), " Create a new directory.");
    gtk_menu_item_deselect(GTK_MENU_ITEM(submenu.at(0)));
    gtk_menu_item_select(GTK_MENU_ITEM(pMainW->MenuItem[MENU_DELETE]));
    EXPECT_EQ(StatusShown(), " Delete files.");
    gtk_menu_item_deselect(GTK_MENU_ITEM(pMainW->MenuItem[MENU_DELETE]));
    ExpectConsistent();
}

TEST_F(Menus, ToolButtonsTellWhatTheyDoWhileThePointerIsOverThem)
{
    files.Directory("a/b");
    Start();
    Visit("a");
    Visit("a/b");
    ClickTool(TOOL_BACK);
    const std::string status = StatusShown();
    for (const ToolSlot slot : {TOOL_BACK, TOOL_UP, TOOL_FORWARD, TOOL_RESCAN, TOOL_HOME}) {
        GtkWidget* const button = gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[slot]));
        Cross(GDK_ENTER_NOTIFY, button);
        EXPECT_EQ(StatusShown(), GetToolTipsString(slot)) << slot;
        Cross(GDK_LEAVE_NOTIFY, button);
        EXPECT_EQ(StatusShown(), status) << slot;
    }
    Cross(GDK_ENTER_NOTIFY, gtk_bin_get_child(GTK_BIN(pMainW->ToolButton[TOOL_RESCAN])));
    EXPECT_EQ(StatusShown(), "Rescan the current directory.");
    EXPECT_EQ(pMainW->ToolButton[3], gtk_widget_get_parent(pMainW->ToolButton[TOOL_BACK]));
}

TEST_F(Menus, SelectAllLeavesTheParentRowOut)
{
    for (const char* const name : {"a", "b", "c"}) {
        files.File(name);
    }
    Start();
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_SELECT_ALL]));
    EXPECT_EQ(SelectedNames(), (Names{"a", "b", "c"}));
    ExpectConsistent();
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_SELECT_ALL]));
    EXPECT_EQ(SelectedNames().size(), 3U);
}

}  // namespace
