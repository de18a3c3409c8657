#pragma once
// The two pages of the property dialog.

#include <gtk/gtk.h>

#include "fnkfilemenu-property.h"

/// Builds the pages; everything in them is empty or off.
void CreatePropertyPages(GtkWidget* notebook, PropertyDlgData* data);
