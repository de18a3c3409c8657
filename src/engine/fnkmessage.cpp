#include "engine/fnkmessage.h"

#include <glib.h>

#include "core/fnkraii.h"
#include "core/fnkutil-text.h"

EngineEvents OnEngine;

std::string FormatPathMessage(const char* format, const std::string& path, int error)
{
    // About two lines of a message box on a small screen.
    constexpr long kMaxCharacters = 240;
    constexpr long kKeptAtEachEnd = kMaxCharacters / 2 - 2;
    std::string shown = DisplayLine(path);
    const long length = g_utf8_strlen(shown.c_str(), -1);
    if (length > kMaxCharacters) {
        const char* const head_end = g_utf8_offset_to_pointer(shown.c_str(), kKeptAtEachEnd);
        const char* const tail = g_utf8_offset_to_pointer(shown.c_str(), length - kKeptAtEachEnd);
        shown = std::string(shown.c_str(), head_end) + "\u2026" + tail;
    }
    // A format without a second %s ignores the error.
    const GlibPointer<char> text(g_strdup_printf(format, shown.c_str(), error != 0 ? g_strerror(error) : ""));
    return text.get();
}
