#pragma once
// The page of the options dialog for the colours of the file list.

#include <gtk/gtk.h>

#include "commands/fnksettingmenu-info.h"

/// Builds the page. The samples read info->Colors each time they are drawn.
void CreateColorsPage(GtkWidget* notebook, OptionDlgInfo* info);

/// Runs the colour chooser above the window of parent. Changes *color only if the user confirms a
/// different one.
void ColorSelection(GtkWidget* parent, Color* color);
