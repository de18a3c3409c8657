#include "model/fnkfilelist-sort.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <numeric>
#include <string_view>

namespace {

constexpr int kIconColumn = 0;

/// The ColumnId of the sorted column, which must not be the icon column.
int SortKind()
{
    return pGTable->ColumnPosition[static_cast<std::size_t>(EffectiveSortColumn() - 1)];
}

/// Whether the largest value comes first in ascending order.
bool IsNumberKind(int kind)
{
    return kind == COLUMN_USER_ID || kind == COLUMN_GROUP_ID || kind == COLUMN_INODE;
}

/// 0 to 11 for a text that begins with an abbreviated month, else 12.
int MonthIndex(const char* text)
{
    constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
    for (std::size_t i = 0; i < 12; ++i) {
        if (kMonths.compare(i * 3, 3, text, 3) == 0) {
            return static_cast<int>(i);
        }
    }
    return 12;
}

}  // namespace

int EffectiveSortColumn()
{
    const int column = pGTable->SortColumn;
    return column >= 0 && column <= pGTable->ColumnCount ? column : pGTable->NameColumn;
}

bool IsShownAscending()
{
    const int column = EffectiveSortColumn();
    const bool reversed_kind = column != kIconColumn && IsNumberKind(SortKind());
    return (pGTable->SortType == SORT_DESCENDING) == reversed_kind;
}

int CompareString(const char* a, const char* b)
{
    return pGTable->SortCase ? g_ascii_strcasecmp(a, b) : std::strcmp(a, b);
}

int CompareSize(const char* a, const char* b)
{
    const bool a_mega = std::strchr(a, 'M') != nullptr;
    const bool b_mega = std::strchr(b, 'M') != nullptr;
    if (a_mega != b_mega) {
        return a_mega ? 1 : 0;
    }
    // Parsing stops at the unit. Sizes that are equal in single precision count as equal.
    const auto a_number = static_cast<float>(std::strtod(a, nullptr));
    const auto b_number = static_cast<float>(std::strtod(b, nullptr));
    return a_number > b_number ? 1 : 0;
}

int CompareTime(const char* a, const char* b)
{
    if (pGTable->JapaneseLocale) {
        return CompareString(a, b);
    }
    // The cell of a time without a calendar date is empty. Do not read fields past its end.
    constexpr std::size_t kShortest = 17;
    if (std::strlen(a) < kShortest || std::strlen(b) < kShortest) {
        return static_cast<int>(std::strlen(a) >= kShortest) - static_cast<int>(std::strlen(b) >= kShortest);
    }
    if (const int year = std::strncmp(a + 7, b + 7, 4); year != 0) {
        return year;
    }
    if (const int a_month = MonthIndex(a), b_month = MonthIndex(b); a_month != b_month) {
        return a_month > b_month ? 1 : 0;
    }
    for (const std::size_t field : {4, 12, 15}) {
        if (const int difference = std::strncmp(a + field, b + field, 2); difference != 0) {
            return difference;
        }
    }
    return 0;
}

namespace {

/// 1 if a is smaller than b, else 0: numbers are listed in reverse.
int CompareNumber(const char* a, const char* b)
{
    return std::strtol(a, nullptr, 10) < std::strtol(b, nullptr, 10) ? 1 : 0;
}

int CompareCells(int kind, const char* a, const char* b)
{
    switch (kind) {
    case COLUMN_SIZE:
        return CompareSize(a, b);
    case COLUMN_USER_ID:
    case COLUMN_GROUP_ID:
    case COLUMN_INODE:
        return CompareNumber(a, b);
    case COLUMN_ACCESS_TIME:
    case COLUMN_MODIFICATION_TIME:
    case COLUMN_CHANGE_TIME:
        return CompareTime(a, b) > 0 ? 1 : 0;
    default:
        return CompareString(a, b) > 0 ? 1 : 0;
    }
}

/// The text to compare: for names the bytes, else the text of the cell.
std::string SortText(const FileRows& rows, const FileRow& row, int kind)
{
    return kind == COLUMN_NAME ? rows.Name(row) : rows.CellText(row, kind);
}

int CompareByIcon(const FileRows& rows, const FileRow& a, const FileRow& b)
{
    if (a.is_directory != b.is_directory) {
        return b.is_directory ? 1 : 0;
    }
    return CompareString(rows.Name(a), rows.Name(b)) > 0 ? 1 : 0;
}

}  // namespace

