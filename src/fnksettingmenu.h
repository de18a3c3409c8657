#pragma once
// The options dialog: switches, the columns of the file list, and its colours. It works on copies;
// the settings change when it is confirmed.

#include <gtk/gtk.h>

#include <array>

#include "fnktable.h"

constexpr std::size_t kOptionCheckCount = 8;

/// Lives as long as the dialog.
struct OptionDlgInfo {
    std::array<GtkWidget*, kOptionCheckCount> Check = {};
    GtkWidget* PossibleList = nullptr;   ///< The columns that are not displayed.
    GtkWidget* DisplayedList = nullptr;  ///< Those that are, in their order.
    GtkWidget* AddButton = nullptr;
    GtkWidget* RemoveButton = nullptr;
    std::array<GtkWidget*, kColorCount> ColorButton = {};
    std::array<GtkWidget*, kColorCount> ColorSample = {};
    std::array<Color, kColorCount> Colors = {};  ///< What the samples show.
};

void on_Menu_Option_activate(GtkWidget* item, gpointer data);

void CreateOptionDlg();
/// Fills the dialog with what the settings say.
void SetOptionValue(OptionDlgInfo* info);
/// Takes over what the dialog says, and rebuilds of the window what that concerns.
void on_Option_OKButton_clicked(GtkWidget* button, gpointer info);
