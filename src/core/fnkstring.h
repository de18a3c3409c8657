#pragma once
// User-visible texts that are looked up by number, and the macros that mark all others.

#include <libintl.h>

#include <string>

/// Translates now.
#define _(text) gettext(text)
/// Marks a text in a table for translation when it is looked up.
#define N_(text) text

constexpr int kMenuEntryCount = 27;
constexpr int kToolSlotCount = 9;

/// These functions translate on every call. Indices out of range give an empty text.

/// Help text of a menu entry; empty for separators.
std::string GetMenuTipsString(int index);
/// Tooltip of a toolbar slot; empty for spaces.
std::string GetToolTipsString(int slot);
/// Title of a detail column by its ColumnId.
std::string GetListColumnString(int id);
/// The ColumnId with this translated title; 11 if there is none, 0 for null.
int GetListStringColumn(const char* title);

/// The directory of the message catalogues: the one beside program_directory, which is also found
/// in a build or after a move, else the installed one.
std::string FindCatalogues(const std::string& program_directory);