int CompareFileListRow(const FileRows& rows, std::size_t a, std::size_t b)
{
    if (rows.IsParentRow(a)) {
        return 0;
    }
    if (rows.IsParentRow(b)) {
        return 1;
    }
    const FileRow& row_a = rows.Row(a);
    const FileRow& row_b = rows.Row(b);
    int result = 0;
    if (EffectiveSortColumn() == kIconColumn) {
        result = CompareByIcon(rows, row_a, row_b);
    } else {
        const int kind = SortKind();
        result = CompareCells(kind, SortText(rows, row_a, kind).c_str(), SortText(rows, row_b, kind).c_str());
    }
    if (!pGTable->MixFileDir && row_a.is_directory != row_b.is_directory) {
        return row_b.is_directory ? 1 : 0;
    }
    return pGTable->SortType == SORT_DESCENDING ? 1 - result : result;
}

namespace {

/// Stands for a row in comparisons. Keys are compared by value first, then by text unless it is null.
struct SortKey {
    std::uint64_t value;
    const char* text;
    std::uint32_t index;
};

/// Maps signed numbers to unsigned ones in the same order.
std::uint64_t OrderedBits(std::int64_t number)
{
    return static_cast<std::uint64_t>(number) ^ (std::uint64_t{1} << 63);
}

/// The first eight bytes of text as a number, with ASCII letters in lower case if fold is set. Most
/// names can be ordered by this number alone.
std::uint64_t TextPrefix(const char* text, bool fold)
{
    std::uint64_t prefix = 0;
    for (int i = 0; i < 8; ++i) {
        const auto byte = static_cast<unsigned char>(*text);
        const bool upper = fold && byte >= 'A' && byte <= 'Z';
        prefix = prefix << 8 | (upper ? byte + ('a' - 'A') : byte);
        text += *text != '\0' ? 1 : 0;
    }
    return prefix;
}

/// Orders sizes as CompareSize does: by displayed unit, then by displayed number in single precision.
std::uint64_t SizeKey(std::int64_t size)
{
    const DisplaySize shown = RoundSize(static_cast<std::uint64_t>(size));
    const auto number = static_cast<float>(static_cast<double>(shown.whole * 10 + shown.tenth) / 10.0);
    return (shown.is_mega ? std::uint64_t{1} << 32 : 0) | std::bit_cast<std::uint32_t>(number);
}

/// Ranks the texts of a column with few distinct values: permissions, users or groups. Each distinct
/// source value (mode or id) is converted to text once.
class TextRanks {
public:
    TextRanks(const FileRows& rows, int kind) : kind_(kind)
    {
        std::vector<std::pair<std::string, std::uint32_t>> texts;
        for (std::size_t i = 0; i < rows.Count(); ++i) {
            const FileRow& row = rows.Row(i);
            if (ranks_.try_emplace(Source(row)).second) {
                texts.emplace_back(SortText(rows, row, kind), Source(row));
            }
        }
        std::stable_sort(texts.begin(), texts.end(), [](const auto& a, const auto& b) {
            return CompareString(a.first.c_str(), b.first.c_str()) < 0;
        });
        std::uint64_t rank = 0;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const bool same = i > 0 && CompareString(texts[i - 1].first.c_str(), texts[i].first.c_str()) == 0;
            rank += same ? 0 : 1;
            ranks_[texts[i].second] = rank;
        }
    }

