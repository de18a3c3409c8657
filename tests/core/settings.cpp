// What the settings file says and how it is read.

#include "core/fnkfiles-settings.h"

#include <climits>
#include <set>
#include <sstream>
#include <utility>

#include "core/fnkutil.h"
#include "tabletest.h"

namespace {

class Settings : public TableTest {
protected:
    /// Reads a settings file of this text into a fresh record.
    void Load(const std::string& text)
    {
        home.File(".fennick", text);
        table = GTable();
        ASSERT_EQ(GetGTable(), FILE_DONE);
    }
    void ExpectUsable() const;
};

std::string DefaultText()
{
    std::string text =
        "#\n# Fennick\n# Configuration file.\n# Copyright (C) 2026 The Fennick developers\n# Do not edit.\n#\n"
        "\n[Init]\nFileVersion=1.00\nCurrentDir=\n"
        "\n[Main Window]\nWindowX=50\nWindowY=50\nWindowWidth=600\nWindowHeight=400\nPandPosition=0\n"
        "\n[Detailed View]\nSortColumn=1\nSortType=0\nColumnCount=3\n"
        "ColumnPosition0=0\nColumnSize0=150\nColumnPosition1=1\nColumnSize1=70\nColumnPosition2=8\nColumnSize2=0\n"
        "Filter=no\nFilterName=*\n"
        "\n[Setting]\nShowBackup=no\nShowHidden=no\nSortCase=no\nMixFileDir=no\n"
        "ConfilmDel=yes\nConfilmOverwrite=yes\nConfilmExec=no\nShowProgress=yes\n";
    constexpr int kColors[][3] = {{0, 0, 255},   {0, 255, 0}, {0, 0, 0},     {255, 0, 0},
                                  {255, 255, 0}, {255, 0, 0}, {255, 0, 255}, {0, 0, 0}};
    for (int i = 0; i < kColorCount; ++i) {
        const auto [red, green, blue] = kColors[i];
        text += FormatText("Color%dRed=%d\nColor%dGreen=%d\nColor%dBlue=%d\n", i, red, i, green, i, blue);
    }
    return text;
}

/// The text with another value for every key that can have one.
std::string ChangedText()
{
    std::istringstream lines(DefaultText());
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        const std::string key = line.substr(0, line.find('='));
        const std::string value = line.substr(std::min(key.size() + 1, line.size()));
        const bool is_kept = key == line || key == "ColumnCount" || key == "FileVersion" || key == "ColumnPosition2";
        const int number = std::atoi(value.c_str());
        const std::string changed = key == "CurrentDir"        ? "/\xE6\x97\xA5/a b=\t/"
                                    : key == "FilterName"      ? "*.[ch] "
                                    : key == "ColumnPosition0" ? "10"
                                    : key == "ColumnPosition1" ? "0"
                                    : value == "yes"           ? "no"
                                    : value == "no"            ? "yes"
                                                               : std::to_string(number < 253 ? number + 3 : 7);
        text += (is_kept ? line : key + "=" + changed) + "\n";
    }
    return text +
           "\n[LocationDirHistory]\nHistoryCount=3\nHistory0=/[Setting]/\nHistory1=/mad\xFE/\nHistory2=/\xE6\x97\xA5/\n"
           "\n[DirHistory]\nHistoryCount=12\nHistory0=/0\nHistory1=/1\nHistory2=/2\nHistory3=/3\nHistory4=/4\n"
           "History5=/5\nHistory6=/6\nHistory7=/7\nHistory8=/8\nHistory9=/9\nHistory10=/10\nHistory11=/11\n"
           "\n[FilterHistory]\nHistoryCount=1\nHistory0=*.c\n";
}

TEST_F(Settings, FirstStartWritesTheDefaults)
{
    table.CurrentDir.clear();
    ASSERT_EQ(GetGTable(), FILE_DONE);
    EXPECT_EQ(home.Contents(".fennick"), DefaultText());
    // Whatever a user added is gone after the next exit.
    Load("# mine\n" + DefaultText() + "Extra=1\n\n[Mine]\nKey=1\n");
    EXPECT_EQ(SetGTable(LiveLayout()), FILE_DONE);
    EXPECT_EQ(home.Contents(".fennick"), DefaultText());
}

