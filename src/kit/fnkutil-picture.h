#pragma once
// The built-in pictures. At scale factor 1 they are XPM images. At higher scale factors they are the
// SVG drawings from which the XPM images were made.

#include <gtk/gtk.h>

#include <string>

/// Loads a picture from the program's resources, enlarged scale times. The caller owns it. Null if it
/// does not exist or cannot be decoded. type is the format, such as "png": looking it up in the MIME
/// database would take longer than decoding the picture.
GdkPixbuf* ReadResource(const std::string& path, const char* type, int scale = 1);

/// Decodes XPM data. The caller owns the picture. Null if the data is not valid.
GdkPixbuf* ReadXpm(const char* const* xpm);

/// A built-in picture. PICTURE(Name) needs Name.xpm to be included.
struct Picture {
    const char* name = nullptr;
    const char* const* xpm = nullptr;
};
#define PICTURE(name)     \
    Picture               \
    {                     \
#name, name##_xpm \
    }

/// The picture at a scale factor, cached and shared; not to be freed. Null if picture is empty.
cairo_surface_t* PictureSurface(const Picture& picture, int scale);

/// Makes image show picture, redrawn whenever the scale factor of image changes.
void ShowPicture(GtkWidget* image, const Picture& picture);

/// The folder pictures of both panes at the scale factor of widget; not to be freed.
cairo_surface_t* OpenFolderPicture(GtkWidget* widget);
cairo_surface_t* ClosedFolderPicture(GtkWidget* widget);
