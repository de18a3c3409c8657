#pragma once
// The state that the pages of the options dialog share.

#include <gtk/gtk.h>

#include <array>

#include "core/fnktable.h"

constexpr std::size_t kOptionCheckCount = 8;

/// Lives as long as the dialog.
struct OptionDlgInfo {
    std::array<GtkWidget*, kOptionCheckCount> Check = {};
    GtkWidget* PossibleList = nullptr;   ///< Columns that are not displayed.
    GtkWidget* DisplayedList = nullptr;  ///< Displayed columns from left to right.
    GtkWidget* AddButton = nullptr;
    GtkWidget* RemoveButton = nullptr;
    std::array<GtkWidget*, kColorCount> ColorButton = {};
    std::array<GtkWidget*, kColorCount> ColorSample = {};
    std::array<Color, kColorCount> Colors = {};  ///< Shown by ColorSample; edited by ColorButton.
};