TEST_F(Settings, EveryValueComesBack)
{
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        Load(ChangedText());
        LiveLayout layout;
        layout.PandPosition = table.PandPosition;
        EXPECT_EQ(SetGTable(layout), FILE_DONE);
        EXPECT_EQ(home.Contents(".fennick"), ChangedText());
    }
    EXPECT_EQ(table.CurrentDir, "/\xE6\x97\xA5/a b=\t/");
    EXPECT_EQ(table.SortColumn, 4);
    EXPECT_EQ(table.SortType, 3);
    EXPECT_EQ(table.PandPosition, 3);
    EXPECT_EQ(table.NameColumn, 2);
    EXPECT_EQ(table.Colors[4].green, 7 << 8);
    EXPECT_EQ(table.Colors[4].blue, 3 << 8);
    EXPECT_EQ(table.FilterHistory, History{"*.c"});
    const LiveLayout layout{true, -20, 30, 801, 602, 123, {11, 22, 33}};
    EXPECT_EQ(SetGTable(layout), FILE_DONE);
    Load(home.Contents(".fennick"));
    EXPECT_EQ((std::array{table.WindowX, table.WindowY, table.WindowWidth, table.WindowHeight, table.PandPosition}),
              (std::array{-20, 30, 801, 602, 123}));
    EXPECT_EQ((std::array{table.ColumnSize[0], table.ColumnSize[1], table.ColumnSize[2]}), (std::array{11, 22, 33}));
}

TEST_F(Settings, DefaultsReplaceAllButDirectoryAndHistories)
{
    Load(ChangedText());
    DefaultGTable();
    EXPECT_EQ(std::exchange(table.CurrentDir, ""), "/\xE6\x97\xA5/a b=\t/");
    EXPECT_EQ(std::exchange(table.LocationDirHistory, {}).size(), 3U);
    EXPECT_EQ(std::exchange(table.DirHistory, {}).size(), 12U);
    EXPECT_EQ(std::exchange(table.FilterHistory, {}).size(), 1U);
    EXPECT_EQ(table.NameColumn, 1);
    EXPECT_EQ(table.PandPosition, kDefaultDivider);
    EXPECT_EQ(SetGTable(LiveLayout()), FILE_DONE);
    EXPECT_EQ(home.Contents(".fennick"), DefaultText());
    pGTable = nullptr;
    DefaultGTable();
    EXPECT_EQ(GetGTable(), FILE_NO_ARGUMENT);
    EXPECT_EQ(SetGTable(LiveLayout()), FILE_NO_ARGUMENT);
}

TEST_F(Settings, EachFlagHasItsOwnKey)
{
    constexpr const char* kKeys[] = {"ShowBackup", "ShowHidden",       "SortCase",    "MixFileDir",
                                     "ConfilmDel", "ConfilmOverwrite", "ConfilmExec", "ShowProgress"};
    const auto flags = [](const GTable& of) {
        return std::vector<int>{of.ShowBackup, of.ShowHidden,       of.SortCase,    of.MixFileDir,
                                of.ConfilmDel, of.ConfilmOverwrite, of.ConfilmExec, of.ShowProgress};
    };
    for (std::size_t i = 0; i < std::size(kKeys); ++i) {
        std::vector<int> expected = flags(GTable());
        expected[i] = 1 - expected[i];
        const char* const value = expected[i] != 0 ? "=yes\n" : "=no\n";
        Load(std::string("[Setting]\n") + kKeys[i] + value + "[Other]\nShowHidden=yes\n");
        EXPECT_EQ(flags(table), expected) << kKeys[i];
    }
}

