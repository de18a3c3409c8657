#include "core/fnkutil-text.h"

#include <fnmatch.h>
#include <glib.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstring>

#include "core/fnkraii.h"
#include "core/fnktable.h"

namespace {

bool IsUtf8Locale()
{
    return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

/// Length in bytes of the UTF-8 sequence at position, 0 if it is invalid.
std::ptrdiff_t SequenceLength(const char* position, const char* end)
{
    const gunichar character = g_utf8_get_char_validated(position, end - position);
    if (character == static_cast<gunichar>(-1) || character == static_cast<gunichar>(-2)) {
        return 0;
    }
    return std::max(1, g_unichar_to_utf8(character, nullptr));
}

}  // namespace

CharStepper::CharStepper(const char* begin, const char* end)
    : end_(end), ill_formed_(begin - 1), utf8_locale_(IsUtf8Locale())
{
}

const char* CharStepper::Next(const char* position)
{
    if (position >= end_) {
        return end_;
    }
    if (static_cast<unsigned char>(*position) < 0x80) {
        return position + 1;
    }
    if (utf8_locale_ || IsWellFormedFrom(position)) {
        return position + std::max<std::ptrdiff_t>(1, SequenceLength(position, end_));
    }
    return std::min(position + 2, end_);
}

bool CharStepper::IsWellFormedFrom(const char* position)
{
    // Validation that fails at valid_end would fail from any position up to there: it either reaches
    // the same bad byte or starts inside a sequence.
    if (well_formed_ == nullptr && position > ill_formed_) {
        const char* valid_end = nullptr;
        if (g_utf8_validate(position, end_ - position, &valid_end)) {
            well_formed_ = position;
        } else {
            ill_formed_ = valid_end;
        }
    }
    return well_formed_ != nullptr;
}

const char* CharNext(const char* text, char delimiter)
{
    if (text == nullptr || *text == '\0') {
        return nullptr;
    }
    const char* const end = text + std::strlen(text);
    CharStepper stepper(text, end);
    const char* position = text;
    if (delimiter == '\0') {
        position = stepper.Next(position);
    } else {
        while (position != end && *position != delimiter) {
            position = stepper.Next(position);
        }
    }
    return position == end ? nullptr : position;
}

namespace {

/// Replaces each invalid byte by a private-use character at the end of Unicode.
std::string WithBytesAsCharacters(const std::string& text)
{
    constexpr gunichar kByteCharacters = 0x10FF00;
    std::string result;
    for (const char *at = text.data(), *const end = at + text.size(); at < end;) {
        const std::ptrdiff_t length = SequenceLength(at, end);
        char buffer[6];
        const int written =
            length > 0 ? 0 : g_unichar_to_utf8(kByteCharacters + static_cast<unsigned char>(*at), buffer);
        result.append(length > 0 ? at : buffer, static_cast<std::size_t>(length > 0 ? length : written));
        at += std::max<std::ptrdiff_t>(1, length);
    }
    return result;
}

bool IsWellFormed(std::string_view text)
{
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

bool IsAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Matches in the C locale, where every byte is a character.
bool MatchBytes(const std::string& pattern, const char* name)
{
    static const locale_t kBytes = newlocale(LC_ALL_MASK, "C", nullptr);
    const locale_t before = uselocale(kBytes);
    const bool matches = fnmatch(pattern.c_str(), name, 0) == 0;
    uselocale(before);
    return matches;
}

}  // namespace

bool MatchPattern(const std::string& pattern, const char* name)
{
    // The common case. Matching in a UTF-8 locale is several times slower.
    if (IsAscii(name) && IsAscii(pattern)) {
        return MatchBytes(pattern, name);
    }
    // For a text with an invalid byte, fnmatch either treats all of it as bytes, so that "?" matches
    // part of a character, or matches nothing.
    if (IsUtf8Locale() && !(IsWellFormed(name) && IsWellFormed(pattern))) {
        return fnmatch(WithBytesAsCharacters(pattern).c_str(), WithBytesAsCharacters(name).c_str(), 0) == 0;
    }
    return fnmatch(pattern.c_str(), name, 0) == 0;
}

bool IsUsablePattern(const std::string& text)
{
    return !text.empty() && text.size() <= kMaxFilterBytes;
}

namespace {

/// Replaces characters that change the direction of the text around them, so that a name cannot pose as
/// another one. They are U+202A to U+202E and U+2066 to U+2069.
void SpellDirections(std::string& text)
{
    for (std::size_t at = 0; (at = text.find(char(0xE2), at)) != std::string::npos; ++at) {
        const gunichar character = g_utf8_get_char(text.c_str() + at);
        if ((character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069)) {
            text.replace(at, 3, FormatText("[U+%04X]", character));
        }
    }
}

}  // namespace

std::string DisplayText(std::string_view bytes)
{
    if (bytes.empty()) {
        return {};
    }
    const GlibPointer<char> valid(g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())));
    std::string text = valid.get();
    SpellDirections(text);
    return text;
}

std::string DisplayLine(std::string_view bytes)
{
    std::string text = DisplayText(bytes);
    for (const char* const end : {"\r", "\n", "\u2028", "\u2029"}) {
        for (std::size_t at = 0; (at = text.find(end, at)) != std::string::npos;) {
            text.replace(at, std::strlen(end), "\u21b5");
        }
    }
    return text;
}

std::string FormatText(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const GlibPointer<char> text(g_strdup_vprintf(format, arguments));
    va_end(arguments);
    return text.get();
}
