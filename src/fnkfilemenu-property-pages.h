#pragma once
// The two pages of the property dialog.

#include <gtk/gtk.h>

#include <string>

#include "fnkfilemenu-property.h"

/// Builds the pages; everything in them is empty or off.
void CreatePropertyPages(GtkWidget* notebook, PropertyDlgData* data);

/// Puts a text of any length, UTF-8, into one of the pages' labels.
void SetPropertyText(GtkWidget* label, const std::string& text);
