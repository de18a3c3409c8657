#pragma once
// Sorts the file list by SortColumn, SortType, SortCase and MixFileDir.

#include <cstdint>
#include <vector>

#include "model/fnkfilelist-rows.h"

/// Compares bytes; with SortCase, ignores the case of ASCII letters. Negative, 0 or positive.
int CompareString(const char* a, const char* b);
/// 1 if a is larger than b, else 0. Both are texts made by ConvertSize.
int CompareSize(const char* a, const char* b);
/// Positive if a is later than b, else 0 or negative. Both are texts made by GetFormatTime without
/// seconds.
int CompareTime(const char* a, const char* b);

/// 1 if row b goes before row a, else 0. For equal rows, 0 in ascending and 1 in descending order.
/// Slow: makes and parses the texts of the cells. Defines the order that SortFileRows produces.
int CompareFileListRow(const FileRows& rows, std::size_t a, std::size_t b);

/// Sorts as CompareFileListRow does, but with one precomputed key per row. Equal rows keep their
/// order if ascending and reverse it if descending. Returns the old index of each row.
std::vector<std::uint32_t> SortFileRows(FileRows& rows);

/// SortColumn, or NameColumn if the list has no such column.
int EffectiveSortColumn();
/// Whether the displayed values of the sorted column grow from top to bottom. Ids and inode numbers
/// are listed in reverse: in ascending order, the largest comes first.
bool IsShownAscending();
