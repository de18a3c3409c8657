// What is in a directory, for the list and for the tree, and the order of the rows.

#include "model/fnkfilelist-rows.h"

#include <numeric>

#include "child.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "faults.h"
#include "model/fnkdirtree-scan.h"
#include "model/fnkfilelist-sort.h"
#include "tabletest.h"

namespace {

class Rows : public TableTest {
protected:
    ScopedVariable time_zone{"TZ", "TST-9"};
};

TEST_F(Rows, PatternsMatchWholeNames)
{
    table.Filter = 1;
    using Case = std::tuple<const char*, const char*, int>;
    for (const auto& [pattern, name, passes] :
         {Case("*.c", "a.C", 0), Case("*.c", ".c", 1), Case("?.c", "ab.c", 0), Case("[a-b]", "b", 1),
          Case("\\*", "*", 1), Case("\\*", "a", 0), Case("a*", "a/b", 1), Case("*.c", "..", 1), Case("a?", "a\n", 1),
          Case("", "a", 0)}) {
        table.FilterName = pattern;
        EXPECT_EQ(CheckFilter(name), passes) << pattern << " on " << name;
    }
    // A broken byte is a character, and so is a sequence that the locale knows.
    for (const auto& [locale, letter] : {std::pair(kTwoByteLocale, std::string("??")), {kUtf8Locale, "?"}}) {
        SetLocale(locale);
        EXPECT_TRUE(MatchPattern(letter + "?.txt", "\xC3\xA4\xFF.txt")) << locale;
        EXPECT_FALSE(MatchPattern("\xFF", "\xFE")) << locale;
    }
    EXPECT_TRUE(IsUsablePattern("a") && !IsUsablePattern("") &&
                !IsUsablePattern(std::string(kMaxFilterBytes + 1, 'x')));
}

TEST_F(Rows, LastReadComesFirstBehindTheDirectoryItself)
{
    for (const std::string name : {"a", "b", " ", "line\nfeed", "mad\xFE\xFF", "\xE6\x97\xA5", "*"}) {
        files.File("dir/" + name, std::string(1536, 'x'));
    }
    files.SetMode("dir", 0705);
    files.SetTimes("dir", 1000000000, 983923500);
    std::vector<std::string> expected = files.ReadingOrder("dir");
    expected.push_back("..");
    std::reverse(expected.begin(), expected.end());
    FileRows rows;
    ASSERT_TRUE(ReadFileRows(files.At("dir/"), rows));
    ASSERT_EQ(rows.Count(), expected.size());
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        EXPECT_EQ(rows.Name(i), expected[i]);
        EXPECT_EQ(rows.Row(i).is_directory, i == 0);
        EXPECT_EQ(rows.Row(i).type, i == 0 ? FT_DIRECTORY : FT_NORMAL);
    }
    EXPECT_EQ(rows.CellText(rows.Row(0), COLUMN_PERMISSION), "drwx---r-x");
    EXPECT_EQ(rows.CellText(rows.Row(0), COLUMN_MODIFICATION_TIME), "Mar 07 2001 09:05");
    EXPECT_EQ(rows.CellText(rows.Row(1), COLUMN_SIZE), "1.5KByte");
    // A failure leaves the rows as they are.
    files.Link("link", "dir");
    for (const char* const name : {"missing/", "dir/a", "link"}) {
        EXPECT_FALSE(ReadFileRows(files.At(name), rows)) << name;
        EXPECT_EQ(rows.Count(), expected.size());
    }
}

TEST_F(Rows, PermissionText)
{
    const std::map<mode_t, const char*> cases = {
        {041777, "drwxrwxrwt"},  {0104644, "-rwSr--r--"}, {0104755, "-rwsr-xr-x"}, {0102755, "-rwxr-sr-x"},
        {0102745, "-rwxr-Sr-x"}, {0101776, "-rwxrwxrwT"}, {0120777, "lrwxrwxrwx"}, {0140421, "sr---w---x"},
        {010124, "p--x-w-r--"},  {020620, "crw--w----"},  {060660, "brw-rw----"}};
    for (const auto& [mode, text] : cases) {
        EXPECT_EQ(SetPermission(mode), text) << std::oct << mode;
    }
}

TEST_F(Rows, TimeText)
{
    using Case = std::tuple<std::int64_t, const char*, const char*, const char*>;
    for (const auto& [time, plain, japanese, seconds] :
         {Case(983923508, "Mar 07 2001 09:05", "2001/03/07 09:05", ":08"),
          Case(-1, "Jan 01 1970 08:59", "1970/01/01 08:59", ":59"),
          // The last year that the C library can tell.
          Case(67768036191644399, "Dec 31 2147485547 23:59", "2147485547/12/31 23:59", ":59")}) {
        for (const int locale : {0, 1}) {
            table.JapaneseLocale = locale;
            const std::string expected = locale == 0 ? plain : japanese;
            EXPECT_EQ(GetFormatTime(time, false), expected);
            EXPECT_EQ(GetFormatTime(time, true), expected + seconds);
        }
    }
    EXPECT_EQ(GetFormatTime(INT64_MAX, false), std::nullopt);
}

