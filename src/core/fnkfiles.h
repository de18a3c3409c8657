#pragma once
// Whole files in and out of memory, and texts of sections and "key=value" lines.

#include <string>
#include <string_view>

#include "core/fnktable.h"

enum FileResult {
    FILE_DONE = 0,
    FILE_NO_ARGUMENT = -1,
    FILE_NOT_BUILT = -2,  ///< The text to be written could not be made.
    FILE_MISSING = 1,     ///< Its status cannot be read.
    FILE_NOT_OPENED = 2,  ///< Cannot be opened, or is no regular file.
    FILE_NOT_READ = 3,
    FILE_KEY_MISSING = 4,  ///< The section or the key is not there.
    FILE_VALUE_TOO_LONG = 5,
    FILE_NOT_WRITTEN = 6,
};

/// Reads the whole file, through symbolic links, and cuts it at the first NUL.
FileResult ReadFile(const std::string& path, std::string* text);

/// Replaces the file by one of these bytes, through symbolic links: a complete new file is made
/// beside it, with its permissions (0600 when there was none), and renamed over it, so that the
/// name never stands for anything but the old file or the new one, whole. Ends with sync().
FileResult WriteFile(const std::string& path, std::string_view data);

/// The first "\n" or the NUL at or after position, never inside a character. Null for null.
const char* GetLastCharPosition(const char* position);

/// Finds the first line of the section that begins with key; start and end enclose what follows
/// the key without the blanks, "=" and tabs around it in front. section includes its brackets.
FileResult GetValuePosition(const char* text, const char* section, const char* key, const char** start,
                            const char** end);

/// The Get functions leave their result as it was unless they return FILE_DONE.

/// A value of fewer than size bytes.
FileResult GetString(const char* text, const char* section, const char* key, std::string& value, std::size_t size);
/// A decimal number; text that is none counts as 0, one out of range as the nearest int.
FileResult GetNumeric(const char* text, const char* section, const char* key, int& number);
/// 1 when the value begins with "yes" in any case, else 0.
FileResult GetFlag(const char* text, const char* section, const char* key, int& flag);
/// A colour component of section "[Setting]", stored as 0 to 255; anything else gives 0.
FileResult GetColor(const char* text, const char* key, std::uint16_t& component);
/// Appends the entries of a history in the order of their numbers.
void GetHistoryList(const char* text, const char* section, History& list);

/// The Set functions append to text; entries of one section must be added in a row, the first
/// adds the section line. False when the value is longer than 4095 bytes or holds a newline.
bool SetString(std::string& text, const char* section, const std::string& key, const std::string& value);
bool SetNumeric(std::string& text, const char* section, const std::string& key, int number);
bool SetFlag(std::string& text, const char* section, const std::string& key, int flag);
/// Leaves out entries that cannot be written and numbers the others without gaps.
void SetHistoryList(std::string& text, const char* section, const History& list);
