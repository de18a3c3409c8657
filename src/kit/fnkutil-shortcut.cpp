#include "kit/fnkutil-shortcut.h"

#include <cstring>

#include "core/fnkraii.h"

namespace {

/// Underlines the mnemonic at all times. The toolkit does so only while Alt is held.
void UnderlineMnemonic(GtkWidget* item, const char* label)
{
    const char* const mark = std::strchr(label, '_');
    if (mark == nullptr) {
        return;
    }
    PangoAttribute* const underline = pango_attr_underline_new(PANGO_UNDERLINE_LOW);
    underline->start_index = static_cast<guint>(mark - label);
    underline->end_index = underline->start_index + static_cast<guint>(g_utf8_next_char(mark + 1) - (mark + 1));
    PangoAttrList* const attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, underline);
    gtk_label_set_attributes(GTK_LABEL(gtk_bin_get_child(GTK_BIN(item))), attributes);
    pango_attr_list_unref(attributes);
}

}  // namespace

GtkWidget* CreateMenuItemWithMnemonic(const char* label)
{
    GtkWidget* const item = gtk_menu_item_new_with_mnemonic(label);
    UnderlineMnemonic(item, label);
    return item;
}

void AddShortcut(GtkWidget* window, const char* shortcut, gboolean (*act)(gpointer), gpointer data)
{
    guint key = 0;
    GdkModifierType modifiers = {};
    gtk_accelerator_parse(shortcut, &key, &modifiers);
    GtkAccelGroup* const group = gtk_accel_group_new();
    GClosure* const closure = g_cclosure_new_swap(G_CALLBACK(act), data, nullptr);
    gtk_accel_group_connect(group, key, modifiers, {}, closure);
    gtk_window_add_accel_group(GTK_WINDOW(window), group);
    g_object_unref(group);
}

std::string TipWithShortcut(const std::string& tip, const char* shortcut)
{
    guint key = 0;
    GdkModifierType modifiers = {};
    gtk_accelerator_parse(shortcut, &key, &modifiers);
    const GlibPointer<char> label(gtk_accelerator_get_label(key, modifiers));
    return tip + " (" + label.get() + ")";
}
