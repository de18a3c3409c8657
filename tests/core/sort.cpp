// The order of the rows.

#include "model/fnkfilelist-sort.h"

#include <array>
#include <cstdint>
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

/// An insertion sort by CompareFileListRow alone.
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

/// Rows that are hard to tell apart: sizes that look alike, ids beyond 2^31, names that differ late
/// or in case only, times of one minute, around the end of summer time, or far away.
FileRows HardRows(SeededRandom& random, std::size_t count)
{
    constexpr std::int64_t kTimes[] = {1636263000,   1636266600,   983923500,     -61,
                                       -70000000000, 253402300800, 1700000000000, INT64_MAX - 7200};
    constexpr std::int64_t kSizes[] = {0, 1, 51, 1025, 1030, 1048575, 1048585, 153600, 153601, 1638410000};
    constexpr std::uint32_t kIds[] = {0, 1000, 65534, 0x80000000U, 4294967294U};
    constexpr mode_t kModes[] = {S_IFREG | 0644, S_IFREG | 0600, S_IFDIR | 0755, S_IFDIR | 0700, S_IFLNK | 0777};
    constexpr const char* kStarts[] = {"", "common-start-", "Common-Start-", "\xE6\x97\xA5", "Z", "."};
    constexpr const char* kEnds[] = {"a", "A", "b", "_", "[", "\xFF", "ab", "aB", ""};
    const std::size_t times = random.Below(3) == 0 ? std::size(kTimes) : 4;
    const std::size_t parent = random.Below(count + 3);
    const auto time = [&] {
        return kTimes[random.Below(times)] +
               static_cast<std::int64_t>(random.Below(random.Pick(std::array{90U, 7200U})));
    };
    FileRows rows;
    for (std::size_t i = 0; i < count; ++i) {
        struct stat st = {};
        st.st_mode = random.Pick(kModes);
        st.st_size = random.Pick(kSizes);
        st.st_uid = random.Pick(kIds);
        st.st_gid = random.Pick(kIds);
        st.st_ino = random.Below(random.Pick(std::array{20UL, 1UL << 33}));
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
        std::shuffle(table.ColumnPosition.begin(), table.ColumnPosition.end(), random.engine);
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
                ASSERT_EQ(order, SlowOrder(rows)) << "column " << table.SortColumn << " flags " << flags;
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
    // Name, kind, size, seconds after Dec 31 2000 23:59, owner.
    const std::tuple<const char*, mode_t, int, int, uid_t> entries[] = {
        {"Zeta", S_IFREG, 921600, 0, 1000},    {"..", S_IFDIR, 4096, 999999, 0}, {"alpha", S_IFREG, 1572864, 60, 0},
        {"dir", S_IFDIR, 4096, -86400, 1000},  {"beta", S_IFREG, 0, 30, 65534},  {"Dir2", S_IFDIR, 4096, 2678400, 7},
        {"alias", S_IFLNK, 1, -34560000, 1000}};
    // Column, SortType, MixFileDir, SortCase, the order, and whether values grow downwards.
    using Case = std::tuple<int, int, int, int, const char*, bool>;
    for (const auto& [column, type, mix, ignore_case, expected, upwards] :
         {Case(1, 0, 0, 0, ".. Dir2 dir Zeta alias alpha beta ", true),
          Case(1, 1, 0, 1, ".. Dir2 dir Zeta beta alpha alias ", false),
          Case(1, 0, 1, 1, ".. alias alpha beta dir Dir2 Zeta ", true),
          Case(0, 0, 1, 1, ".. dir Dir2 alias alpha beta Zeta ", true),
          Case(2, 0, 0, 0, ".. dir Dir2 beta alias Zeta alpha ", true),
          Case(5, 0, 1, 0, ".. beta Zeta dir alias Dir2 alpha ", false),
          Case(5, 1, 1, 0, ".. alpha Dir2 alias dir Zeta beta ", true),
          Case(9, 0, 1, 0, ".. alias dir Zeta beta alpha Dir2 ", true),
          Case(12, 0, 0, 1, ".. dir Dir2 alias alpha beta Zeta ", true),
          Case(-1, 0, 0, 1, ".. dir Dir2 alias alpha beta Zeta ", true)}) {
        FileRows rows;
        for (const auto& [name, kind, size, seconds, owner] : entries) {
            struct stat st = {};
            st.st_mode = kind;
            st.st_size = size;
            st.st_mtim.tv_sec = 978307140 + seconds;
            st.st_uid = owner;
            rows.Add(name, st, FT_NORMAL);
        }
        table.SortColumn = column;
        table.SortType = type;
        table.MixFileDir = mix;
        table.SortCase = ignore_case;
        SortFileRows(rows);
        std::string order;
        for (std::size_t i = 0; i < rows.Count(); ++i) {
            order += std::string(rows.Name(i)) + " ";
        }
        EXPECT_EQ(order, expected) << "column " << column << " type " << type;
        EXPECT_EQ(IsShownAscending(), upwards) << "column " << column << " type " << type;
    }
    table.SortColumn = kColumnKinds;
    EXPECT_EQ(EffectiveSortColumn(), kColumnKinds) << "the last one";
}

}  // namespace
