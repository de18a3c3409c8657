#include "app/fnkmenubar.h"

#include <gdk/gdkkeysyms.h>

#include <array>

#include "app/fnktable-life.h"
#include "commands/fnkeditmenu-find.h"
#include "commands/fnkeditmenu-link.h"
#include "commands/fnkeditmenu-select.h"
#include "commands/fnkeditmenu.h"
#include "commands/fnkfilemenu-new.h"
#include "commands/fnkfilemenu.h"
#include "commands/fnkhelpmenu.h"
#include "commands/fnklayoutmenu.h"
#include "commands/fnksettingmenu.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "kit/fnkcommand.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-shortcut.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkfilelist-status.h"

namespace {

constexpr int kBarBorder = 1;

using MenuHandler = void (*)(GtkWidget*, gpointer);

enum MenuKind { MENU_ITEM, MENU_SEPARATOR, MENU_WITH_SUBMENU };

/// The label ends in its mnemonic in brackets, so that languages without Latin letters have one too.
struct MenuTableEntry {
    MenuKind kind;
    const char* label = "";
    MenuHandler handler = nullptr;
    guint key = 0;
    GdkModifierType modifiers = {};
};

void on_Menu_CloseWindow_activate(GtkWidget*, gpointer)
{
    CloseMainWindow();
}

/// Indexed by MenuEntry. From kSubmenuBegin on, the entries of the submenu New.
constexpr std::array<MenuTableEntry, kMenuEntryCount> kEntries = {{
    {MENU_ITEM, N_("Create new window(_W)"), on_Menu_CreateNewWindow_activate},
    {MENU_WITH_SUBMENU, N_("New(_N)")},
    {MENU_ITEM, N_("Open(_O)"), on_Menu_Open_activate, GDK_KEY_F3},
    {MENU_ITEM, N_("Copy(_C)..."), on_Menu_Copy_activate},
    {MENU_ITEM, N_("Move(_M)..."), on_Menu_Move_activate},
    {MENU_ITEM, N_("Delete(_D)..."), on_Menu_Delete_activate},
    {MENU_SEPARATOR},
    {MENU_ITEM, N_("Property(_P)..."), on_Menu_Property_activate},
    {MENU_SEPARATOR},
    {MENU_ITEM, N_("Close window(_X)"), on_Menu_CloseWindow_activate, GDK_KEY_W, GDK_CONTROL_MASK},
    {MENU_ITEM, N_("Select all(_A)"), on_Menu_SelectAll_activate, GDK_KEY_A, GDK_CONTROL_MASK},
    {MENU_ITEM, N_("Select files(_S)..."), on_Menu_SelectFiles_activate},
    {MENU_ITEM, N_("Invert selection(_I)"), on_Menu_Invert_Selection_activate},
    {MENU_SEPARATOR},
    {MENU_ITEM, N_("Find file(_F)..."), on_Menu_FindFile_activate, GDK_KEY_F, GDK_CONTROL_MASK},
    {MENU_SEPARATOR},
    {MENU_ITEM, N_("Symbolic link(_L)..."), on_Menu_SymbolicLink_activate},
    {MENU_SEPARATOR},
    {MENU_ITEM, N_("Rescan directory(_R)"), on_Menu_RescanDirectory_activate},
    {MENU_ITEM, N_("Option(_O)..."), on_Menu_Option_activate},
    {MENU_ITEM, N_("Sort column(_S)..."), on_Menu_Sort_activate},
    {MENU_ITEM, N_("Filter view(_F)..."), on_Menu_FilterView_activate},
    {MENU_ITEM, N_("Manual(_M)..."), on_Menu_Manual_activate},
    {MENU_SEPARATOR},
    {MENU_ITEM, N_("Abort(_A)..."), on_Menu_Abort_activate},
    {MENU_ITEM, N_("Directory(_D)..."), on_Menu_NewDirectory_activate},
    {MENU_ITEM, N_("File(_F)..."), on_Menu_NewFile_activate},
}};
constexpr std::size_t kSubmenuBegin = MENU_STORED_COUNT;

struct MenuTitle {
    const char* label;
    std::size_t entries;  ///< Number of entries, consecutive in kEntries.
    MenuHandler handler;
};

constexpr std::array<MenuTitle, 5> kTitles = {{
    {N_("File(_F)"), 10, on_Menu_File_activate},
    {N_("Edit(_E)"), 9, on_Menu_Edit_activate},
    {N_("Setting(_S)"), 1, nullptr},
    {N_("Layout(_L)"), 2, nullptr},
    {N_("Help(_H)"), 3, nullptr},
}};

/// Starts the command, unless the records are already gone.
void on_Menu_activate(GtkWidget* item, gpointer index)
{
    if (pGTable == nullptr) {
        return;
    }
    const MenuHandler handler = kEntries[GPOINTER_TO_SIZE(index)].handler;
    if (handler == on_Menu_CloseWindow_activate) {
        handler(item, nullptr);
    } else {
        StartCommand([handler, item] { handler(item, nullptr); });
    }
}

void on_MenuTitle_activate(GtkWidget* item, gpointer index)
{
    if (pGTable != nullptr) {
        kTitles[GPOINTER_TO_SIZE(index)].handler(item, nullptr);
    }
}

void on_Menu_select(GtkWidget*, gpointer index)
{
    if (pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, " " + GetMenuTipsString(GPOINTER_TO_INT(index)));
    }
}

