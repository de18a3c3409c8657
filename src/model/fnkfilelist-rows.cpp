#include "model/fnkfilelist-rows.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <limits>
#include <set>
#include <utility>

#include "core/fnkfiles-place.h"
#include "core/fnkraii.h"
#include "core/fnkthread.h"
#include "core/fnkutil-text.h"
#include "engine/fnkfilemenu-property-change.h"

namespace {

std::string NameOf(const std::map<std::uint32_t, std::string>& names, std::uint32_t id)
{
    const auto entry = names.find(id);
    return entry != names.end() ? entry->second : std::string();
}

std::string SignedText(std::uint32_t number)
{
    return std::to_string(static_cast<std::int32_t>(number));
}

}  // namespace

std::string FileRows::CellText(const FileRow& row, int column_id) const
{
    switch (column_id) {
    case COLUMN_NAME:
        return DisplayText(Name(row));
    case COLUMN_SIZE:
        return ConvertSize(static_cast<std::uint64_t>(row.size));
    case COLUMN_PERMISSION:
        return SetPermission(row.mode);
    case COLUMN_USER:
        return NameOf(users_, row.uid);
    case COLUMN_USER_ID:
        return SignedText(row.uid);
    case COLUMN_GROUP:
        return NameOf(groups_, row.gid);
    case COLUMN_GROUP_ID:
        return SignedText(row.gid);
    case COLUMN_ACCESS_TIME:
        return GetFormatTime(row.access_time, false).value_or("");
    case COLUMN_MODIFICATION_TIME:
        return GetFormatTime(row.modification_time, false).value_or("");
    case COLUMN_CHANGE_TIME:
        return GetFormatTime(row.change_time, false).value_or("");
    case COLUMN_INODE:
        return std::to_string(row.inode);
    default:
        return {};
    }
}

void FileRows::Add(const char* name, const struct stat& st, FileType type)
{
    const std::size_t length = std::strlen(name) + 1;
    if (names_.size() + length > std::numeric_limits<std::uint32_t>::max()) {
        return;
    }
    FileRow row = {};
    row.name = static_cast<std::uint32_t>(names_.size());
    rows_.push_back(row);
    names_.insert(names_.end(), name, name + length);
    SetStatus(rows_.size() - 1, st, type);
}

void FileRows::SetStatus(std::size_t index, const struct stat& st, FileType type)
{
    rows_[index] = {.size = st.st_size,
                    .access_time = st.st_atim.tv_sec,
                    .modification_time = st.st_mtim.tv_sec,
                    .change_time = st.st_ctim.tv_sec,
                    .name = rows_[index].name,
                    .uid = st.st_uid,
                    .gid = st.st_gid,
                    .inode = static_cast<std::int32_t>(st.st_ino),
                    .mode = static_cast<std::uint16_t>(st.st_mode),
                    .type = type,
                    .is_directory = S_ISDIR(st.st_mode)};
}

void FileRows::SetDetails(const RowDetails& details)
{
    users_ = details.users;
    groups_ = details.groups;
    if (details.links.empty()) {
        return;
    }
    const std::set<std::string_view> stalled(details.links.begin(), details.links.end());
    for (FileRow& row : rows_) {
        if (row.type == FT_SYMLINK && stalled.contains(Name(row))) {
            row.type = FT_STALLED_LINK;
        }
    }
}

void FileRows::Keep(const std::vector<char>& marks)
{
    std::size_t kept = 0;
    std::size_t end = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (marks[i] == 0) {
            continue;
        }
        const std::size_t length = std::strlen(Name(i)) + 1;
        std::memmove(names_.data() + end, Name(i), length);
        rows_[kept] = rows_[i];
        rows_[kept++].name = static_cast<std::uint32_t>(end);
        end += length;
    }
    rows_.resize(kept);
    names_.resize(end);
}

void FileRows::Clear()
{
    *this = FileRows();
}

void FileRows::Permute(const std::vector<std::uint32_t>& order)
{
    // In place, cycle by cycle: allocating a second block for a million rows would take longer than
    // moving them.
    std::vector<bool> placed(order.size());
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (placed[start]) {
            continue;
        }
        const FileRow first = rows_[start];
        std::size_t place = start;
        while (order[place] != start) {
            rows_[place] = rows_[order[place]];
            placed[place] = true;
            place = order[place];
        }
        rows_[place] = first;
        placed[place] = true;
    }
}

void FileRows::Reverse()
{
    std::reverse(rows_.begin(), rows_.end());
}

void FileRows::ShrinkToFit()
{
    rows_.shrink_to_fit();
    names_.shrink_to_fit();
}

