#pragma once
// The rows of the file list without the widget: read from a directory, chosen by the filters, each
// cell made into text only when it is asked for.

#include <sys/stat.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/fnkutil.h"

/// One entry; a hundred thousand of these are in memory at a time, so nothing here allocates.
struct FileRow {
    std::int64_t size;         ///< Bytes.
    std::int64_t access_time;  ///< Seconds since the epoch, like the next two.
    std::int64_t modification_time;
    std::int64_t change_time;
    std::uint32_t name;  ///< Where the name starts in FileRows::names.
    std::uint32_t uid;
    std::uint32_t gid;
    std::int32_t inode;  ///< As it is shown: the low 32 bits, signed.
    std::uint16_t mode;
    FileType type;
    bool is_directory;  ///< Carries the folder image; a link to a directory does not.
};

class FileRows {
public:
    /// Number of rows, ".." included.
    std::size_t Count() const { return rows_.size(); }
    bool IsEmpty() const { return rows_.empty(); }
    const FileRow& Row(std::size_t index) const { return rows_[index]; }
    /// The entry's name, bytes; valid until the rows change.
    const char* Name(const FileRow& row) const { return names_.data() + row.name; }
    const char* Name(std::size_t index) const { return Name(rows_[index]); }
    bool IsParentRow(std::size_t index) const
    {
        // Asked of every row in a sort: the names lie scattered, so few of them are looked at.
        return rows_[index].is_directory && std::string_view(Name(index)) == "..";
    }

    /// The cell of a kind, UTF-8; empty for a kind that there is none of.
    std::string CellText(const FileRow& row, int column_id) const;

    void Add(const char* name, const struct stat& st, FileType type);
    void Clear();
    /// Puts row order[i] at place i; order is a permutation of all rows.
    void Permute(const std::vector<std::uint32_t>& order);
    /// Rows in the order in which they were added, reversed; a list grows at its top.
    void Reverse();
    /// Gives back what growing took too much of.
    void ShrinkToFit();

private:
    std::vector<FileRow> rows_;
    std::vector<char> names_;  ///< Each with its NUL.
    // Looked up once an id, not once a cell.
    mutable std::map<std::uint32_t, std::string> users_;
    mutable std::map<std::uint32_t, std::string> groups_;
};

/// Replaces rows by the ".." row, which shows the directory itself, and the listed entries of the
/// directory, the last one read first. False when path, which ends in "/", is no directory; then
/// rows stays as it was. A directory that cannot be read gives ".." alone.
bool ReadFileRows(const std::string& path, FileRows& rows);

/// 1 when the name filter lets an entry pass that is no directory, else 0.
int CheckFilter(const char* name);
/// The 10 characters of a long listing, as "drwxr-xr-x".
std::string SetPermission(mode_t mode);
/// Local time as "Mar 07 2001 09:05", or "2001/03/07 09:05" for a Japanese locale; nothing when
/// the time has no calendar date.
std::optional<std::string> GetFormatTime(std::int64_t time, bool seconds);
