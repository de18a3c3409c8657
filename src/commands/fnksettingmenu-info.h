#pragma once
// The widgets of the options dialog that its pages share.

#include <gtk/gtk.h>

#include <array>

#include "core/fnktable.h"

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
