#pragma once
// The colours of the settings, adjusted so that text in them stays readable.

#include <gtk/gtk.h>

#include "core/fnktable.h"

/// Converts a colour of the settings.
GdkRGBA ShownColor(const Color& color);

/// The contrast ratio of two colours, 1 to 21.
double Contrast(const GdkRGBA& text, const GdkRGBA& ground);

/// color if text in it is readable on ground, else the first readable colour between color and black
/// or white, whichever contrasts more with ground.
GdkRGBA ReadableColor(const GdkRGBA& color, const GdkRGBA& ground);

/// color, adjusted to be readable on the theme's background. Black is the default for normal files;
/// where it would be unreadable, the theme's text colour takes its place.
GdkRGBA TextColor(GtkWidget* widget, const Color& color);
