#pragma once
// What most tests do with the dialogs that come up; to be handed to DuringDialogs.

#include <gdk/gdkkeysyms.h>

#include <string>

#include "windowtest.h"

using DialogAct = DialogActs::value_type;

/// Types over what is selected in the entry that has the focus, and presses Return.
inline DialogAct EnterText(const std::string& text)
{
    return [text](GtkWidget* dialog) {
        GtkWidget* const entry = gtk_window_get_focus(GTK_WINDOW(dialog));
        ASSERT_TRUE(GTK_IS_ENTRY(entry));
        gtk_editable_delete_selection(GTK_EDITABLE(entry));
        int end = -1;
        gtk_editable_insert_text(GTK_EDITABLE(entry), text.c_str(), -1, &end);
        EXPECT_EQ(gtk_entry_get_text(GTK_ENTRY(entry)), text) << "something was left of what was there";
        SendKey(dialog, GDK_KEY_Return);
    };
}

inline DialogAct PressButton(const char* label)
{
    return [label](GtkWidget* dialog) {
        GtkWidget* const button = FindByText(dialog, label);
        ASSERT_NE(button, nullptr) << label;
        gtk_button_clicked(GTK_BUTTON(button));
    };
}

/// Closes a box that says so.
inline DialogAct ReadBox(const std::string& message)
{
    return [message](GtkWidget* box) {
        EXPECT_NE(FindByText(box, message), nullptr) << message;
        PressButton("OK")(box);
    };
}

inline GtkTreeView* TreeOf(GtkWidget* dialog)
{
    return GTK_TREE_VIEW(FindWidget(dialog, [](GtkWidget* widget) { return GTK_IS_TREE_VIEW(widget) != FALSE; }));
}

/// The entry or button that screen readers call so.
inline GtkWidget* FindNamed(GtkWidget* dialog, const std::string& name)
{
    GtkWidget* const found = FindWidget(dialog, [&name](GtkWidget* widget) {
        const bool is_field = GTK_IS_ENTRY(widget) || GTK_IS_BUTTON(widget);
        const char* const shown = is_field ? atk_object_get_name(gtk_widget_get_accessible(widget)) : nullptr;
        return shown != nullptr && shown == name;
    });
    EXPECT_NE(found, nullptr) << name;
    return found;
}
