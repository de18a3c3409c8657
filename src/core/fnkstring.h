#pragma once
// User-visible texts that are looked up by number, and the macros that mark all others.

#include <libintl.h>

#include <string>

/// Translates now.
#define _(text) gettext(text)
/// Marks a text in a table; the code that looks it up translates it.
#define N_(text) text

constexpr int kMenuEntryCount = 27;
constexpr int kToolSlotCount = 9;

// These functions translate on every call. Indices out of range give an empty text.

/// Help text of a menu entry; empty for separators.
std::string GetMenuTipsString(int index);
/// Tooltip of a toolbar slot; empty for spaces.
std::string GetToolTipsString(int slot);
/// Title of a detail column by its ColumnId.
std::string GetListColumnString(int id);
/// The ColumnId with this translated title; kColumnKinds if there is none, 0 for null.
int GetListStringColumn(const char* title);

/// The directory of the message catalogues. Looks near program_directory first, which also works in
/// a build tree and after the installed tree was moved; else returns the path fixed at build time.
std::string FindCatalogues(const std::string& program_directory);
