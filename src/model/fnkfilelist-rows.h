#pragma once
// The rows of the file list, read from a directory and filtered. The text of a cell is made on
// demand.

#include <sys/stat.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/fnkutil.h"

/// One entry. A list may have a hundred thousand, so no field allocates memory.
struct FileRow {
    std::int64_t size;         ///< Bytes.
    std::int64_t access_time;  ///< Seconds since the epoch, like the next two.
    std::int64_t modification_time;
    std::int64_t change_time;
    std::uint32_t name;  ///< Offset into FileRows::names_.
    std::uint32_t uid;
    std::uint32_t gid;
    std::int32_t inode;  ///< The low 32 bits, shown as a signed number.
    std::uint16_t mode;
    FileType type;
    bool is_directory;  ///< Shown with the folder image. False for links.
};

/// What may take long to learn and is shown later, if need be.
struct RowDetails {
    std::vector<std::string> links;  ///< The symbolic links; once read, those without a target.
    std::map<std::uint32_t, std::string> users;
    std::map<std::uint32_t, std::string> groups;
};

class FileRows {
public:
    /// Number of rows, including "..".
    std::size_t Count() const { return rows_.size(); }
    bool IsEmpty() const { return rows_.empty(); }
    const FileRow& Row(std::size_t index) const { return rows_[index]; }
    /// The name in bytes; valid until Add, Clear or ShrinkToFit.
    const char* Name(const FileRow& row) const { return names_.data() + row.name; }
    const char* Name(std::size_t index) const { return Name(rows_[index]); }
    bool IsParentRow(std::size_t index) const
    {
        // Sorting asks this of every row. Testing the flag first avoids a cache miss for most names.
        return rows_[index].is_directory && std::string_view(Name(index)) == "..";
    }

    /// The text of a cell in UTF-8; empty for an unknown column_id, and for an owner without a name.
    std::string CellText(const FileRow& row, int column_id) const;

    /// Adds a row, which at first may have only a name. All names together take at most 4 GiB.
    void Add(const char* name, const struct stat& st = {}, FileType type = FT_NORMAL);
    /// May be called for different rows at the same time.
    void SetStatus(std::size_t index, const struct stat& st, FileType type);
    void SetDetails(const RowDetails& details);
    /// Leaves only the rows with a true mark. Rows must still be in the order of their names' addition.
    void Keep(const std::vector<char>& marks);
    void Clear();
    /// Moves row order[i] to index i. order is a permutation of all indices.
    void Permute(const std::vector<std::uint32_t>& order);
    void Reverse();
    /// Releases spare capacity.
    void ShrinkToFit();

private:
    std::vector<FileRow> rows_;
    std::vector<char> names_;  ///< Each ends in a NUL.
    std::map<std::uint32_t, std::string> users_;
    std::map<std::uint32_t, std::string> groups_;
};

/// Reads a directory into rows: first "..", which shows the status of the directory itself, then
/// the entries that pass the filters, in reverse order of reading. path ends in "/". A directory
/// that cannot be read has only "..". False, with rows unchanged, if path is not a directory.
bool ReadFileRows(const std::string& path, FileRows& rows);

/// The same in two steps, each of which ends early once stopped is true. After the first, links count as
/// good and owners have no names; details says what there is to learn.
bool ReadFileRows(const std::string& path, FileRows& rows, RowDetails& details, const std::atomic<bool>& stopped);
void ReadRowDetails(const std::string& path, RowDetails& details, const std::atomic<bool>& stopped);

/// 1 if the name filter is off or lets a file of this name pass, else 0. The caller exempts
/// directories from the filter.
int CheckFilter(const char* name);
/// Type and permissions in 10 characters, such as "drwxr-xr-x".
std::string SetPermission(mode_t mode);
/// Local time as "Mar 07 2001 09:05", in a Japanese locale as "2001/03/07 09:05". If seconds is set,
/// the seconds follow. Null if the time has no calendar date.
std::optional<std::string> GetFormatTime(std::int64_t time, bool seconds);
