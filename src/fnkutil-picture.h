#pragma once
// The built-in pictures. On an ordinary screen they are the XPM images, pixel by pixel; where a
// screen has more pixels to the same size, the drawings that those were made of, in all its pixels.

#include <gtk/gtk.h>

#include <string_view>

/// The picture that is in the data, of a type such as "png", with so many pixels to each of its
/// own; to be unreferenced. Null where the toolkit cannot read it. Told what it reads, the toolkit
/// need not look through the data base of all types of files for that, which would take longer than
/// the reading.
GdkPixbuf* ReadPixels(std::string_view data, const char* type, int scale = 1);

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
