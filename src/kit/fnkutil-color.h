#pragma once
// Colours: those of the settings, and what they take to be read in.

#include <gtk/gtk.h>

#include "core/fnktable.h"

/// A colour of the settings as the screen shows it.
GdkRGBA ShownColor(const Color& color);

/// How well a text of one colour stands out from a ground of the other, from 1 to 21.
double Contrast(const GdkRGBA& text, const GdkRGBA& ground);

/// The colour itself, where a text can be read in it on that ground; otherwise the nearest one
/// that is lighter or darker.
GdkRGBA ReadableColor(const GdkRGBA& color, const GdkRGBA& ground);

/// A colour of the settings for a text in the widget, as the theme allows it. Black, which is what
/// texts are written in unless something else is wanted, gives way to the theme's own.
GdkRGBA TextColor(GtkWidget* widget, const Color& color);
