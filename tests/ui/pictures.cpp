// The built-in pictures on screens of every scale, and colours that can be read.

#include "kit/fnkutil-picture.h"

#include <cstring>

#include "kit/fnkutil-color.h"
#include "windowtest.h"

#include "Back.xpm"

TEST(Pictures, AreDrawnForTheScaleOfTheScreenAndFade)
{
    gtk_init(nullptr, nullptr);
    const Picture picture = {"Back", Back_xpm};
    for (const int scale : {1, 3}) {
        cairo_surface_t* const surface = PictureSurface(picture, scale);
        EXPECT_EQ(cairo_image_surface_get_width(surface), 18 * scale);
    }
    const auto pixels = [](const Picture& of) { return cairo_image_surface_get_data(PictureSurface(of, 2)); };
    EXPECT_NE(std::memcmp(pixels(picture), pixels({"Nothing", Back_xpm}), 4 * 36 * 36), 0) << "drawn, not enlarged";
    GtkWidget* const image = CreatePixmap(picture);
    g_object_ref_sink(image);
    for (const bool sensitive : {false, true}) {
        gtk_widget_set_sensitive(image, sensitive);
        EXPECT_EQ(gtk_widget_get_opacity(image) > 0.6, sensitive);
    }
    g_object_unref(image);
}

TEST(Colors, ChangeOnlyAsFarAsTheyCannotBeRead)
{
    for (const double light : {0.0, 0.18, 0.5, 1.0}) {
        const GdkRGBA ground = {light, light, light, 1.0};
        for (const Color& color : GTable().Colors) {
            EXPECT_GE(Contrast(ReadableColor(ShownColor(color), ground), ground), 4.5);
        }
    }
    const GdkRGBA white = {1, 1, 1, 1};
    EXPECT_EQ(ReadableColor({0, 0, 1, 1}, white).blue, 1);
    EXPECT_NEAR(Contrast(ReadableColor({1, 1, 0, 1}, white), white), 4.5, 0.1) << "no darker than it must be";
}
