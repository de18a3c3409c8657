#pragma once
// The page of the options dialog that chooses the colours of the file list.

#include <gtk/gtk.h>

#include "commands/fnksettingmenu-info.h"

/// Builds the page; the samples show Colors, whenever they are drawn.
void CreateColorsPage(GtkWidget* notebook, OptionDlgInfo* info);

/// Lets the user choose a colour over the window of parent; color changes only if another one was
/// chosen and confirmed.
void ColorSelection(GtkWidget* parent, Color* color);