namespace {

bool IsListed(const char* name, const struct stat& st)
{
    return S_ISDIR(st.st_mode) || CheckFilter(name) != 0;
}

/// Names are read first, because only then can several threads ask for the rest.
void ReadEntries(DIR* stream, FileRows& rows, const std::atomic<bool>& stopped)
{
    while (const struct dirent* const entry = stopped ? nullptr : readdir(stream)) {
        if (!IsDotOrDotDot(entry->d_name) && CheckFileName(entry->d_name) != 0) {
            rows.Add(entry->d_name);
        }
    }
    std::vector<char> marks(rows.Count());
    const UserIds user = GetUserIds();
    ForEachIndex(rows.Count(), stopped, [&rows, &marks, &user, directory = dirfd(stream)](std::size_t i) {
        const char* const name = rows.Name(i);
        struct stat st = {};
        if (fstatat(directory, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && IsListed(name, st)) {
            rows.SetStatus(i, st, GetOwnType(name, st, user));
            marks[i] = 1;
        }
    });
    rows.Keep(marks);
}

}  // namespace

bool ReadFileRows(const std::string& path, FileRows& rows)
{
    const std::atomic<bool> stopped = false;
    RowDetails details;
    if (!ReadFileRows(path, rows, details, stopped)) {
        return false;
    }
    ReadRowDetails(path, details, stopped);
    rows.SetDetails(details);
    return true;
}

bool ReadFileRows(const std::string& path, FileRows& rows, RowDetails& details, const std::atomic<bool>& stopped)
{
    const DirectoryStream stream = OpenDirectory({AT_FDCWD, path, path});
    struct stat st = {};
    const int failed = stream != nullptr ? fstat(dirfd(stream.get()), &st) : lstat(path.c_str(), &st);
    if (failed != 0 || !S_ISDIR(st.st_mode)) {
        return false;
    }
    rows.Clear();
    if (stream != nullptr) {
        ReadEntries(stream.get(), rows, stopped);
    }
    rows.Add("..", st, FT_DIRECTORY);
    rows.Reverse();
    rows.ShrinkToFit();
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        const FileRow& row = rows.Row(i);
        details.users.try_emplace(row.uid);
        details.groups.try_emplace(row.gid);
        if (row.type == FT_SYMLINK) {
            details.links.emplace_back(rows.Name(i));
        }
    }
    return true;
}

void ReadRowDetails(const std::string& path, RowDetails& details, const std::atomic<bool>& stopped)
{
    const Descriptor directory(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::vector<char> marks(details.links.size());
    ForEachIndex(marks.size(), stopped, [&](std::size_t i) {
        marks[i] = GetLinkType(directory.Get(), details.links[i].c_str(), path.size()) == FT_STALLED_LINK ? 1 : 0;
    });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i] != 0) {
            std::swap(details.links[kept++], details.links[i]);
        }
    }
    details.links.resize(kept);
    for (auto& [id, name] : details.users) {
        name = DisplayText(FindUserName(id));
    }
    for (auto& [id, name] : details.groups) {
        name = DisplayText(FindGroupName(id));
    }
}

int CheckFilter(const char* name)
{
    if (!pGTable->Filter || std::strcmp(name, "..") == 0) {
        return 1;
    }
    return MatchPattern(pGTable->FilterName, name) ? 1 : 0;
}

std::string SetPermission(mode_t mode)
{
    char type = '-';
    switch (mode & S_IFMT) {
    case S_IFDIR:
        type = 'd';
        break;
    case S_IFSOCK:
        type = 's';
        break;
    case S_IFCHR:
        type = 'c';
        break;
    case S_IFBLK:
        type = 'b';
        break;
    case S_IFLNK:
        type = 'l';
        break;
    case S_IFIFO:
        type = 'p';
        break;
    default:
        break;
    }
    std::string text(1, type);
    constexpr std::string_view kBits = "rwxrwxrwx";
    for (std::size_t i = 0; i < kBits.size(); ++i) {
        text += (mode & (0400U >> i)) != 0 ? kBits[i] : '-';
    }
    const auto mark = [&text, mode](mode_t bit, std::size_t place, char with_execute, char without) {
        if ((mode & bit) != 0) {
            text[place] = text[place] == 'x' ? with_execute : without;
        }
    };
    mark(S_ISUID, 3, 's', 'S');
    mark(S_ISGID, 6, 's', 'S');
    mark(S_ISVTX, 9, 't', 'T');
    return text;
}

std::optional<std::string> GetFormatTime(std::int64_t time, bool seconds)
{
    // Not translated, because CompareTime parses the names.
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t stamp = time;
    struct tm local = {};
    if (localtime_r(&stamp, &local) == nullptr) {
        return std::nullopt;
    }
    const long year = local.tm_year + 1900L;
    std::string text = pGTable->JapaneseLocale ? FormatText("%ld/%02d/%02d %02d:%02d", year, local.tm_mon + 1,
                                                            local.tm_mday, local.tm_hour, local.tm_min)
                                               : FormatText("%s %02d %ld %02d:%02d", kMonths[local.tm_mon],
                                                            local.tm_mday, year, local.tm_hour, local.tm_min);
    if (seconds) {
        text += FormatText(":%02d", local.tm_sec);
    }
    return text;
}