    std::uint64_t Rank(const FileRow& row) const { return ranks_.at(Source(row)); }

private:
    std::uint32_t Source(const FileRow& row) const
    {
        switch (kind_) {
        case COLUMN_PERMISSION:
            return row.mode;
        case COLUMN_USER:
            return row.uid;
        default:
            return row.gid;
        }
    }

    int kind_;
    std::map<std::uint32_t, std::uint64_t> ranks_;
};

std::int64_t RowTime(const FileRow& row, int kind)
{
    switch (kind) {
    case COLUMN_ACCESS_TIME:
        return row.access_time;
    case COLUMN_MODIFICATION_TIME:
        return row.modification_time;
    default:
        return row.change_time;
    }
}

/// Orders times by their displayed minute. That may differ from the order of the timestamps: the end
/// of summer time repeats an hour.
std::uint64_t MinuteKey(const struct tm& local)
{
    const std::uint64_t days = static_cast<std::uint64_t>((local.tm_year + 1900) * 12 + local.tm_mon) * 31 +
                               static_cast<std::uint64_t>(local.tm_mday);
    return (days * 24 + static_cast<std::uint64_t>(local.tm_hour)) * 60 + static_cast<std::uint64_t>(local.tm_min);
}

/// False if a time has no calendar date or its year does not have four digits. The order is then
/// whatever CompareTime makes of the text, which it reads at fixed positions.
bool MakeTimeKeys(const FileRows& rows, int kind, std::vector<SortKey>& keys)
{
    // Converting to local time is slow, and files of the same minute are often adjacent.
    std::int64_t minute_begin = 0;
    std::int64_t minute_end = 0;
    std::uint64_t minute_key = 0;
    for (SortKey& key : keys) {
        const std::int64_t time = RowTime(rows.Row(key.index), kind);
        if (time < minute_begin || time >= minute_end) {
            const std::time_t stamp = time;
            struct tm local = {};
            if (localtime_r(&stamp, &local) == nullptr || local.tm_year < 1000 - 1900 || local.tm_year > 9999 - 1900) {
                return false;
            }
            minute_begin = time - local.tm_sec;
            minute_end = minute_begin + 60;
            minute_key = MinuteKey(local);
        }
        key.value = minute_key;
    }
    return true;
}

/// Fills in the keys. False if keys cannot express the order. Complements numbers that are listed in
/// reverse.
bool MakeKeys(const FileRows& rows, int kind, std::vector<SortKey>& keys)
{
    const auto fill = [&keys, &rows](auto make) {
        for (SortKey& key : keys) {
            key.value = make(rows.Row(key.index));
        }
        return true;
    };
    switch (kind) {
    case COLUMN_NAME:
        for (SortKey& key : keys) {
            key.text = rows.Name(key.index);
            key.value = TextPrefix(key.text, pGTable->SortCase != 0);
        }
        return true;
    case COLUMN_SIZE:
        return fill([](const FileRow& row) { return SizeKey(row.size); });
    case COLUMN_USER_ID:
        return fill([](const FileRow& row) { return ~OrderedBits(static_cast<std::int32_t>(row.uid)); });
    case COLUMN_GROUP_ID:
        return fill([](const FileRow& row) { return ~OrderedBits(static_cast<std::int32_t>(row.gid)); });
    case COLUMN_INODE:
        return fill([](const FileRow& row) { return ~OrderedBits(row.inode); });
    case COLUMN_ACCESS_TIME:
    case COLUMN_MODIFICATION_TIME:
    case COLUMN_CHANGE_TIME:
        return MakeTimeKeys(rows, kind, keys);
    default: {
        const TextRanks ranks(rows, kind);
        return fill([&ranks](const FileRow& row) { return ranks.Rank(row); });
    }
    }
}

