#include "kit/fnkutil-color.h"

#include <algorithm>
#include <cmath>

namespace {

/// The minimum contrast ratio that accessibility guidelines require for text.
constexpr double kReadable = 4.5;
constexpr GdkRGBA kBlack = {0, 0, 0, 1};
constexpr GdkRGBA kWhite = {1, 1, 1, 1};

/// Converts an sRGB component to linear light.
double Linear(double part)
{
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

/// Relative luminance, 0 to 1.
double Luminance(const GdkRGBA& color)
{
    return 0.2126 * Linear(color.red) + 0.7152 * Linear(color.green) + 0.0722 * Linear(color.blue);
}

GdkRGBA Mix(const GdkRGBA& from, const GdkRGBA& to, double share)
{
    const auto between = [share](double first, double second) { return first + (second - first) * share; };
    return {between(from.red, to.red), between(from.green, to.green), between(from.blue, to.blue), 1.0};
}

GdkRGBA ThemeColor(GtkWidget* widget, const char* name, const GdkRGBA& fallback)
{
    GdkRGBA color = fallback;
    gtk_style_context_lookup_color(gtk_widget_get_style_context(widget), name, &color);
    return color;
}

}  // namespace

GdkRGBA ShownColor(const Color& color)
{
    constexpr double kFull = 0xff00;  // The maximum in the settings file, which stores high bytes only.
    const auto part = [](std::uint16_t component) { return std::min(component / kFull, 1.0); };
    return {part(color.red), part(color.green), part(color.blue), 1.0};
}

double Contrast(const GdkRGBA& text, const GdkRGBA& ground)
{
    constexpr double kGlare = 0.05;
    const double first = Luminance(text) + kGlare;
    const double second = Luminance(ground) + kGlare;
    return std::max(first, second) / std::min(first, second);
}

GdkRGBA ReadableColor(const GdkRGBA& color, const GdkRGBA& ground)
{
    if (Contrast(color, ground) >= kReadable) {
        return color;
    }
    const GdkRGBA& end = Contrast(kBlack, ground) > Contrast(kWhite, ground) ? kBlack : kWhite;
    // Bisect the mixing ratio. The upper end is always readable.
    double too_little = 0.0;
    double enough = 1.0;
    constexpr int kSteps = 8;  // Precise to 1/256, one step of an 8-bit channel.
    for (int step = 0; step < kSteps; ++step) {
        const double middle = (too_little + enough) / 2;
        (Contrast(Mix(color, end, middle), ground) >= kReadable ? enough : too_little) = middle;
    }
    return Mix(color, end, enough);
}

GdkRGBA TextColor(GtkWidget* widget, const Color& color)
{
    const GdkRGBA ground = ThemeColor(widget, "theme_base_color", kWhite);
    const GdkRGBA shown = ShownColor(color);
    const bool use_theme_color = gdk_rgba_equal(&shown, &kBlack) && Contrast(shown, ground) < kReadable;
    return ReadableColor(use_theme_color ? ThemeColor(widget, "theme_text_color", shown) : shown, ground);
}
