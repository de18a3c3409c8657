#pragma once
// Shortcuts and mnemonics.

#include <gtk/gtk.h>

#include <string>

/// Creates a menu item whose mnemonic is underlined at all times.
GtkWidget* CreateMenuItemWithMnemonic(const char* label);

/// Calls act(data), which returns TRUE, when the shortcut, such as "<Alt>Left", is pressed anywhere in
/// the window.
void AddShortcut(GtkWidget* window, const char* shortcut, gboolean (*act)(gpointer), gpointer data);
/// A tip with the shortcut in the words of the user's language.
std::string TipWithShortcut(const std::string& tip, const char* shortcut);
