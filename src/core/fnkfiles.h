#pragma once
// Reads and writes whole files, and text made of sections and "key=value" lines.

#include <string>
#include <string_view>

#include "core/fnktable.h"

enum FileResult {
    FILE_DONE = 0,
    FILE_NO_ARGUMENT = -1,
    FILE_NOT_BUILT = -2,   ///< A value cannot be written.
    FILE_MISSING = 1,      ///< lstat failed.
    FILE_NOT_OPENED = 2,   ///< When writing, also: not a regular file.
    FILE_NOT_READ = 3,     ///< Also: not a regular file, or larger than 64 MiB.
    FILE_KEY_MISSING = 4,  ///< No such section or key.
    FILE_VALUE_TOO_LONG = 5,
    FILE_NOT_WRITTEN = 6,
};

/// Reads the whole file up to the first NUL. Follows symbolic links.
FileResult ReadFile(const std::string& path, std::string* text);

/// Replaces the content of a file atomically: writes a new file beside it, with the same
/// permissions (0600 if there was none), renames it over the old one and calls sync(). Follows
/// symbolic links.
FileResult WriteFile(const std::string& path, std::string_view data);

/// The first "\n" or NUL at or after position that is not the second byte of a character. Null
/// for null.
const char* GetLastCharPosition(const char* position);

/// Finds the value of the first line of the section that begins with key. The value starts after
/// the key and any blanks, tabs and "=". section includes its brackets.
FileResult GetValuePosition(const char* text, const char* section, const char* key, const char** start,
                            const char** end);

/// The Get functions change their result only if they return FILE_DONE. If the key is missing they
/// return FILE_NO_ARGUMENT.

/// A value of fewer than size bytes.
FileResult GetString(const char* text, const char* section, const char* key, std::string& value, std::size_t size);
/// A decimal number, clamped to int; 0 for any other text.
FileResult GetNumeric(const char* text, const char* section, const char* key, int& number);
/// 1 when the value begins with "yes" in any case, else 0.
FileResult GetFlag(const char* text, const char* section, const char* key, int& flag);
/// The high byte of a colour component, in section "[Setting]". Out of 0 to 255, the component
/// becomes 0.
FileResult GetColor(const char* text, const char* key, std::uint16_t& component);
/// Appends the entries of a history in the order of their numbers.
void GetHistoryList(const char* text, const char* section, History& list);

/// The Set functions append to text. Add all entries of a section in a row; the first one adds the
/// section line. False if the value is longer than 4095 bytes or contains a newline.
bool SetString(std::string& text, const char* section, const std::string& key, const std::string& value);
bool SetNumeric(std::string& text, const char* section, const std::string& key, int number);
bool SetFlag(std::string& text, const char* section, const std::string& key, int flag);
/// Skips entries that cannot be written; the numbers have no gaps.
void SetHistoryList(std::string& text, const char* section, const History& list);
