// All dialogs: every text comes from the catalogue, and the window below takes no input. The
// catalogue used here marks the end of each line of its texts.

#include <set>

#include "acts.h"
#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "language.h"

namespace {

constexpr const char* kMark = "\u00a4";

class Languages : public WindowTest {
protected:
    static void LookAt(GtkWidget* widget)
    {
        if (GTK_IS_WINDOW(widget)) {
            Take(gtk_window_get_title(GTK_WINDOW(widget)));
        } else if (GTK_IS_LABEL(widget)) {
            Take(gtk_label_get_text(GTK_LABEL(widget)));
        } else if (GTK_IS_TREE_VIEW(widget) || GTK_IS_ENTRY(widget) || GTK_IS_TOGGLE_BUTTON(widget)) {
            Take(atk_object_get_name(gtk_widget_get_accessible(widget)));
        } else if (GTK_IS_MENU_ITEM(widget) && gtk_menu_item_get_submenu(GTK_MENU_ITEM(widget)) != nullptr) {
            LookAt(gtk_menu_item_get_submenu(GTK_MENU_ITEM(widget)));
        }
        Take(GlibPointer<char>(gtk_widget_get_tooltip_text(widget)).get());
        if (GTK_IS_CONTAINER(widget)) {
            gtk_container_forall(
                GTK_CONTAINER(widget), [](GtkWidget* child, gpointer) { LookAt(child); }, nullptr);
        }
    }
    /// Tab reaches every control, and each that it stops at has a name.
    static void Tour(GtkWidget* dialog)
    {
        std::set<GtkWidget*> stops;
        do {
            SendKey(dialog, GDK_KEY_Tab);
            GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(dialog));
            const char* const name = atk_object_get_name(gtk_widget_get_accessible(focus));
            EXPECT_TRUE(name != nullptr && *name != '\0')
                << gtk_window_get_title(GTK_WINDOW(dialog)) << ": a " << G_OBJECT_TYPE_NAME(focus) << " without a name";
        } while (stops.insert(gtk_window_get_focus(GTK_WINDOW(dialog))).second);
        GtkWidget* const missed = FindWidget(dialog, [&stops](GtkWidget* one) {
            const bool is_control =
                GTK_IS_BUTTON(one) || GTK_IS_ENTRY(one) ||
                (GTK_IS_TREE_VIEW(one) && gtk_widget_get_can_focus(one));  // Others get their keys from the window.

            return is_control && gtk_widget_get_mapped(one) && gtk_widget_is_sensitive(one) && !stops.contains(one);
        });
        EXPECT_EQ(missed, nullptr) << gtk_window_get_title(GTK_WINDOW(dialog)) << ": a " << G_OBJECT_TYPE_NAME(missed);
    }
    static DialogAct Look(const DialogAct& act = SendClose)
    {
        return [act](GtkWidget* dialog) {
            LookAt(dialog);
            Tour(dialog);
            if (GtkWidget* const book =
                    FindWidget(dialog, [](GtkWidget* one) { return GTK_IS_NOTEBOOK(one) != FALSE; })) {
                for (int page = gtk_notebook_get_n_pages(GTK_NOTEBOOK(book)); page-- > 0;) {
                    gtk_notebook_set_current_page(GTK_NOTEBOOK(book), page);
                    Tour(dialog);
                }
            }
            act(dialog);
        };
    }
    static DialogAct PressMarked(const std::string& label)
    {
        return [label](GtkWidget* dialog) { PressButton((label + kMark).c_str())(dialog); };
    }
    /// What is shown without the mark is a name, a path, a date or a mode.
    static void Take(const char* text)
    {
        constexpr const char* kNoWords = R"(^[^A-Za-z]*$|/|\d\d:\d\d|^[-rwx]{10}$|^Fennick$|\xc2\xa4)";
        EXPECT_TRUE(text == nullptr || g_regex_match_simple(kNoWords, text, G_REGEX_RAW, {})) << text;
    }

private:
    ScopedLanguage language_{"xx", FENNICK_MARKED_CATALOGUES};
};

TEST_F(Languages, EverythingThatIsShownComesFromTheCatalogue)
{
    home.File(".extension", "[Application]\n1=1\n");
    Make({"1", "2/3/"});
    Start();
    SelectNames({"1"});
    LookAt(pMainW->MainWindow);
    for (const MenuEntry entry : {MENU_MOVE, MENU_PROPERTY, MENU_SELECT_FILES, MENU_SYMBOLIC_LINK, MENU_OPTION,
                                  MENU_SORT_COLUMN, MENU_FILTER_VIEW, MENU_ABORT}) {
        Ask(entry, {Look([](GtkWidget* dialog) {
                EXPECT_FALSE(gtk_widget_is_sensitive(pMainW->FileList));
                EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), Window());
                SendKey(pMainW->MainWindow, GDK_KEY_Tab);  // Goes to the dialog.
                SendClose(dialog);
            })});
        EXPECT_EQ(SelectedNames(), Names{"1"});
        EXPECT_TRUE(gtk_widget_is_sensitive(pMainW->FileList));
    }
    Ask(MENU_COPY, {EnterText("//"), Look(), PressMarked("Browse..."), Look(), SendClose});
    Ask(MENU_FIND_FILE, {Look(PressMarked("OK")), [](GtkWidget* dialog) {
                             const std::string found = std::string("Match file list") + kMark;
                             EXPECT_TRUE(Await([&] { return FindByText(dialog, found) != nullptr; }));
                             Look()(dialog);
                         }});
    DuringDialogs([this] { Press(GDK_KEY_Return); }, {Look()});
    SelectNames({"2"});
    Ask(MENU_DELETE, {Look(PressMarked("Yes")), Look()});
    EXPECT_EQ(GetMenuTipsString(1), "") << "a separator";
    // The dialog knows the columns by their titles.
    const auto columns = pGTable->ColumnPosition;
    Ask(MENU_OPTION, {PressMarked("OK")});
    EXPECT_EQ(pGTable->ColumnPosition, columns);
}

}  // namespace
