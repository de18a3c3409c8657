// The built-in pictures on screens of every scale, and colours that can be read.

#include "kit/fnkutil-picture.h"

#include "kit/fnkutil-color.h"
#include "windowtest.h"

#include "Back.xpm"

namespace {

/// Whether it is more than an image whose pixels are drawn as squares of four.
bool HasFineDetails(cairo_surface_t* surface)
{
    const unsigned char* const data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < cairo_image_surface_get_height(surface); ++y) {
        const auto* const line = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (int x = 0; x + 1 < cairo_image_surface_get_width(surface); x += 2) {
            if (line[x] != line[x + 1]) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

TEST(Pictures, AreDrawnForTheScaleOfTheScreenAndFade)
{
    gtk_init(nullptr, nullptr);
    const Picture picture = {"Back", Back_xpm};
    for (const int scale : {1, 2, 3}) {
        cairo_surface_t* const surface = PictureSurface(picture, scale);
        double across = 0;
        double down = 0;
        cairo_surface_get_device_scale(surface, &across, &down);
        EXPECT_EQ(across + down, 2 * scale);
        EXPECT_EQ(cairo_image_surface_get_width(surface), 18 * scale);
        EXPECT_EQ(PictureSurface(picture, scale), surface) << "shared";
    }
    EXPECT_TRUE(HasFineDetails(PictureSurface(picture, 2)));
    EXPECT_FALSE(HasFineDetails(PictureSurface({"Nothing", Back_xpm}, 2))) << "without a drawing it is enlarged";
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
    const GdkRGBA blue = {0, 0, 1, 1};
    const GdkRGBA white = {1, 1, 1, 1};
    const GdkRGBA shown = ReadableColor(blue, white);
    EXPECT_TRUE(gdk_rgba_equal(&shown, &blue));
    const GdkRGBA yellow = ReadableColor({1, 1, 0, 1}, white);
    EXPECT_TRUE(yellow.red == yellow.green && yellow.blue == 0);
    EXPECT_NEAR(Contrast(yellow, white), 4.5, 0.1) << "no darker than it must be";
}
