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
    FILE_NOT_OPENED = 2,   ///< When writing, also if it is not a regular file.
    FILE_NOT_READ = 3,     ///< Also if it is not a regular file or is larger than 64 MiB.
    FILE_KEY_MISSING = 4,  ///< No such section or key.
    FILE_VALUE_TOO_LONG = 5,
    FILE_NOT_WRITTEN = 6,
};

/// Reads the whole file up to the first NUL. Follows symbolic links.
FileResult ReadFile(const std::string& path, std::string* text);

/// Replaces the content of a file atomically: writes a new file beside the old one, renames it over
/// that and calls sync(). The new file keeps the owner and permissions of the old one; without an
/// old one, its mode is 0600. Follows symbolic links. A file whose name cannot be given to another, as in
/// a directory without write permission or where it is mounted, is written in place.
FileResult WriteFile(const std::string& path, std::string_view data);

/// The end of the line at position: the first "\n" that is not the second byte of a character, or
/// else the final NUL. Null for null.
const char* GetLastCharPosition(const char* position);

/// Finds the value of the first line of the section that begins with key. The value starts after
/// the key and any blanks, tabs and "=". section includes its brackets.
FileResult GetValuePosition(const char* text, const char* section, const char* key, const char** start,
                            const char** end);

// The Get functions change their result only if they return FILE_DONE. A missing key gives
// FILE_NO_ARGUMENT. So does a number, flag or colour of implausible length.

/// A value of fewer than size bytes; FILE_VALUE_TOO_LONG for a longer one.
FileResult GetString(const char* text, const char* section, const char* key, std::string& value, std::size_t size);
/// The decimal number that the value begins with, clamped to int; 0 if there is none.
FileResult GetNumeric(const char* text, const char* section, const char* key, int& number);
/// 1 if the value begins with "yes" in any case, else 0.
FileResult GetFlag(const char* text, const char* section, const char* key, int& flag);
/// Reads the high byte of a colour component from section "[Setting]". A number outside 0 to 255
/// makes the component 0.
FileResult GetColor(const char* text, const char* key, std::uint16_t& component);
/// Appends the entries of a history in the order of their numbers. Skips empty and overlong ones.
void GetHistoryList(const char* text, const char* section, History& list);

// The Set functions append to text. Add all entries of a section one after the other; the first
// adds the section line. False if the value is longer than 4095 bytes or contains a newline.

bool SetString(std::string& text, const char* section, const std::string& key, const std::string& value);
bool SetNumeric(std::string& text, const char* section, const std::string& key, int number);
bool SetFlag(std::string& text, const char* section, const std::string& key, int flag);
/// Skips entries that cannot be written; the numbers have no gaps.
void SetHistoryList(std::string& text, const char* section, const History& list);
