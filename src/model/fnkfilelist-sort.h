#pragma once
// The order of the file list, as SortColumn, SortType, SortCase and MixFileDir say.

#include <cstdint>
#include <vector>

#include "model/fnkfilelist-rows.h"

/// Byte order; with SortCase on, ASCII letters count as small ones.
int CompareString(const char* a, const char* b);
/// 1 when a, a text of ConvertSize, is larger than b, else 0.
int CompareSize(const char* a, const char* b);
/// Positive when a, a text of GetFormatTime without seconds, is later than b, else not.
int CompareTime(const char* a, const char* b);

/// 1 when row b goes before row a, 0 when a goes first or, in ascending order, both are equal.
/// This is the definition of the order; it makes and parses the cell texts on every call.
int CompareFileListRow(const FileRows& rows, std::size_t a, std::size_t b);

/// Sorts by CompareFileListRow, but computes one key a row instead of comparing texts. Rows that
/// compare equal keep their order ascending and reverse it descending. Returns the old place of
/// each row.
std::vector<std::uint32_t> SortFileRows(FileRows& rows);

/// SortColumn, or NameColumn when it stands for no column of the list.
int EffectiveSortColumn();
/// Whether the values of the sorted column grow downwards as displayed.
bool IsShownAscending();