/// Rows are sorted only within their group. ".." comes first, then the directories, then the files.
/// MixFileDir makes the latter two one group. When sorting by icon they stay apart even then, but
/// swap places in descending order.
enum Group : std::size_t { GROUP_PARENT, GROUP_FIRST, GROUP_LAST, GROUP_COUNT };

Group GroupOf(const FileRows& rows, std::size_t index, bool by_icon)
{
    if (rows.IsParentRow(index)) {
        return GROUP_PARENT;
    }
    if (!by_icon && pGTable->MixFileDir) {
        return GROUP_FIRST;
    }
    const bool directories_first = !pGTable->MixFileDir || pGTable->SortType != SORT_DESCENDING;
    return rows.Row(index).is_directory == directories_first ? GROUP_FIRST : GROUP_LAST;
}

using GroupEnds = std::array<std::size_t, GROUP_COUNT>;

/// Makes keys without values, group by group; ends receives the end of each group. In descending
/// order equal rows must end up reversed: the keys start out reversed, and a stable sort keeps equal
/// ones that way.
std::vector<SortKey> GroupedKeys(const FileRows& rows, bool by_icon, GroupEnds& ends)
{
    const std::size_t count = rows.Count();
    GroupEnds next = {};
    for (std::size_t i = 0; i < count; ++i) {
        ++next[GroupOf(rows, i, by_icon)];
    }
    std::exclusive_scan(next.begin(), next.end(), next.begin(), std::size_t{0});
    std::vector<SortKey> keys(count);
    const bool descending = pGTable->SortType == SORT_DESCENDING;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t index = descending ? count - 1 - i : i;
        keys[next[GroupOf(rows, index, by_icon)]++] = {0, nullptr, static_cast<std::uint32_t>(index)};
    }
    ends = next;
    return keys;
}

using SortKeys = std::vector<SortKey>::iterator;

void SortKeyRange(SortKeys begin, SortKeys end, bool descending)
{
    const bool has_text = begin != end && begin->text != nullptr;
    const auto goes_first = [has_text](const SortKey& a, const SortKey& b) {
        return a.value < b.value || (has_text && a.value == b.value && CompareString(a.text, b.text) < 0);
    };
    if (descending) {
        std::stable_sort(begin, end, [&](const SortKey& a, const SortKey& b) { return goes_first(b, a); });
    } else {
        std::stable_sort(begin, end, goes_first);
    }
}

/// Slow: for orders that keys cannot express.
void SortTextRange(const FileRows& rows, int kind, SortKeys begin, SortKeys end, bool descending)
{
    std::stable_sort(begin, end, [&](const SortKey& a, const SortKey& b) {
        const std::string text_a = rows.CellText(rows.Row((descending ? b : a).index), kind);
        const std::string text_b = rows.CellText(rows.Row((descending ? a : b).index), kind);
        return CompareCells(kind, text_b.c_str(), text_a.c_str()) == 1;
    });
}

}  // namespace

std::vector<std::uint32_t> SortFileRows(FileRows& rows)
{
    const bool descending = pGTable->SortType == SORT_DESCENDING;
    const bool by_icon = EffectiveSortColumn() == kIconColumn;
    const int kind = by_icon ? COLUMN_NAME : SortKind();
    GroupEnds ends;
    std::vector<SortKey> keys = GroupedKeys(rows, by_icon, ends);
    const bool has_keys = MakeKeys(rows, kind, keys);
    auto begin = keys.begin();
    for (const std::size_t group_end : ends) {
        const auto end = keys.begin() + static_cast<std::ptrdiff_t>(group_end);
        if (has_keys) {
            SortKeyRange(begin, end, descending);
        } else {
            SortTextRange(rows, kind, begin, end, descending);
        }
        begin = end;
    }

    std::vector<std::uint32_t> order(keys.size());
    std::transform(keys.begin(), keys.end(), order.begin(), [](const SortKey& key) { return key.index; });
    rows.Permute(order);
    return order;
}
