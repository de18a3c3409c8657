#include "core/fnkfiles.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <map>

#include "core/fnkfiles-newfile.h"
#include "core/fnkfiles-place.h"
#include "core/fnkraii.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"

namespace {

/// Far beyond any real per-user file. The limit keeps a broken one from exhausting the memory.
constexpr off_t kMaxFileBytes = 64 << 20;
constexpr std::size_t kMaxValueBytes = 4095;
constexpr std::size_t kNumberSize = 63;
constexpr std::size_t kFlagSize = 15;

bool ReadAll(int fd, std::string& data)
{
    char block[1 << 16];
    for (;;) {
        const ssize_t count = read(fd, block, sizeof block);
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            data.append(block, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
        if (data.size() > static_cast<std::size_t>(kMaxFileBytes)) {
            return false;
        }
    }
}

bool WriteAll(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t count = write(fd, data.data(), data.size());
        if (count > 0) {
            data.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Follows a chain of symbolic links to its end, which need not exist. Empty for a loop.
std::string FollowLinks(std::string path)
{
    for (int links = 0; links <= kMaxLinks; ++links) {
        if (!FollowLink(path)) {
            return path;
        }
    }
    return {};
}

/// Renaming over a file needs no write permission for it, so check that separately.
bool IsWritableFile(const std::string& path)
{
    return static_cast<bool>(Descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW)));
}

/// Gives a new file the owner and permissions of the old one. When root writes the settings of a
/// user, the file must still belong to that user. If changing the owner is not permitted, the writer
/// owns the file.
bool CopyOwnerAndMode(int fd, const struct stat& old)
{
    if (old.st_uid != geteuid() || old.st_gid != getegid()) {
        if (fchown(fd, old.st_uid, old.st_gid) != 0 && errno != EPERM) {
            return false;
        }
    }
    return fchmod(fd, old.st_mode & kPermissionBits) == 0;
}

/// Whether only the directory, or a mount, keeps a file from being replaced; it may still be written.
bool IsNameFixed(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

bool Overwrite(int fd, std::string_view data)
{
    return lseek(fd, 0, SEEK_SET) == 0 && WriteAll(fd, data) && ftruncate(fd, static_cast<off_t>(data.size())) == 0 &&
           fsync(fd) == 0;
}

/// Writes an old file in place. If that fails, puts its content back.
FileResult WriteInPlace(const std::string& path, std::string_view data)
{
    const Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    std::string before;
    if (!file || !ReadAll(file.Get(), before)) {
        return FILE_NOT_OPENED;
    }
    if (Overwrite(file.Get(), data)) {
        return syncfs(file.Get()) == 0 ? FILE_DONE : FILE_NOT_WRITTEN;
    }
    Overwrite(file.Get(), before);
    return FILE_NOT_WRITTEN;
}

}  // namespace

FileResult ReadFile(const std::string& path, std::string* text)
{
    if (text == nullptr) {
        return FILE_NO_ARGUMENT;
    }
    struct stat st = {};
    if (lstat(path.c_str(), &st) != 0) {
        return FILE_MISSING;
    }
    if (S_ISREG(st.st_mode) && st.st_size == 0) {
        text->clear();
        return FILE_DONE;
    }
    // Without O_NONBLOCK, opening a FIFO would block until it has a writer.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) {
        return FILE_NOT_OPENED;
    }
    std::string data;
    if (fstat(file.Get(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > kMaxFileBytes ||
        !ReadAll(file.Get(), data)) {
        return FILE_NOT_READ;
    }
    data.resize(std::strlen(data.c_str()));
    *text = std::move(data);
    return FILE_DONE;
}

FileResult WriteFile(const std::string& path, std::string_view data)
{
    if (path.empty() || data.data() == nullptr) {
        return FILE_NO_ARGUMENT;
    }
    const std::string target = FollowLinks(path);
    struct stat old = {};
    const bool exists = !target.empty() && lstat(target.c_str(), &old) == 0;
    if (target.empty() || (exists && (!S_ISREG(old.st_mode) || !IsWritableFile(target)))) {
        return FILE_NOT_OPENED;
    }
    const PathPlace place(target);
    if (!place) {
        return FILE_NOT_OPENED;
    }
    NewFile file(place.Get().directory);
    if (!file) {
        return exists && IsNameFixed(file.Error()) ? WriteInPlace(target, data) : FILE_NOT_OPENED;
    }
    const bool is_complete =
        (!exists || CopyOwnerAndMode(file.Get(), old)) && WriteAll(file.Get(), data) && fsync(file.Get()) == 0;
    if (!is_complete || file.Prepare() != 0) {
        return FILE_NOT_WRITTEN;
    }
    if (const int error = file.CommitOver(place.Get().name); error != 0) {
        return exists && IsNameFixed(error) ? WriteInPlace(target, data) : FILE_NOT_WRITTEN;
    }
    return syncfs(file.Get()) == 0 ? FILE_DONE : FILE_NOT_WRITTEN;
}

namespace {

const char* FindLineEnd(CharStepper& stepper, const char* position, const char* text_end)
{
    while (position != text_end && *position != '\n') {
        position = stepper.Next(position);
    }
    return position;
}

/// The first line that begins with section, else the first occurrence of section. A value may
/// contain it as well, for example as the name of a directory.
const char* FindSection(const char* text, const char* section)
{
    const char* const first = std::strstr(text, section);
    const char* found = first;
    while (found != nullptr && found != text && found[-1] != '\n') {
        found = std::strstr(found + 1, section);
    }
    return found != nullptr ? found : first;
}

/// Calls use(line begin, line end) for each line of a section until use returns true. Returns whether
/// it ever did.
template <typename Use>
bool WalkSection(const char* text, const char* section, Use use)
{
    const char* const found = FindSection(text, section);
    if (found == nullptr) {
        return false;
    }
    const char* const text_end = found + std::strlen(found);
    CharStepper stepper(found, text_end);
    const char* end = FindLineEnd(stepper, found, text_end);
    while (end != text_end) {
        const char* const begin = end + 1;
        if (*begin == '[') {
            return false;
        }
        end = FindLineEnd(stepper, begin, text_end);
        if (use(begin, end)) {
            return true;
        }
    }
    return false;
}

const char* SkipSeparators(const char* position)
{
    return position + std::strspn(position, " =\t");
}

/// Records the value that a line gives to each history key. As in GetValuePosition, a key matches
/// every line that begins with it: "History12=x" also sets History1, to "2=x", unless an earlier line
/// has set it.
void CollectHistoryLine(std::string_view line, std::map<int, std::string>& values)
{
    constexpr std::string_view kKey = "History";
    if (!line.starts_with(kKey)) {
        return;
    }
    int number = 0;
    for (std::size_t i = kKey.size(); i < line.size() && line[i] >= '0' && line[i] <= '9'; ++i) {
        if (number > (INT_MAX - 9) / 10) {
            return;
        }
        number = number * 10 + (line[i] - '0');
        const std::size_t value = std::min(line.find_first_not_of(" =\t", i + 1), line.size());
        values.emplace(number, line.substr(value));
        if (number == 0) {
            return;  // Numbers have no leading zeros.
        }
    }
}

}  // namespace

const char* GetLastCharPosition(const char* position)
{
    if (position == nullptr) {
        return nullptr;
    }
    const char* const text_end = position + std::strlen(position);
    CharStepper stepper(position, text_end);
    return FindLineEnd(stepper, position, text_end);
}

FileResult GetValuePosition(const char* text, const char* section, const char* key, const char** start,
                            const char** end)
{
    if (text == nullptr || section == nullptr || key == nullptr || start == nullptr || end == nullptr) {
        return FILE_NO_ARGUMENT;
    }
    const std::size_t key_length = std::strlen(key);
    const bool found = WalkSection(text, section, [&](const char* line_begin, const char* line_end) {
        if (std::strncmp(line_begin, key, key_length) != 0) {
            return false;
        }
        *start = SkipSeparators(line_begin + key_length);
        *end = line_end;
        return true;
    });
    return found ? FILE_DONE : FILE_KEY_MISSING;
}

FileResult GetString(const char* text, const char* section, const char* key, std::string& value, std::size_t size)
{
    const char* start = nullptr;
    const char* end = nullptr;
    if (GetValuePosition(text, section, key, &start, &end) != FILE_DONE) {
        return FILE_NO_ARGUMENT;
    }
    if (static_cast<std::size_t>(end - start) >= size) {
        return FILE_VALUE_TOO_LONG;
    }
    value.assign(start, end);
    return FILE_DONE;
}

FileResult GetNumeric(const char* text, const char* section, const char* key, int& number)
{
    std::string value;
    if (GetString(text, section, key, value, kNumberSize) != FILE_DONE) {
        return FILE_NO_ARGUMENT;
    }
    number = static_cast<int>(std::clamp<long>(std::strtol(value.c_str(), nullptr, 10), INT_MIN, INT_MAX));
    return FILE_DONE;
}

FileResult GetFlag(const char* text, const char* section, const char* key, int& flag)
{
    std::string value;
    if (GetString(text, section, key, value, kFlagSize) != FILE_DONE) {
        return FILE_NO_ARGUMENT;
    }
    flag = strncasecmp(value.c_str(), "yes", 3) == 0 ? 1 : 0;
    return FILE_DONE;
}

FileResult GetColor(const char* text, const char* key, std::uint16_t& component)
{
    int number = 0;
    const FileResult result = GetNumeric(text, "[Setting]", key, number);
    if (result == FILE_DONE) {
        component = static_cast<std::uint16_t>(number >= 0 && number <= 255 ? number << 8 : 0);
    }
    return result;
}

void GetHistoryList(const char* text, const char* section, History& list)
{
    int count = 0;
    if (GetNumeric(text, section, "HistoryCount", count) != FILE_DONE) {
        return;
    }
    // The file may claim billions of entries, so do not search the section for each number.
    std::map<int, std::string> values;
    WalkSection(text, section, [&](const char* begin, const char* end) {
        CollectHistoryLine(std::string_view(begin, static_cast<std::size_t>(end - begin)), values);
        return false;
    });
    for (auto& [number, value] : values) {
        if (number < count && !value.empty() && value.size() <= kMaxPathBytes) {
            list.push_back(std::move(value));
        }
    }
}

namespace {

bool IsWritableValue(const std::string& value)
{
    return value.size() <= kMaxValueBytes && value.find('\n') == std::string::npos;
}

}  // namespace

bool SetString(std::string& text, const char* section, const std::string& key, const std::string& value)
{
    if (!IsWritableValue(value)) {
        return false;
    }
    const std::string section_line = std::string("\n") + section + "\n";
    if (text.find(section_line) == std::string::npos) {
        text += section_line;
    }
    text += key;
    text += '=';
    text += value;
    text += '\n';
    return true;
}

bool SetNumeric(std::string& text, const char* section, const std::string& key, int number)
{
    return SetString(text, section, key, std::to_string(number));
}

bool SetFlag(std::string& text, const char* section, const std::string& key, int flag)
{
    return SetString(text, section, key, flag != 0 ? "yes" : "no");
}

void SetHistoryList(std::string& text, const char* section, const History& list)
{
    History writable;
    std::copy_if(list.begin(), list.end(), std::back_inserter(writable), IsWritableValue);
    if (writable.empty()) {
        return;
    }
    SetNumeric(text, section, "HistoryCount", static_cast<int>(writable.size()));
    for (std::size_t i = 0; i < writable.size(); ++i) {
        SetString(text, section, "History" + std::to_string(i), writable[i]);
    }
}
