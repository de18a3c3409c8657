// What the settings file says and how it is read.

#include "core/fnkfiles-settings.h"

#include <climits>
#include <sstream>

#include "core/fnkutil-text.h"
#include "tabletest.h"

namespace {

class Settings : public TableTest {
protected:
    std::string Saved(const LiveLayout& layout = LiveLayout()) const
    {
        EXPECT_EQ(SetGTable(layout), FILE_DONE);
        return home.Contents(".fennick");
    }
    /// Reads a settings file of this text into a fresh record.
    void Load(const std::string& text)
    {
        home.File(".fennick", text);
        table = GTable();
        ASSERT_EQ(GetGTable(), FILE_DONE);
    }
    /// A file with another value for every key that can have one, and with histories.
    std::string ChangedText() const
    {
        std::istringstream lines(Saved());
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            const std::string key = line.substr(0, line.find('='));
            const std::string value = line.substr(std::min(key.size() + 1, line.size()));
            const bool is_kept =
                key == line || key == "ColumnCount" || key == "FileVersion" || key == "ColumnPosition2";
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
        text += "\n[LocationDirHistory]\nHistoryCount=2\nHistory0=/[Setting]/\nHistory1=/mad\xFE/\n";
        text += "\n[DirHistory]\nHistoryCount=12\n";
        for (int i = 0; i < 12; ++i) {
            text += FormatText("History%d=/%d\n", i, i);
        }
        return text + "\n[FilterHistory]\nHistoryCount=1\nHistory0=*.c\n";
    }
};

TEST_F(Settings, EveryValueComesBack)
{
    table.CurrentDir.clear();
    ASSERT_EQ(GetGTable(), FILE_DONE);
    const std::string defaults = home.Contents(".fennick");
    EXPECT_NE(defaults.find("\n[Setting]\nShowBackup=no\n"), std::string::npos) << "the first start writes them";
    const std::string changed = ChangedText();
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        Load("# mine\n" + changed + "Extra=1\n\n[Mine]\nKey=1\n");
        LiveLayout layout;
        layout.PandPosition = table.PandPosition;
        EXPECT_EQ(Saved(layout), changed);
    }
    EXPECT_EQ(table.CurrentDir, "/\xE6\x97\xA5/a b=\t/");
    EXPECT_EQ((std::vector{table.SortColumn, table.SortType, table.PandPosition, table.NameColumn}),
              (std::vector{4, 3, 3, 2}));
    EXPECT_EQ((std::vector{table.Colors[4].green, table.Colors[4].blue}), (std::vector<std::uint16_t>{7 << 8, 3 << 8}));
    // The defaults leave the directory and the histories.
    DefaultGTable();
    EXPECT_TRUE(table.LocationDirHistory.size() == 2 && table.DirHistory.size() == 12);
    EXPECT_EQ(table.NameColumn, 1);
    EXPECT_EQ(table.PandPosition, kDefaultDivider);
    table.CurrentDir.clear();
    table.LocationDirHistory = table.DirHistory = table.FilterHistory = {};
    EXPECT_EQ(Saved(), defaults);
}

TEST_F(Settings, TheLayoutOfTheWindowIsSavedIfThereIsOne)
{
    Load(Saved({true, -20, 30, 801, 602, 123, {11, 22, 33}}));
    EXPECT_EQ(table.PandPosition, 123);
    LiveLayout closed;
    closed.PandPosition = 99;
    Load(Saved(closed));
    EXPECT_EQ((std::vector{table.WindowX, table.WindowY, table.WindowWidth, table.WindowHeight, table.PandPosition}),
              (std::vector{-20, 30, 801, 602, 99}));
    EXPECT_EQ((std::vector{table.ColumnSize[0], table.ColumnSize[1], table.ColumnSize[2]}), (std::vector{11, 22, 33}));
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
}

TEST_F(Settings, ValuesAreReadAsFarAsTheyGo)
{
    constexpr int kKept = 7;
    // As a number, as a flag, as a colour component.
    using Case = std::tuple<std::string, int, int, int>;
    for (const auto& [value, expected_number, expected_flag, expected_component] :
         {Case("  -20", -20, 0, 0), Case("+5x", 5, 0, 1280), Case("abc", 0, 0, 0), Case("255", 255, 0, 65280),
          Case("256", 256, 0, 0), Case("99999999999999999999", INT_MAX, kKept, 0), Case("-99999999999", INT_MIN, 0, 0),
          Case("yEsxxxxxxxxxxx", 0, 1, 0), Case("yesxxxxxxxxxxxx", 0, kKept, 0), Case("ye", 0, 0, 0),
          Case(std::string(61, '0') + "1", 1, kKept, 256), Case(std::string(62, '0') + "1", kKept, kKept, kKept)}) {
        const std::string text = "[Setting]\nKey = " + value + "\n";
        int number = kKept;
        int flag = kKept;
        std::uint16_t component = kKept;
        GetNumeric(text.c_str(), "[Setting]", "Key", number);
        GetFlag(text.c_str(), "[Setting]", "Key", flag);
        GetColor(text.c_str(), "Key", component);
        EXPECT_EQ(std::tuple(number, flag, component), std::tuple(expected_number, expected_flag, expected_component))
            << value;
    }
}