TEST_F(Settings, KeysMatchAsBeginningsOfLines)
{
    // In the last one the newline is taken for a second byte.
    using Case = std::pair<const char*, std::optional<std::string>>;
    for (const auto& [text, expected] :
         {Case("[S]\nKey=v\n", "v"), Case("[S]\nKey \t==  v w \n", "v w "), Case("[S]\nKey", ""),
          Case("[S]\nLong=1\nKey=v", "v"), Case("[S]\nKeyLong=1\nKey=v\n", "Long=1"),
          Case("[S]\nkey=v\n Key=v\n", std::nullopt), Case("[S]\nOther=1\n[T]\nKey=v\n", std::nullopt),
          Case("[T]\nKey=v\n[S]", std::nullopt), Case("", std::nullopt),
          Case("[T]\nx=/[S]/\nKey=wrong\n[S]\nKey=v\n", "v"), Case("[S]\nx=\xE6\x97\xA5\nKey=v\n", "v"),
          Case("[S]\nKey=\xB0\nx=1\n", "\xB0\nx=1")}) {
        std::string value = "untouched";
        EXPECT_EQ(GetString(text, "[S]", "Key", value, 100), expected ? FILE_DONE : FILE_NO_ARGUMENT) << text;
        EXPECT_EQ(value, expected.value_or("untouched")) << text;
    }
    std::string value = "untouched";
    EXPECT_EQ(GetString("[S]\nKey=12345", "[S]", "Key", value, 5), FILE_VALUE_TOO_LONG);
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(GetString("[S]\nKey=12345", "[S]", "Key", value, 6), FILE_DONE);
    EXPECT_EQ(GetLastCharPosition(nullptr), nullptr);
}

TEST_F(Settings, ValuesAreTakenAsFarAsTheyGo)
{
    constexpr int kKept = 7;
    // As a number, as a flag, as a colour component.
    using Case = std::tuple<std::string, int, int, int>;
    for (const auto& [value, expected_number, expected_flag, expected_component] :
         {Case("12", 12, 0, 3072), Case("  -20", -20, 0, 0), Case("+5x", 5, 0, 1280), Case("abc", 0, 0, 0),
          Case("", 0, 0, 0), Case("255", 255, 0, 65280), Case("256", 256, 0, 0),
          Case("99999999999999999999", INT_MAX, kKept, 0), Case("-99999999999", INT_MIN, 0, 0),
          Case("4294967296", INT_MAX, 0, 0), Case("YeS", 0, 1, 0), Case("yesplease", 0, 1, 0),
          Case("yesxxxxxxxxxxx", 0, 1, 0), Case("yesxxxxxxxxxxxx", 0, kKept, 0), Case("ye", 0, 0, 0),
          Case("1", 1, 0, 256), Case("00000000000000000000000000000000000000000000000000000000000001", 1, kKept, 256),
          Case("000000000000000000000000000000000000000000000000000000000000001", kKept, kKept, kKept)}) {
        const std::string text = "[Setting]\nKey = " + value + "\n";
        int number = kKept;
        int flag = kKept;
        std::uint16_t component = kKept;
        GetNumeric(text.c_str(), "[Setting]", "Key", number);
        GetFlag(text.c_str(), "[Setting]", "Key", flag);
        GetColor(text.c_str(), "Key", component);
        EXPECT_EQ(number, expected_number) << value;
        EXPECT_EQ(flag, expected_flag) << value;
        EXPECT_EQ(component, expected_component) << value;
    }
}

TEST_F(Settings, TextsThatDoNotFitKeepTheirDefault)
{
    const std::string longest(kMaxPathBytes - 1, 'd');
    const std::string filter(kMaxFilterBytes, 'f');
    Load("[Init]\nCurrentDir=" + longest + "\n[Detailed View]\nFilterName=" + filter + "\n");
    EXPECT_EQ(table.CurrentDir, longest);
    EXPECT_EQ(table.FilterName, filter);
    Load("[Init]\nCurrentDir=d" + longest + "\n[Detailed View]\nFilterName=f" + filter + "\n");
    EXPECT_EQ(table.CurrentDir, "");
    EXPECT_EQ(table.FilterName, "*");
}

