#include "model/fnkfilelist-rows.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <limits>

#include "core/fnkraii.h"

namespace {

const std::string& UserName(std::map<std::uint32_t, std::string>& known, std::uint32_t uid)
{
    const auto [entry, is_new] = known.try_emplace(uid);
    if (is_new) {
        const struct passwd* const user = getpwuid(uid);
        entry->second = user != nullptr ? DisplayText(user->pw_name) : std::string();
    }
    return entry->second;
}

const std::string& GroupName(std::map<std::uint32_t, std::string>& known, std::uint32_t gid)
{
    const auto [entry, is_new] = known.try_emplace(gid);
    if (is_new) {
        const struct group* const group = getgrgid(gid);
        entry->second = group != nullptr ? DisplayText(group->gr_name) : std::string();
    }
    return entry->second;
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
        return UserName(users_, row.uid);
    case COLUMN_USER_ID:
        return SignedText(row.uid);
    case COLUMN_GROUP:
        return GroupName(groups_, row.gid);
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
    rows_.push_back({.size = st.st_size,
                     .access_time = st.st_atim.tv_sec,
                     .modification_time = st.st_mtim.tv_sec,
                     .change_time = st.st_ctim.tv_sec,
                     .name = static_cast<std::uint32_t>(names_.size()),
                     .uid = st.st_uid,
                     .gid = st.st_gid,
                     .inode = static_cast<std::int32_t>(st.st_ino),
                     .mode = static_cast<std::uint16_t>(st.st_mode),
                     .type = type,
                     .is_directory = S_ISDIR(st.st_mode)});
    names_.insert(names_.end(), name, name + length);
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

void ReadEntries(int directory, DIR* stream, FileRows& rows)
{
    const UserIds user = GetUserIds();
    while (const struct dirent* const entry = readdir(stream)) {
        if (IsDotOrDotDot(entry->d_name) || CheckFileName(entry->d_name) == 0) {
            continue;
        }
        struct stat st = {};
        if (fstatat(directory, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0 || !IsListed(entry->d_name, st)) {
            continue;
        }
        rows.Add(entry->d_name, st, GetFileTypeAt(directory, entry->d_name, st, user));
    }
}

}  // namespace

bool ReadFileRows(const std::string& path, FileRows& rows)
{
    struct stat st = {};
    if (lstat(path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        return false;
    }
    rows.Clear();
    const DirectoryStream stream(opendir(path.c_str()));
    if (stream != nullptr) {
        ReadEntries(dirfd(stream.get()), stream.get(), rows);
    }
    rows.Add("..", st, FT_DIRECTORY);
    rows.Reverse();
    rows.ShrinkToFit();
    return true;
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