void on_Menu_deselect(GtkWidget*, gpointer)
{
    RestoreStatusText();
}

/// Updates the menu before an accelerator of one of its entries is tried. Otherwise the entry would
/// still be as sensitive as when the menu was last opened.
gboolean on_Menu_can_activate_accel(GtkWidget* item, guint, gpointer title)
{
    if (pGTable != nullptr) {
        kTitles[GPOINTER_TO_SIZE(title)].handler(item, nullptr);
    }
    return FALSE;  // The toolkit's default handler, which runs last, decides.
}

/// Whether the key is a shortcut of the window, in the current keyboard layout or in the first one.
bool IsShortcut(const GdkEventKey& event)
{
    guint first_layout_key = 0;
    gdk_keymap_translate_keyboard_state(gdk_keymap_get_for_display(gtk_widget_get_display(pMainW->MainWindow)),
                                        event.hardware_keycode, {}, 0, &first_layout_key, nullptr, nullptr, nullptr);
    const auto modifiers = static_cast<GdkModifierType>(event.state & gtk_accelerator_get_default_mod_mask());
    for (const GSList* groups = gtk_accel_groups_from_object(G_OBJECT(pMainW->MainWindow)); groups != nullptr;
         groups = groups->next) {
        for (const guint key : {gdk_keyval_to_lower(event.keyval), first_layout_key}) {
            if (gtk_accel_group_query(GTK_ACCEL_GROUP(groups->data), key, modifiers, nullptr) != nullptr) {
                return true;
            }
        }
    }
    return false;
}

/// An open menu has the grab, so the window does not see its shortcuts.
gboolean on_Menu_key_press(GtkWidget* menu, GdkEventKey* event, gpointer)
{
    if (pMainW == nullptr || !IsShortcut(*event)) {
        return FALSE;
    }
    gtk_menu_shell_cancel(GTK_MENU_SHELL(menu));
    gtk_window_activate_key(GTK_WINDOW(pMainW->MainWindow), event);
    return TRUE;
}

GtkWidget* CreateSubMenu(GtkWidget* item, GtkAccelGroup* accelerators)
{
    GtkWidget* const menu = gtk_menu_new();
    gtk_menu_set_accel_group(GTK_MENU(menu), accelerators);
    g_signal_connect(menu, "key-press-event", G_CALLBACK(on_Menu_key_press), nullptr);
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), menu);
    return menu;
}

