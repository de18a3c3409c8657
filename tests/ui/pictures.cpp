// The built-in pictures on screens of every scale, and colours that can be read.

#include "kit/fnkutil-picture.h"

#include "kit/fnkutil-color.h"
#include "windowtest.h"

#include "Abort.xpm"
#include "Back.xpm"
#include "IconFind.xpm"
#include "OpenDir.xpm"

namespace {

struct Size {
    Picture picture;
    int width;
    int height;
};

class Pictures : public WindowTest {
protected:
    void SetUp() override { gtk_init(nullptr, nullptr); }

    const std::vector<Size> sizes = {
        {PICTURE(Abort), 230, 75}, {PICTURE(Back), 18, 18}, {PICTURE(IconFind), 32, 33}, {PICTURE(OpenDir), 20, 16}};
};

/// How many pairs of pixels differ that would be alike, were each of an ordinary screen drawn as a
/// square of four.
int CountFineDetails(cairo_surface_t* surface)
{
    const unsigned char* const data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    int count = 0;
    for (int y = 0; y < cairo_image_surface_get_height(surface); ++y) {
        const auto* const line = reinterpret_cast<const std::uint32_t*>(data + y * stride);
        for (int x = 0; x + 1 < cairo_image_surface_get_width(surface); x += 2) {
            count += line[x] != line[x + 1] ? 1 : 0;
        }
    }
    return count;
}

}  // namespace

TEST_F(Pictures, HaveAsManyPixelsAsTheScreenHas)
{
    for (const Size& size : sizes) {
        for (const int scale : {1, 2, 3}) {
            SCOPED_TRACE(size.picture.name + std::to_string(scale));
            cairo_surface_t* const surface = PictureSurface(size.picture, scale);
            ASSERT_NE(surface, nullptr);
            EXPECT_EQ(cairo_image_surface_get_width(surface), scale * size.width);
            EXPECT_EQ(cairo_image_surface_get_height(surface), scale * size.height);
            double across = 0;
            double down = 0;
            cairo_surface_get_device_scale(surface, &across, &down);
            EXPECT_EQ(across, scale);
            EXPECT_EQ(down, scale);
            EXPECT_EQ(PictureSurface(size.picture, scale), surface) << "shared";
        }
    }
}

TEST_F(Pictures, AreDrawnAnewAndNotEnlarged)
{
    for (const Size& size : sizes) {
        EXPECT_GT(CountFineDetails(PictureSurface(size.picture, 2)), 0) << size.picture.name;
    }
}

TEST_F(Pictures, ADrawingThatIsMissingIsReplacedByTheEnlargedImage)
{
    cairo_surface_t* const surface = PictureSurface({"Nothing", Back_xpm}, 2);
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(cairo_image_surface_get_width(surface), 36);
    EXPECT_EQ(CountFineDetails(surface), 0);
    EXPECT_EQ(PictureSurface(Picture(), 2), nullptr);
}

TEST_F(Pictures, FadeWhileTheirButtonDoesNothing)
{
    GtkWidget* const image = CreatePixmap(PICTURE(Back));
    g_object_ref_sink(image);
    EXPECT_EQ(gtk_widget_get_opacity(image), 1.0);
    gtk_widget_set_sensitive(image, FALSE);
    EXPECT_LT(gtk_widget_get_opacity(image), 0.6);
    gtk_widget_set_sensitive(image, TRUE);
    EXPECT_EQ(gtk_widget_get_opacity(image), 1.0);
    g_object_unref(image);
}

TEST(Colors, AreReadableOnEveryGround)
{
    for (const double light : {0.0, 0.18, 0.5, 1.0}) {
        const GdkRGBA ground = {light, light, light, 1.0};
        for (const Color& color : GTable().Colors) {
            const GdkRGBA readable = ReadableColor(ShownColor(color), ground);
            EXPECT_GE(Contrast(readable, ground), 4.5);
        }
    }
}

TEST(Colors, ThatCanBeReadStayAsTheyAre)
{
    const GdkRGBA blue = {0, 0, 1, 1};
    const GdkRGBA white = {1, 1, 1, 1};
    const GdkRGBA shown = ReadableColor(blue, white);
    EXPECT_TRUE(gdk_rgba_equal(&shown, &blue));
    const GdkRGBA yellow = ReadableColor({1, 1, 0, 1}, white);
    EXPECT_EQ(yellow.red, yellow.green);
    EXPECT_EQ(yellow.blue, 0);
    EXPECT_NEAR(Contrast(yellow, white), 4.5, 0.1) << "no darker than it must be";
}