TEST_F(Settings, UnusableColumnsGiveTheDefaultLayout)
{
    using Columns = std::vector<int>;
    // The stored count and positions, and what is shown; the stored widths are 200 and up.
    using Case = std::tuple<const char*, Columns, Columns>;
    for (const auto& [count, positions, usable] :
         {Case("1", {0}, {0}), Case("4", {10, 9, 0, 3}, {10, 9, 0, 3}), Case("2", {1, 0, 0}, {1, 0}),
          Case("11", {10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}, {10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}), Case("0", {0, 1, 2}, {}),
          Case("-1", {0, 1, 2}, {}), Case("12", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0}, {}), Case("2147483647", {0}, {}),
          Case("many", {0}, {}), Case("2", {0, 11}, {}), Case("2", {0, -1}, {}), Case("3", {0, 1, 1}, {}),
          Case("2", {1, 2}, {})}) {
        std::string text = std::string("[Detailed View]\nColumnCount=") + count + "\n";
        for (std::size_t i = 0; i < positions.size(); ++i) {
            text += FormatText("ColumnPosition%zu=%d\nColumnSize%zu=%zu\n", i, positions[i], i, 200 + i);
        }
        SCOPED_TRACE(text);
        Load(text);
        const Columns expected = usable.empty() ? Columns{0, 1, 8} : usable;
        const Columns sizes = {200, 201, 202, 203, 204, 205, 206, 207, 208, 209, 210};
        const Columns expected_sizes = usable.empty() ? Columns{150, 70, 0} : sizes;
        ASSERT_EQ(table.ColumnCount, static_cast<int>(expected.size()));
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), table.ColumnPosition.begin()));
        EXPECT_TRUE(
            std::equal(table.ColumnSize.begin(), table.ColumnSize.begin() + table.ColumnCount, expected_sizes.begin()));
        ExpectUsable();
    }
    // One position is missing: the widths up to there are kept.
    Load("[Detailed View]\nColumnCount=4\nColumnPosition0=5\nColumnSize0=200\nColumnPosition1=0\nColumnSize1=201\n");
    EXPECT_EQ(table.ColumnCount, 3);
    EXPECT_EQ(table.ColumnPosition[0], COLUMN_NAME);
    EXPECT_EQ((std::array{table.ColumnSize[0], table.ColumnSize[1], table.ColumnSize[2]}), (std::array{200, 201, 0}));
}

TEST_F(Settings, HistoriesOnReading)
{
    const std::string longest(kMaxPathBytes, 'x');
    const std::pair<std::string, History> cases[] = {
        {"HistoryCount=3\nHistory0=a\nHistory1=b\nHistory2=c\n", {"a", "b", "c"}},
        {"HistoryCount=2\nHistory0=a\nHistory1=b\nHistory2=c\n", {"a", "b"}},
        {"HistoryCount=4\nHistory0=a\nHistory1=b\nHistory2=\nHistory3=d\n", {"a", "b", "d"}},
        {"HistoryCount=2\nHistory0=" + longest + "\nHistory1=x" + longest + "\n", {longest}},
        {"HistoryCount=-1\nHistory0=a\n", {}},
        {"History0=a\n", {}}};
    for (const auto& [lines, expected] : cases) {
        Load("[DirHistory]\n" + lines);
        EXPECT_EQ(table.DirHistory, expected) << lines.substr(0, 100);
    }
}

// A line of number 12 is also one of number 1 where that has none of its own.
TEST_F(Settings, HistoriesReadAsIfLookedUpOneByOne)
{
    constexpr const char* kNumbers[] = {"0", "1", "2", "01", "1x", "10", "11", "12", "110", "119", "", "99999999999"};
    constexpr const char* kValues[] = {"=a", "=", " = b", "c", "=\xE6\x97\xA5", "=1", "\t0=d"};
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 500; ++round) {
        const std::size_t count = random.Below(130);
        std::string text = FormatText("[DirHistory]\nHistoryCount=%zu\n", count);
        for (std::size_t lines = random.Below(8); lines > 0; --lines) {
            text += std::string(random.Below(8) == 0 ? "[Other]\n" : "") + "History" + random.Pick(kNumbers) +
                    random.Pick(kValues) + "\n";
        }
        History expected;
        for (std::size_t i = 0; i < count; ++i) {
            std::string value;
            GetString(text.c_str(), "[DirHistory]", FormatText("History%zu", i).c_str(), value, kMaxPathBytes + 1);
            expected.insert(expected.end(), value.empty() ? 0 : 1, value);
        }
        History list;
        GetHistoryList(text.c_str(), "[DirHistory]", list);
        ASSERT_EQ(list, expected) << text;
    }
}

TEST_F(Settings, LinesHoldNoNewlines)
{
    table.CurrentDir = "/line\nfeed/";
    table.LocationDirHistory = {"/a\nShowHidden=yes/", "/b/", "/\n/", "/c/"};
    table.DirHistory = {"\n"};
    ASSERT_EQ(SetGTable(LiveLayout()), FILE_DONE);
    EXPECT_EQ(home.Contents(".fennick"),
              DefaultText() + "\n[LocationDirHistory]\nHistoryCount=2\nHistory0=/b/\nHistory1=/c/\n");
    std::string text;
    EXPECT_FALSE(SetString(text, "[S]", "Key", std::string(4096, 'x')));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(SetString(text, "[S]", "Key", std::string(4095, 'x')));
}

