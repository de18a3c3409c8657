// The order of the rows.

#include "model/fnkfilelist-sort.h"

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

TEST_F(Sort, OrdersThatPeopleExpect)
{
    // Name, kind, size, seconds after Dec 31 2000 23:59, owner.
    const std::tuple<const char*, mode_t, int, int, uid_t> entries[] = {{"..", S_IFDIR, 4096, 999999, 0},
                                                                        {"Zeta", S_IFREG, 921600, 0, 1000},
                                                                        {"alpha-row-2", S_IFREG, 1572864, 60, 0},
                                                                        {"dir", S_IFDIR, 4096, -86400, 1000},
                                                                        {"beta", S_IFREG, 0, 30, 65534},
                                                                        {"Dir2", S_IFDIR, 4096, 2678400, 7},
                                                                        {"alpha-row-1", S_IFLNK, 1, -34560000, 1000}};
    // Column, SortType, MixFileDir, SortCase, the order, and whether values grow downwards.
    using Case = std::tuple<int, int, int, int, const char*, bool>;
    for (const auto& [column, type, mix, ignore_case, expected, upwards] :
         {Case(1, 0, 0, 0, ".. Dir2 dir Zeta alpha-row-1 alpha-row-2 beta ", true),
          Case(1, 1, 0, 1, ".. Dir2 dir Zeta beta alpha-row-2 alpha-row-1 ", false),
          Case(1, 0, 1, 1, ".. alpha-row-1 alpha-row-2 beta dir Dir2 Zeta ", true),
          Case(0, 0, 1, 1, ".. dir Dir2 alpha-row-1 alpha-row-2 beta Zeta ", true),
          Case(0, 1, 1, 1, ".. Zeta beta alpha-row-2 alpha-row-1 Dir2 dir ", false),
          Case(2, 0, 0, 0, ".. dir Dir2 beta alpha-row-1 Zeta alpha-row-2 ", true),
          Case(5, 0, 1, 0, ".. beta Zeta dir alpha-row-1 Dir2 alpha-row-2 ", false),
          Case(5, 1, 1, 0, ".. alpha-row-2 Dir2 alpha-row-1 dir Zeta beta ", true),
          Case(9, 0, 1, 0, ".. alpha-row-1 dir Zeta beta alpha-row-2 Dir2 ", true),
          Case(7, 0, 1, 0, ".. beta Zeta dir alpha-row-1 Dir2 alpha-row-2 ", false),
          Case(8, 0, 1, 0, ".. alpha-row-1 dir Zeta beta alpha-row-2 Dir2 ", true),
          Case(10, 1, 1, 0, ".. Dir2 alpha-row-2 beta Zeta dir alpha-row-1 ", false),
          Case(11, 0, 1, 0, ".. beta Zeta dir alpha-row-1 Dir2 alpha-row-2 ", false),
          Case(12, 0, 0, 1, ".. dir Dir2 alpha-row-1 alpha-row-2 beta Zeta ", true),
          Case(-1, 0, 0, 1, ".. dir Dir2 alpha-row-1 alpha-row-2 beta Zeta ", true)}) {
        FileRows rows;
        for (const auto& [name, kind, size, seconds, owner] : entries) {
            struct stat st = {};
            st.st_mode = kind;
            st.st_size = size;
            st.st_atim.tv_sec = st.st_mtim.tv_sec = st.st_ctim.tv_sec = 978307140 + seconds;
            st.st_uid = st.st_gid = owner;
            st.st_ino = owner;
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
