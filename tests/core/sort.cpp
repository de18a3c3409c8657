// The order of the rows.

#include "fnkfilelist-sort.h"

#include <limits>
#include <numeric>

#include "tabletest.h"

namespace {

class Sort : public TableTest {
protected:
    Sort()
    {
        table.ColumnCount = kColumnKinds;
        std::iota(table.ColumnPosition.begin(), table.ColumnPosition.end(), 0);
    }

    ScopedVariable time_zone{"TZ", "UTC"};
};

using Order = std::vector<std::uint32_t>;

/// An insertion sort that knows nothing but CompareFileListRow: a row goes in front of those that
/// the comparison says go behind it.
Order SlowOrder(const FileRows& rows)
{
    Order order;
    for (std::uint32_t row = 0; row < rows.Count(); ++row) {
        auto place = order.end();
        while (place != order.begin() && CompareFileListRow(rows, *(place - 1), row) == 1) {
            --place;
        }
        order.insert(place, row);
    }
    return order;
}

/// Rows that are hard to tell apart: sizes that look alike, times of one minute and around the end
/// of summer time, ids beyond 2^31, names that differ late or in case only.
FileRows HardRows(SeededRandom& random, std::size_t count)
{
    constexpr std::int64_t kMega = 1 << 20;
    constexpr std::int64_t kSizes[] = {0,       1,         51,     1023,       1025,       1030,
                                       1076,    kMega - 1, kMega,  kMega + 9,  kMega * 2,  std::int64_t{1} << 40,
                                       1048064, 153600,    153601, 1638400000, 1638410000, 5368709120};
    constexpr std::int64_t kCommonTimes[] = {1636263000, 1636266600, 1636263059, 983923500, 60, 86399};
    constexpr std::int64_t kRareTimes[] = {
        -1,           -61,          -2208988800,   -30610224000,
        -70000000000, 253402300800, 1700000000000, std::numeric_limits<std::int64_t>::max()};
    constexpr std::uint32_t kIds[] = {0, 1, 1000, 1001, 65534, 0x80000000U, 4294967294U, 9};
    constexpr mode_t kModes[] = {S_IFREG | 0644, S_IFREG | 0600, S_IFDIR | 0755, S_IFDIR | 0700, S_IFLNK | 0777};
    constexpr const char* kStarts[] = {"", "common-start-", "Common-Start-", "\xE6\x97\xA5", "Z", "."};
    constexpr const char* kEnds[] = {"a", "A", "b", "_", "[", "\xFF", "ab", "aB", ""};
    const std::size_t rare = random.Below(3) == 0 ? std::size(kRareTimes) : 2;
    const auto time = [&] {
        return random.Below(6) == 0
                   ? kRareTimes[random.Below(rare)]
                   : random.Pick(kCommonTimes) +
                         static_cast<std::int64_t>(random.Below(3) == 0 ? random.Below(7200) : random.Below(90));
    };
    const std::size_t parent = random.Below(count + 3);
    FileRows rows;
    for (std::size_t i = 0; i < count; ++i) {
        struct stat st = {};
        st.st_mode = random.Pick(kModes);
        st.st_size = random.Pick(kSizes);
        st.st_uid = random.Pick(kIds);
        st.st_gid = random.Pick(kIds);
        st.st_ino = random.Below(2) == 0 ? random.Below(20) : (random.Below(std::size_t{1} << 33));
        st.st_atim.tv_sec = time();
        st.st_mtim.tv_sec = time();
        st.st_ctim.tv_sec = time();
        const std::string name = std::string(random.Pick(kStarts)) + random.Pick(kEnds) + random.Pick(kEnds);
        rows.Add(i == parent ? ".." : name.c_str(), st, FT_NORMAL);
    }
    return rows;
}

TEST_F(Sort, KeysGiveTheOrderOfTheComparison)
{
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 24; ++round) {
        // The second one is not a whole number of minutes away from the clock.
        time_zone.Set(random.Pick(std::array{"UTC", "LMT0:44:30", "EST5EDT,M3.2.0,M11.1.0", "TST-9"}));
        std::shuffle(table.ColumnPosition.begin(), table.ColumnPosition.end(), std::mt19937_64(random.Below(1000)));
        table.NameColumn = FindNameColumn(table);
        const FileRows rows = HardRows(random, random.Below(24));
        for (int flags = 0; flags < 16; ++flags) {
            table.SortType = flags & 1;
            table.MixFileDir = flags >> 1 & 1;
            table.SortCase = flags >> 2 & 1;
            table.JapaneseLocale = flags >> 3 & 1;
            for (table.SortColumn = -1; table.SortColumn <= kColumnKinds + 1; ++table.SortColumn) {
                FileRows sorted = rows;
                const Order order = SortFileRows(sorted);
                ASSERT_EQ(order, SlowOrder(rows))
                    << "round " << round << " column " << table.SortColumn << " kind "
                    << (EffectiveSortColumn() > 0
                            ? table.ColumnPosition[static_cast<std::size_t>(EffectiveSortColumn() - 1)]
                            : -1)
                    << " flags " << flags;
                for (std::size_t i = 0; i < order.size(); ++i) {
                    ASSERT_EQ(sorted.Name(i), std::string(rows.Name(order[i])));
                    ASSERT_EQ(sorted.Row(i).inode, rows.Row(order[i]).inode);
                }
            }
        }
    }
}