TEST_F(Settings, WithoutHomeNothingIsReadOrWritten)
{
    const std::string stored = "[Setting]\nShowHidden=yes\n";
    home.File(".fennick", stored);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(home.Path());
    const bool at_root = std::filesystem::exists("/.fennick");
    const std::string too_long(kMaxPathBytes, 'h');
    for (const char* const value : {static_cast<const char*>(nullptr), "", too_long.c_str()}) {
        home_variable.Set(value);
        EXPECT_EQ(GetGTable(), FILE_DONE);
        EXPECT_EQ(table.ShowHidden, 0);
        EXPECT_EQ(SetGTable(LiveLayout()), FILE_DONE);
        EXPECT_EQ(home.Contents(".fennick"), stored);
        EXPECT_EQ(std::filesystem::exists("/.fennick"), at_root);
    }
    std::filesystem::current_path(before);
}

void Settings::ExpectUsable() const
{
    ASSERT_TRUE(table.ColumnCount >= 1 && table.ColumnCount <= kColumnKinds) << table.ColumnCount;
    const auto end = table.ColumnPosition.begin() + table.ColumnCount;
    const std::set<int> shown(table.ColumnPosition.begin(), end);
    EXPECT_EQ(static_cast<int>(shown.size()), table.ColumnCount);
    EXPECT_TRUE(*shown.begin() >= 0 && *shown.rbegin() < kColumnKinds);
    ASSERT_TRUE(table.NameColumn >= 1 && table.NameColumn <= table.ColumnCount) << table.NameColumn;
    EXPECT_EQ(table.ColumnPosition[static_cast<std::size_t>(table.NameColumn - 1)], COLUMN_NAME);
    EXPECT_TRUE(table.CurrentDir.size() <= kMaxPathBytes && table.FilterName.size() <= kMaxFilterBytes);
    for (const History* const history : {&table.LocationDirHistory, &table.DirHistory, &table.FilterHistory}) {
        for (const std::string& entry : *history) {
            EXPECT_TRUE(!entry.empty() && entry.size() <= kMaxPathBytes) << entry.size();
        }
    }
}

TEST_F(Settings, DamagedFilesLeaveAUsableRecord)
{
    const std::string pieces[] = {"\n",
                                  "[",
                                  "=",
                                  "-1",
                                  "99999999999999999999",
                                  "\xE6\x97\xA5",
                                  "\xFF",
                                  std::string(1, '\0'),
                                  "History",
                                  "\n[DirHistory]\nHistoryCount=1999999999\n",
                                  "\nColumnCount=11\n",
                                  "\n[Detailed View]\n"};
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        std::string text = ChangedText();
        for (std::size_t changes = 1 + random.Below(8); changes > 0; --changes) {
            const std::size_t at = random.Below(text.size());
            const std::size_t way = random.Below(4);
            if (way == 0) {
                text[at] = static_cast<char>(random.Below(256));
            } else if (way == 1) {
                text.replace(at, random.Below(40), "\n");
            } else {
                text.insert(at, random.Pick(pieces));
            }
        }
        SetLocale(round % 2 != 0 ? kUtf8Locale : kTwoByteLocale);
        Load(text);
        ExpectUsable();
    }
}

// Each of these is over in no time, or the test never ends.
TEST_F(Settings, GiantFilesAreReadInOnePass)
{
    constexpr std::size_t kMega = 1 << 20;
    constexpr const char* kHistory = "[DirHistory]\nHistoryCount=2000000000\n";
    std::string umlauts;
    std::string numbers;
    while (numbers.size() < kMega) {
        numbers += "History" + std::to_string(numbers.size()) + "=x\n";
        umlauts += "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9";
    }
    const std::string texts[] = {std::string(kMega, '\xFF'),
                                 kHistory + umlauts + "\xFF\n" + umlauts,
                                 "[Detailed View]\nColumnCount=11\nColumnPosition0=" + umlauts,
                                 kHistory + std::string(kMega, '\n'),
                                 kHistory + ("History" + std::string(kMega, '1')),
                                 kHistory + numbers,
                                 std::string(kMega, '['),
                                 std::string(kMega, '\0')};
    for (const std::string& text : texts) {
        Load(text);
        ExpectUsable();
    }
}

}  // namespace
