#pragma once
// User-visible texts that are addressed by number, and the mark of every other one.

#include <libintl.h>

#include <string>

/// Translates now.
#define _(text) gettext(text)
/// Marks a text in a table; it is translated where it is fetched.
#define N_(text) text

constexpr int kMenuEntryCount = 27;
constexpr int kToolSlotCount = 9;

/// The functions below translate at every call. An index outside the table gives an empty text.

/// Help text of a menu entry; empty for separators.
std::string GetMenuTipsString(int index);
/// Tooltip of a toolbar slot; empty for spaces.
std::string GetToolTipsString(int slot);
/// Title of a detail column, addressed by its ColumnId.
std::string GetListColumnString(int id);
/// The ColumnId of which title is the translated title; 11 when there is none, 0 for null.
int GetListStringColumn(const char* title);

/// The directory of the message catalogues: those that belong to the program in that directory, or
/// else where they are installed.
std::string FindCatalogues(const std::string& program_directory);