TEST_F(Sort, OrdersThatPeopleExpect)
{
    constexpr int kKilo = 1024;
    constexpr std::int64_t kYearEnd = 978307140;  // Dec 31 2000 23:59
    const struct {
        const char* name;
        mode_t kind;
        std::int64_t size;
        std::int64_t time;
        std::uint32_t uid;
    } entries[] = {
        {"Zeta", S_IFREG, 900 * kKilo, kYearEnd, 1000},      {"..", S_IFDIR, 4096, kYearEnd + 999999, 0},
        {"alpha", S_IFREG, 1536 * kKilo, kYearEnd + 60, 0},  {"dir", S_IFDIR, 4096, kYearEnd - 86400, 1000},
        {"beta", S_IFREG, 0, kYearEnd + 30, 65534},          {"Dir2", S_IFDIR, 4096, kYearEnd + 31 * 86400, 7},
        {"alias", S_IFLNK, 1, kYearEnd - 400 * 86400, 1000},
    };
    struct Expectation {
        int column;
        SortDirection direction;
        int mix;
        int ignore_case;
        const char* order;
        bool upwards;
    };
    constexpr int kIcon = 0;
    constexpr int kName = COLUMN_NAME + 1;
    constexpr int kSize = COLUMN_SIZE + 1;
    constexpr int kUid = COLUMN_USER_ID + 1;
    constexpr int kTime = COLUMN_MODIFICATION_TIME + 1;
    const Expectation cases[] = {
        {kName, SORT_ASCENDING, 0, 0, ".. Dir2 dir Zeta alias alpha beta ", true},
        {kName, SORT_ASCENDING, 0, 1, ".. dir Dir2 alias alpha beta Zeta ", true},
        {kName, SORT_DESCENDING, 0, 1, ".. Dir2 dir Zeta beta alpha alias ", false},
        {kName, SORT_ASCENDING, 1, 1, ".. alias alpha beta dir Dir2 Zeta ", true},
        {kIcon, SORT_ASCENDING, 1, 1, ".. dir Dir2 alias alpha beta Zeta ", true},
        {kIcon, SORT_DESCENDING, 1, 1, ".. Zeta beta alpha alias Dir2 dir ", false},
        {kIcon, SORT_DESCENDING, 0, 1, ".. Dir2 dir Zeta beta alpha alias ", false},
        {kSize, SORT_ASCENDING, 0, 0, ".. dir Dir2 beta alias Zeta alpha ", true},
        {kSize, SORT_DESCENDING, 0, 0, ".. Dir2 dir alpha Zeta alias beta ", false},
        {kSize, SORT_ASCENDING, 1, 0, ".. beta alias dir Dir2 Zeta alpha ", true},
        {kUid, SORT_ASCENDING, 1, 0, ".. beta Zeta dir alias Dir2 alpha ", false},
        {kUid, SORT_DESCENDING, 1, 0, ".. alpha Dir2 alias dir Zeta beta ", true},
        {kTime, SORT_ASCENDING, 1, 0, ".. alias dir Zeta beta alpha Dir2 ", true},
        {kTime, SORT_DESCENDING, 1, 0, ".. Dir2 alpha beta Zeta dir alias ", false},
        {12, SORT_ASCENDING, 0, 1, ".. dir Dir2 alias alpha beta Zeta ", true},
        {-1, SORT_ASCENDING, 0, 1, ".. dir Dir2 alias alpha beta Zeta ", true},
    };
    for (const auto& expected : cases) {
        FileRows rows;
        for (const auto& entry : entries) {
            struct stat st = {};
            st.st_mode = entry.kind | 0644;
            st.st_size = entry.size;
            st.st_mtim.tv_sec = entry.time;
            st.st_uid = entry.uid;
            rows.Add(entry.name, st, FT_NORMAL);
        }
        table.SortColumn = expected.column;
        table.SortType = expected.direction;
        table.MixFileDir = expected.mix;
        table.SortCase = expected.ignore_case;
        SortFileRows(rows);
        std::string order;
        for (std::size_t i = 0; i < rows.Count(); ++i) {
            order += std::string(rows.Name(i)) + " ";
        }
        EXPECT_EQ(order, expected.order) << "column " << expected.column << " direction " << expected.direction;
        EXPECT_EQ(IsSortedUpwards(), expected.upwards) << "column " << expected.column;
    }
}

TEST_F(Sort, ComparesTextsAsShown)
{
    const struct {
        const char* smaller;
        const char* larger;
    } sizes[] = {{"0KByte", "0.1KByte"}, {"900KByte", "1.5MByte"}, {"1024KByte", "1MByte"}, {"9KByte", "10KByte"}};
    for (const auto& pair : sizes) {
        EXPECT_EQ(CompareSize(pair.larger, pair.smaller), 1) << pair.larger;
        EXPECT_EQ(CompareSize(pair.smaller, pair.larger), 0) << pair.larger;
        EXPECT_EQ(CompareSize(pair.larger, pair.larger), 0) << pair.larger;
    }
    const char* const times[] = {"",
                                 "Dec 31 1999 23:59",
                                 "Jan 01 2000 00:00",
                                 "Jan 01 2000 00:01",
                                 "Jan 01 2000 10:00",
                                 "Jan 02 2000 00:00",
                                 "Feb 01 2000 00:00",
                                 "Apr 01 2000 00:00",
                                 "Aug 01 2000 00:00",
                                 "Dec 01 2000 00:00",
                                 "Jan 01 2001 00:00"};
    for (std::size_t a = 0; a < std::size(times); ++a) {
        for (std::size_t b = 0; b < std::size(times); ++b) {
            EXPECT_EQ(CompareTime(times[a], times[b]) > 0, a > b) << times[a] << " and " << times[b];
        }
    }
}

}  // namespace