TEST_F(Rows, CellTexts)
{
    struct stat st = {};
    st.st_mode = S_IFREG | 0640;
    st.st_size = 5368709120;
    st.st_ino = 0x180000001;
    st.st_mtim.tv_sec = 983923500;
    st.st_ctim.tv_sec = INT64_MAX;
    FileRows rows;
    rows.Add("mad\xFF", st, FT_NORMAL);
    st.st_uid = 4294967294;
    st.st_gid = 4294967293;
    rows.Add("b", st, FT_NORMAL);
    rows.SetDetails({.links = {}, .users = {{0, "root"}}, .groups = {{0, "root"}}});
    using Case = std::tuple<int, const char*, const char*>;
    for (const auto& [column, first, second] :
         {Case(COLUMN_NAME, "mad\xEF\xBF\xBD", "b"), Case(COLUMN_SIZE, "5120MByte", "5120MByte"),
          Case(COLUMN_PERMISSION, "-rw-r-----", "-rw-r-----"), Case(COLUMN_USER, "root", ""),
          Case(COLUMN_USER_ID, "0", "-2"), Case(COLUMN_GROUP, "root", ""), Case(COLUMN_GROUP_ID, "0", "-3"),
          Case(COLUMN_ACCESS_TIME, "Jan 01 1970 09:00", "Jan 01 1970 09:00"),
          Case(COLUMN_MODIFICATION_TIME, "Mar 07 2001 09:05", "Mar 07 2001 09:05"), Case(COLUMN_CHANGE_TIME, "", ""),
          Case(COLUMN_INODE, "-2147483647", "-2147483647"), Case(kColumnKinds, "", ""), Case(-1, "", "")}) {
        EXPECT_EQ(rows.CellText(rows.Row(0), column), first) << column;
        EXPECT_EQ(rows.CellText(rows.Row(1), column), second) << column;
    }
}

class Subdirectories : public TableTest {
protected:
    /// Each with a child that is known to be in it, if there is one.
    std::string Scan(const std::string& directory, ScanResult expected = SCAN_DONE) const
    {
        std::vector<Subdirectory> found;
        EXPECT_EQ(ScanSubdirectories(directory, found), expected);
        std::string text;
        for (const Subdirectory& child : found) {
            text += child.name + "(" + child.any_child.value_or("?") + ") ";
        }
        return text;
    }
};

TEST_F(Subdirectories, AreSortedByBytesAndLookOneLevelAhead)
{
    for (const char* const name : {"b", "Zeta/only", "a\nb", "mad\xFE/.hidden", "old.BAK", ".hidden"}) {
        files.Directory(name);
    }
    files.File("file");
    files.File("b/file");
    files.Node("pipe", S_IFIFO);
    files.Link("b/link", "../Zeta");
    files.Link("link", "Zeta");
    EXPECT_EQ(Scan(files.Path()), "Zeta(only) a\nb() b() mad\xFE() ");
    faults.is_old_file_system = true;  // It does not tell what is a directory.
    EXPECT_EQ(Scan(files.Path().substr(0, files.Path().size() - 1)), "Zeta(only) a\nb() b() mad\xFE() ");
    faults.is_old_file_system = false;
    table.ShowHidden = table.ShowBackup = 1;
    EXPECT_EQ(Scan(files.Path()), ".hidden() Zeta(only) a\nb() b() mad\xFE(.hidden) old.BAK() ");
    EXPECT_EQ(Scan(files.At("missing/"), SCAN_FAILED), "");
    EXPECT_EQ(Scan(files.At("file"), SCAN_FAILED), "");
}

TEST_F(Subdirectories, ClosedDirectoriesHaveNone)
{
    files.File("open/child/file");
    files.Directory("closed/child");
    files.SetMode("closed", 0);
    EXPECT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser(files);
                  EXPECT_EQ(Scan(files.Path()), "closed() open(child) ");
                  FileRows rows;
                  if (access(files.At("closed").c_str(), R_OK) != 0) {
                      EXPECT_EQ(Scan(files.At("closed/")), "");
                      EXPECT_TRUE(ReadFileRows(files.At("closed/"), rows));
                      EXPECT_EQ(rows.Count(), 1U) << "itself alone";
                  }
              }),
              CHILD_PASSED);
    files.SetMode("closed", 0700);
}

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
