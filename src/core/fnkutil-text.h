#pragma once
// Names and paths as text: stepping through their characters, matching patterns, and showing them.
// They are byte strings, and nothing says in which encoding.

#include <string>
#include <string_view>

/// Steps through the characters of a text whose encoding is uncertain.
///
/// In a UTF-8 locale, a character is a UTF-8 sequence or a single invalid byte. In any other locale,
/// a character is a UTF-8 sequence if the rest of the text is well-formed UTF-8. If it is not, a byte
/// of 0x80 or above forms a character with the byte after it, as in two-byte Japanese encodings.
class CharStepper {
public:
    /// The text is [begin, end) and must outlive the stepper.
    CharStepper(const char* begin, const char* end);
    /// The character after the one at position, at most end. Positions must not decrease: this lets
    /// a walk over the whole text take linear time.
    const char* Next(const char* position);

private:
    bool IsWellFormedFrom(const char* position);

    const char* end_;
    const char* ill_formed_;             ///< The rest is ill-formed from every position up to here.
    const char* well_formed_ = nullptr;  ///< The rest is well-formed from here; null until known.
    bool utf8_locale_;
};

/// The first occurrence of delimiter as a character of its own, which may be at text itself. With
/// delimiter 0, the second character. Null if there is none, or if text is null.
const char* CharNext(const char* text, char delimiter);

/// Whether the whole name matches a shell wildcard pattern. Case matters, and a leading "." is not
/// special. In a UTF-8 locale an invalid byte counts as one character, as it does on the screen.
bool MatchPattern(const std::string& pattern, const char* name);
/// Whether a typed pattern is neither empty nor too long to be stored.
bool IsUsablePattern(const std::string& text);

/// Bytes as valid UTF-8. Invalid bytes become the replacement character, and characters that change the
/// direction of writing become their number, such as "[U+202E]".
std::string DisplayText(std::string_view bytes);
/// The same on one line: an arrow stands for each line break.
std::string DisplayLine(std::string_view bytes);
/// printf into a string.
std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));