GtkWidget* CreateMenuItem(GtkWidget* menu, GtkAccelGroup* accelerators, std::size_t index)
{
    const MenuTableEntry& entry = kEntries[index];
    const auto data = GSIZE_TO_POINTER(index);
    GtkWidget* item = nullptr;
    if (entry.kind == MENU_SEPARATOR) {
        item = gtk_separator_menu_item_new();
        gtk_widget_set_sensitive(item, FALSE);
    } else {
        item = CreateMenuItemWithMnemonic(gettext(entry.label));
        gtk_widget_set_tooltip_text(item, GetMenuTipsString(static_cast<int>(index)).c_str());
        g_signal_connect(item, "select", G_CALLBACK(on_Menu_select), data);
        g_signal_connect(item, "deselect", G_CALLBACK(on_Menu_deselect), data);
    }
    if (entry.handler != nullptr) {
        g_signal_connect(item, "activate", G_CALLBACK(on_Menu_activate), data);
    }
    if (entry.key != 0) {
        gtk_widget_add_accelerator(item, "activate", accelerators, gdk_keyval_to_lower(entry.key), entry.modifiers,
                                   GTK_ACCEL_VISIBLE);
    }
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    gtk_widget_show(item);
    return item;
}

GtkWidget* CreateMenu(GtkWidget* bar, GtkAccelGroup* accelerators, const MenuTitle& title)
{
    GtkWidget* const item = CreateMenuItemWithMnemonic(gettext(title.label));
    if (title.handler != nullptr) {
        g_signal_connect(item, "activate", G_CALLBACK(on_MenuTitle_activate),
                         GSIZE_TO_POINTER(&title - kTitles.data()));
    }
    if (&title == &kTitles.back()) {
        G_GNUC_BEGIN_IGNORE_DEPRECATIONS
        gtk_menu_item_set_right_justified(GTK_MENU_ITEM(item), TRUE);
        G_GNUC_END_IGNORE_DEPRECATIONS
    }
    gtk_menu_shell_append(GTK_MENU_SHELL(bar), item);
    gtk_widget_show(item);
    return CreateSubMenu(item, accelerators);
}

}  // namespace

GtkWidget* CreateMenuBar(GtkWidget* box)
{
    GtkWidget* const handle_box = CreateHandleBox(box);
    if (handle_box == nullptr) {
        return nullptr;
    }
    GtkAccelGroup* const accelerators = gtk_accel_group_new();
    GtkWidget* const bar = gtk_menu_bar_new();
    gtk_container_set_border_width(GTK_CONTAINER(bar), kBarBorder);
    gtk_container_add(GTK_CONTAINER(handle_box), bar);
    g_signal_connect(bar, "key-press-event", G_CALLBACK(on_Menu_key_press), nullptr);
    gtk_widget_show(bar);

    std::size_t index = 0;
    for (const MenuTitle& title : kTitles) {
        GtkWidget* const menu = CreateMenu(bar, accelerators, title);
        for (const std::size_t end = index + title.entries; index < end; ++index) {
            GtkWidget* const item = pMainW->MenuItem[index] = CreateMenuItem(menu, accelerators, index);
            if (kEntries[index].key != 0 && title.handler != nullptr) {
                g_signal_connect(item, "can-activate-accel", G_CALLBACK(on_Menu_can_activate_accel),
                                 GSIZE_TO_POINTER(&title - kTitles.data()));
            }
        }
    }
    GtkWidget* const submenu = CreateSubMenu(pMainW->MenuItem[MENU_NEW], accelerators);
    for (index = kSubmenuBegin; index < kEntries.size(); ++index) {
        CreateMenuItem(submenu, accelerators, index);
    }
    gtk_window_add_accel_group(GTK_WINDOW(pMainW->MainWindow), accelerators);
    g_object_unref(accelerators);
    return handle_box;
}
