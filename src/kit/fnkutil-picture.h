#pragma once
// The built-in pictures. On an ordinary screen they are the XPM images, pixel by pixel; where a
// screen has more pixels to the same size, the drawings that those were made of, in all its pixels.

#include <gtk/gtk.h>

#include <string>

/// A picture from the program's resources, enlarged scale times; the caller owns it. Null when there
/// is none or the toolkit cannot read it. The type, such as "png", spares the toolkit a look at the
/// data base of file types, which takes longer than reading the picture.
GdkPixbuf* ReadResource(const std::string& path, const char* type, int scale = 1);

/// A built-in picture by its name, for which Name.xpm has been included.
struct Picture {
    const char* name = nullptr;
    const char* const* xpm = nullptr;
};
#define PICTURE(name)     \
    Picture               \
    {                     \
#name, name##_xpm \
    }

/// The picture for a screen of that scale factor; kept, and shared by all who show it. Null only
/// for a picture that is none.
cairo_surface_t* PictureSurface(const Picture& picture, int scale);

/// An image that shows the picture at the scale of the screen that it is on.
void ShowPicture(GtkWidget* image, const Picture& picture);

/// The folders of both panes, as the widget's screen wants them.
cairo_surface_t* OpenFolder(GtkWidget* widget);
cairo_surface_t* ClosedFolder(GtkWidget* widget);