TEST_F(Settings, UnusableColumnsGiveTheDefaultLayout)
{
    using Columns = std::vector<int>;
    const Columns defaults = {0, 1, 8};
    const Columns reversed = {10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};
    // The stored count and positions, and what is shown. Stored widths are 200 and up.
    using Case = std::tuple<const char*, Columns, Columns>;
    for (const auto& [count, positions, shown] :
         {Case("1", {0}, {0}), Case("2", {1, 0, 0}, {1, 0}), Case("11", reversed, reversed),
          Case("0", {0, 1}, defaults), Case("-1", {0, 1}, defaults), Case("12", reversed, defaults),
          Case("2147483647", {0}, defaults), Case("many", {0}, defaults), Case("2", {0, 11}, defaults),
          Case("2", {0, -1}, defaults), Case("3", {0, 1, 1}, defaults), Case("2", {1, 2}, defaults)}) {
        std::string text = std::string("[Detailed View]\nColumnCount=") + count + "\n";
        for (std::size_t i = 0; i < positions.size(); ++i) {
            text += FormatText("ColumnPosition%zu=%d\nColumnSize%zu=%zu\n", i, positions[i], i, 200 + i);
        }
        SCOPED_TRACE(text);
        Load(text);
        const auto begin = table.ColumnPosition.begin();
        EXPECT_EQ(Columns(begin, begin + table.ColumnCount), shown);
        EXPECT_EQ(table.ColumnSize[0], shown == defaults ? 150 : 200);
        EXPECT_EQ(table.ColumnSize[shown.size() - 1], shown == defaults ? 0 : 199 + table.ColumnCount);
    }
    // One position is missing: the widths up to there are kept.
    Load("[Detailed View]\nColumnCount=4\nColumnPosition0=5\nColumnSize0=200\nColumnPosition1=0\nColumnSize1=201\n");
    EXPECT_EQ(table.ColumnCount, 3);
    EXPECT_EQ((std::vector{table.ColumnSize[0], table.ColumnSize[1], table.ColumnSize[2]}), (std::vector{200, 201, 0}));
}

TEST_F(Settings, HistoriesAndTextsThatDoNotFit)
{
    const std::string longest(kMaxPathBytes, 'x');
    using Case = std::pair<std::string, History>;
    for (const auto& [lines, expected] :
         {Case("HistoryCount=2\nHistory0=a\nHistory1=b\nHistory2=c\n", {"a", "b"}),
          Case("HistoryCount=4\nHistory0=a\nHistory1=b\nHistory2=\nHistory3=d\n", {"a", "b", "d"}),
          Case("HistoryCount=2\nHistory0=" + longest + "\nHistory1=x" + longest + "\n", {longest}),
          Case("HistoryCount=12\nHistory10=k\nHistory1x=z\n", {"0=k", "k"}),  // Keys match as beginnings.
          Case("HistoryCount=-1\nHistory0=a\n", {}), Case("History0=a\n", {})}) {
        Load("[DirHistory]\n" + lines);
        EXPECT_EQ(table.DirHistory, expected) << lines.substr(0, 100);
    }
    const std::string directory(kMaxPathBytes - 1, 'd');
    const std::string filter(kMaxFilterBytes, 'f');
    Load("[Init]\nCurrentDir=" + directory + "\n[Detailed View]\nFilterName=" + filter + "\n");
    EXPECT_EQ(table.CurrentDir + table.FilterName, directory + filter);
    Load("[Init]\nCurrentDir=d" + directory + "\n[Detailed View]\nFilterName=f" + filter + "\n");
    EXPECT_EQ(table.CurrentDir + table.FilterName, "*");
}

TEST_F(Settings, LinesHoldNoNewlines)
{
    table.CurrentDir.clear();
    const std::string defaults = Saved();
    table.CurrentDir = "/line\nfeed/";
    table.LocationDirHistory = {"/a\nShowHidden=yes/", "/b/", std::string(4096, 'x')};
    table.DirHistory = {"\n"};
    EXPECT_EQ(Saved(), defaults + "\n[LocationDirHistory]\nHistoryCount=1\nHistory0=/b/\n");
}

TEST_F(Settings, WithoutHomeNothingIsReadOrWritten)
{
    const std::string stored = "[Setting]\nShowHidden=yes\n";
    home.File(".fennick", stored);
    for (const std::string& value : {std::string(), std::string(kMaxPathBytes, 'h')}) {
        home_variable.Set(value.c_str());
        EXPECT_EQ(GetGTable(), FILE_DONE);
        EXPECT_EQ(table.ShowHidden, 0);
        EXPECT_EQ(SetGTable(LiveLayout()), FILE_DONE);
        EXPECT_EQ(home.Contents(".fennick"), stored);
    }
}

}  // namespace
