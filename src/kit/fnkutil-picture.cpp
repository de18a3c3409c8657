#include "kit/fnkutil-picture.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "CloseDir.xpm"
#include "OpenDir.xpm"

namespace {

constexpr const char* kPictureKey = "fennick-picture";
constexpr double kFaded = 0.4;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using ObjectPointer = std::unique_ptr<T, Unref>;
using Pixels = ObjectPointer<GdkPixbuf>;

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, DestroySurface>;

void on_Loader_size_prepared(GdkPixbufLoader* loader, int width, int height, gpointer scale)
{
    gdk_pixbuf_loader_set_size(loader, width * GPOINTER_TO_INT(scale), height * GPOINTER_TO_INT(scale));
}

/// Null if the SVG loader, a separate package, is not installed.
Pixels RenderDrawing(const char* name, int scale)
{
    return Pixels(ReadResource("/fennick/drawings/" + std::string(name) + ".svg", "svg", scale));
}

Pixels LoadPixels(const Picture& picture, int scale)
{
    Pixels pixels = scale > 1 ? RenderDrawing(picture.name, scale) : nullptr;
    if (pixels == nullptr) {
        const Pixels plain(ReadXpm(picture.xpm));
        // Repeat each pixel: coarse, but not blurred.
        pixels.reset(gdk_pixbuf_scale_simple(plain.get(), gdk_pixbuf_get_width(plain.get()) * scale,
                                             gdk_pixbuf_get_height(plain.get()) * scale, GDK_INTERP_NEAREST));
    }
    return pixels;
}

void on_Image_scale_factor(GtkWidget* image, GParamSpec*, gpointer)
{
    const auto* const picture = static_cast<const Picture*>(g_object_get_data(G_OBJECT(image), kPictureKey));
    gtk_image_set_from_surface(GTK_IMAGE(image), PictureSurface(*picture, gtk_widget_get_scale_factor(image)));
}

/// Fades the image of an insensitive button. The toolkit does not fade images made from surfaces.
void on_Image_state_flags_changed(GtkWidget* image, GtkStateFlags, gpointer)
{
    gtk_widget_set_opacity(image, gtk_widget_is_sensitive(image) ? 1.0 : kFaded);
}

}  // namespace

GdkPixbuf* ReadResource(const std::string& path, const char* type, int scale)
{
    const std::unique_ptr<GBytes, decltype(&g_bytes_unref)> bytes(
        g_resources_lookup_data(path.c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr), &g_bytes_unref);
    const ObjectPointer<GdkPixbufLoader> loader(bytes != nullptr ? gdk_pixbuf_loader_new_with_type(type, nullptr)
                                                                 : nullptr);
    if (loader == nullptr) {
        return nullptr;
    }
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(on_Loader_size_prepared), GINT_TO_POINTER(scale));
    const gboolean is_read = gdk_pixbuf_loader_write_bytes(loader.get(), bytes.get(), nullptr);
    // A loader must be closed before it is freed, even after an error.
    if (!gdk_pixbuf_loader_close(loader.get(), nullptr) || !is_read) {
        return nullptr;
    }
    GdkPixbuf* const pixels = gdk_pixbuf_loader_get_pixbuf(loader.get());
    return pixels != nullptr ? GDK_PIXBUF(g_object_ref(pixels)) : nullptr;
}

GdkPixbuf* ReadXpm(const char* const* xpm)
{
    // The function does not modify the data; its declaration merely lacks a const.
    return gdk_pixbuf_new_from_xpm_data(const_cast<const char**>(xpm));
}

cairo_surface_t* PictureSurface(const Picture& picture, int scale)
{
    static std::map<std::pair<std::string, int>, Surface> surfaces;
    if (picture.xpm == nullptr) {
        return nullptr;
    }
    Surface& surface = surfaces[{picture.name, scale}];
    if (surface == nullptr) {
        surface.reset(gdk_cairo_surface_create_from_pixbuf(LoadPixels(picture, scale).get(), scale, nullptr));
    }
    return surface.get();
}

void ShowPicture(GtkWidget* image, const Picture& picture)
{
    if (g_object_get_data(G_OBJECT(image), kPictureKey) == nullptr) {
        g_signal_connect(image, "notify::scale-factor", G_CALLBACK(on_Image_scale_factor), nullptr);
        g_signal_connect(image, "state-flags-changed", G_CALLBACK(on_Image_state_flags_changed), nullptr);
    }
    g_object_set_data_full(G_OBJECT(image), kPictureKey, new Picture(picture),
                           [](gpointer data) { delete static_cast<Picture*>(data); });
    on_Image_scale_factor(image, nullptr, nullptr);
}

namespace {

/// Remembers the surface used last, to save a look-up in the map for every row that is drawn.
struct CachedPicture {
    Picture picture;
    int scale = 0;
    cairo_surface_t* surface = nullptr;

    cairo_surface_t* At(int wanted)
    {
        if (scale != wanted) {
            scale = wanted;
            surface = PictureSurface(picture, scale);
        }
        return surface;
    }
};
CachedPicture open_folder = {PICTURE(OpenDir)};
CachedPicture closed_folder = {PICTURE(CloseDir)};

}  // namespace

cairo_surface_t* OpenFolderPicture(GtkWidget* widget)
{
    return open_folder.At(gtk_widget_get_scale_factor(widget));
}

cairo_surface_t* ClosedFolderPicture(GtkWidget* widget)
{
    return closed_folder.At(gtk_widget_get_scale_factor(widget));
}
