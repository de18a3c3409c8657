// What the settings file says and how it is read.

#include "fnkfiles-settings.h"

#include <climits>
#include <set>

#include "fnkutil.h"
#include "tabletest.h"

namespace {

class Settings : public TableTest {
protected:
    /// Reads a settings file of this text into a fresh record.
    void Load(const std::string& text)
    {
        home.File(".fennick", text);
        Reload();
    }
    void Reload()
    {
        table = GTable();
        ASSERT_EQ(GetGTable(), FILE_DONE);
    }
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
    for (std::size_t i = 0; i < std::size(kColors); ++i) {
        const std::string key = "Color" + std::to_string(i);
        text += key + "Red=" + std::to_string(kColors[i][0]) + "\n" + key + "Green=" + std::to_string(kColors[i][1]) +
                "\n" + key + "Blue=" + std::to_string(kColors[i][2]) + "\n";
    }
    return text;
}

TEST_F(Settings, FirstStartWritesTheDefaults)
{
    Reload();
    EXPECT_EQ(home.Contents(".fennick"), DefaultText());
    EXPECT_EQ(home.Names(), std::vector<std::string>{".fennick"});
}

TEST_F(Settings, EveryFieldComesBack)
{
    GTable stored;
    stored.CurrentDir = "/\xE6\x97\xA5/a b=\t/";
    stored.SortColumn = 4;
    stored.SortType = SORT_DESCENDING;
    stored.Filter = 1;
    stored.FilterName = "*.[ch]";
    stored.ShowBackup = stored.SortCase = stored.ConfilmExec = 1;
    stored.ShowHidden = stored.MixFileDir = 1;
    stored.ConfilmDel = stored.ConfilmOverwrite = stored.ShowProgress = 0;
    stored.ColumnCount = kColumnKinds;
    for (int i = 0; i < kColumnKinds; ++i) {
        stored.ColumnPosition[static_cast<std::size_t>(i)] = kColumnKinds - 1 - i;
    }
    for (std::size_t i = 0; i < stored.Colors.size(); ++i) {
        const auto high = static_cast<std::uint16_t>(i * 3 + 1);
        stored.Colors[i] = {static_cast<std::uint16_t>(high << 8), static_cast<std::uint16_t>((high + 1) << 8), 0xff00};
    }
    stored.LocationDirHistory = {"/a/", "/[Setting]/", "/mad\xFE/", "/\xE6\x97\xA5/"};
    for (int i = 0; i < 12; ++i) {
        stored.DirHistory.push_back("/dir " + std::to_string(i));
    }
    stored.FilterHistory = {"*.c", "[Init]", "#"};
    LiveLayout layout{true, -20, 30, 801, 602, 123, {}};
    for (int i = 0; i < kColumnKinds; ++i) {
        layout.ColumnSize.push_back(100 + i);
    }
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SCOPED_TRACE(locale);
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
        table = stored;
        ASSERT_EQ(SetGTable(layout), FILE_DONE);
        EXPECT_EQ(table.WindowX, -20);
        Reload();
        EXPECT_EQ(table.CurrentDir, stored.CurrentDir);
        EXPECT_EQ(table.WindowX, -20);
        EXPECT_EQ(table.WindowY, 30);
        EXPECT_EQ(table.WindowWidth, 801);
        EXPECT_EQ(table.WindowHeight, 602);
        EXPECT_EQ(table.PandPosition, 123);
        EXPECT_EQ(table.SortColumn, 4);
        EXPECT_EQ(table.SortType, SORT_DESCENDING);
        EXPECT_EQ(table.ColumnCount, kColumnKinds);
        EXPECT_EQ(table.ColumnPosition, stored.ColumnPosition);
        EXPECT_TRUE(std::equal(layout.ColumnSize.begin(), layout.ColumnSize.end(), table.ColumnSize.begin()));
        EXPECT_EQ(table.NameColumn, kColumnKinds);
        EXPECT_EQ(table.FilterName, stored.FilterName);
        for (const auto flag : {&GTable::Filter, &GTable::ShowBackup, &GTable::ShowHidden, &GTable::SortCase,
                                &GTable::MixFileDir, &GTable::ConfilmExec}) {
            EXPECT_EQ(table.*flag, 1);
        }
        for (const auto flag : {&GTable::ConfilmDel, &GTable::ConfilmOverwrite, &GTable::ShowProgress}) {
            EXPECT_EQ(table.*flag, 0);
        }
        for (std::size_t i = 0; i < stored.Colors.size(); ++i) {
            EXPECT_EQ(table.Colors[i].red, stored.Colors[i].red) << i;
            EXPECT_EQ(table.Colors[i].green, stored.Colors[i].green) << i;
            EXPECT_EQ(table.Colors[i].blue, stored.Colors[i].blue) << i;
        }
        EXPECT_EQ(table.LocationDirHistory, stored.LocationDirHistory);
        EXPECT_EQ(table.DirHistory, stored.DirHistory);
        EXPECT_EQ(table.FilterHistory, stored.FilterHistory);
    }
}

TEST_F(Settings, EachFlagHasItsOwnKey)
{
    for (const Setting& setting : kSettings) {
        if (const auto* const flag = std::get_if<FlagSetting>(&setting.value)) {
            table = GTable();
            const int other = 1 - table.*flag->field;
            table.*flag->field = other;
            ASSERT_EQ(SetGTable(LiveLayout()), FILE_DONE);
            std::string expected = DefaultText();
            const std::string line = std::string("\n") + setting.key + "=";
            expected.replace(expected.find(line), line.size() + (other != 0 ? 2 : 3),
                             line + (other != 0 ? "yes" : "no"));
            EXPECT_EQ(home.Contents(".fennick"), expected) << setting.key;
        }
    }
}

TEST_F(Settings, KeysMatchAsBeginningsOfLines)
{
    const struct {
        const char* text;
        const char* key;
        const char* value;
    } cases[] = {
        {"[S]\nKey=v\n", "Key", "v"},
        {"[S]\nKey \t==  v w \n", "Key", "v w "},
        {"[S]\nKey", "Key", ""},
        {"[S]\nLong=1\nKey=v", "Key", "v"},
        {"[S]\nKeyLong=1\nKey=v\n", "Key", "Long=1"},
        {"[S]\nKey1=a\nKey10=b\n", "Key10", "b"},
        {"[S]\nkey=v\n", "Key", nullptr},
        {"[S]\n Key=v\n", "Key", nullptr},
        {"[S]\nOther=1\n[T]\nKey=v\n", "Key", nullptr},
        {"[T]\nKey=v\n[S]\n", "Key", nullptr},
        {"[S]", "Key", nullptr},
        {"", "Key", nullptr},
        {"[T]\nx=/[S]/\nKey=wrong\n[S]\nKey=v\n", "Key", "v"},
        {"[S] comment\nKey=v\n", "Key", "v"},
        {"[S]\nx=\xB0\nKey=v\n", "x", "\xB0\nKey=v"},  // the newline is taken for a second byte
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text);
        std::string value = "untouched";
        const FileResult result = GetString(expected.text, "[S]", expected.key, value, 100);
        EXPECT_EQ(result, expected.value != nullptr ? FILE_DONE : FILE_NO_ARGUMENT);
        EXPECT_EQ(value, expected.value != nullptr ? expected.value : "untouched");
        const char* start = nullptr;
        const char* end = nullptr;
        EXPECT_EQ(GetValuePosition(expected.text, "[S]", expected.key, &start, &end),
                  expected.value != nullptr ? FILE_DONE : FILE_KEY_MISSING);
    }
    std::string value = "untouched";
    EXPECT_EQ(GetString("[S]\nKey=12345", "[S]", "Key", value, 5), FILE_VALUE_TOO_LONG);
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(GetString("[S]\nKey=12345", "[S]", "Key", value, 6), FILE_DONE);
    EXPECT_EQ(GetValuePosition(nullptr, "[S]", "Key", nullptr, nullptr), FILE_NO_ARGUMENT);
    EXPECT_EQ(GetLastCharPosition(nullptr), nullptr);
}

TEST_F(Settings, ValuesAreTakenAsFarAsTheyGo)
{
    constexpr int kUntouched = 7;
    const struct {
        std::string value;
        int number;
        int flag;
        int component;
    } cases[] = {
        {"12", 12, 0, 12 << 8},
        {"  -20", -20, 0, 0},
        {"+5x", 5, 0, 5 << 8},
        {"abc", 0, 0, 0},
        {"", 0, 0, 0},
        {"0x10", 0, 0, 0},
        {"255", 255, 0, 0xff00},
        {"256", 256, 0, 0},
        {"300", 300, 0, 0},
        {"99999999999999999999", INT_MAX, kUntouched, 0},
        {"-99999999999", INT_MIN, 0, 0},
        {"4294967296", INT_MAX, 0, 0},
        {std::string(60, '0') + "12", 12, kUntouched, 12 << 8},
        {std::string(61, '0') + "12", kUntouched, kUntouched, kUntouched},
        {"yes", 0, 1, 0},
        {"YeS", 0, 1, 0},
        {"yesplease", 0, 1, 0},
        {"yesxxxxxxxxxxx", 0, 1, 0},
        {"yesxxxxxxxxxxxx", 0, kUntouched, 0},
        {"ye", 0, 0, 0},
        {"true", 0, 0, 0},
        {"1", 1, 0, 1 << 8},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.value);
        const std::string text = "[Setting]\nKey = " + expected.value + "\n";
        int number = kUntouched;
        int flag = kUntouched;
        std::uint16_t component = kUntouched;
        GetNumeric(text.c_str(), "[Setting]", "Key", number);
        GetFlag(text.c_str(), "[Setting]", "Key", flag);
        GetColor(text.c_str(), "Key", component);
        EXPECT_EQ(number, expected.number);
        EXPECT_EQ(flag, expected.flag);
        EXPECT_EQ(component, expected.component);
    }
}

TEST_F(Settings, WhatIsMissingKeepsItsDefault)
{
    const std::string longest(kMaxPathBytes - 1, 'd');
    Load(
        "[Setting]\nSortCase=yes\nConfilmDel=no\nColor2Green=9\n\n[X]\nShowHidden=yes\nColor2Red=9\n[Init]\nCurrentDir=" +
        longest + "\n[Detailed View]\nFilterName=" + std::string(kMaxFilterBytes + 1, 'f') + "\n");
    EXPECT_EQ(table.ShowHidden, 0);
    EXPECT_EQ(table.SortCase, 1);
    EXPECT_EQ(table.ConfilmDel, 0);
    EXPECT_EQ(table.ConfilmOverwrite, 1);
    EXPECT_EQ(table.Colors[2].red, 0);
    EXPECT_EQ(table.Colors[2].green, 9 << 8);
    EXPECT_EQ(table.Colors[4].red, 0xff00);
    EXPECT_EQ(table.WindowWidth, 600);
    EXPECT_EQ(table.PandPosition, kDefaultDivider);
    EXPECT_EQ(table.CurrentDir, longest);
    EXPECT_EQ(table.FilterName, "*");
    Load("[Init]\nCurrentDir=d" + longest + "\n[Detailed View]\nFilterName=" + std::string(kMaxFilterBytes, 'f') +
         "\n");
    EXPECT_EQ(table.CurrentDir, "");
    EXPECT_EQ(table.FilterName.size(), kMaxFilterBytes);
    Load("");
    EXPECT_EQ(table.ColumnCount, 3);
    EXPECT_EQ(home.Contents(".fennick"), "");
}

using Columns = std::vector<int>;

Columns Shown(const std::array<int, kColumnKinds>& values, int count)
{
    return Columns(values.begin(), values.begin() + count);
}

TEST_F(Settings, UnusableColumnsGiveTheDefaultLayout)
{
    const Columns defaults = {COLUMN_NAME, COLUMN_SIZE, COLUMN_MODIFICATION_TIME};
    const struct {
        const char* count;
        std::vector<const char*> positions;
        Columns expected;
        Columns sizes;
    } cases[] = {
        {"1", {"0"}, {0}, {200}},
        {"4", {"10", "9", "0", "3"}, {10, 9, 0, 3}, {200, 201, 202, 203}},
        {"2", {"1", "0", "0"}, {1, 0}, {200, 201}},
        {"0", {"0", "1", "2"}, defaults, {150, 70, 0}},
        {"-1", {"0", "1", "2"}, defaults, {150, 70, 0}},
        {"12", {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "0"}, defaults, {150, 70, 0}},
        {"2147483647", {"0"}, defaults, {150, 70, 0}},
        {"many", {"0"}, defaults, {150, 70, 0}},
        {"2", {"0", "11"}, defaults, {150, 70, 0}},
        {"2", {"0", "-1"}, defaults, {150, 70, 0}},
        {"3", {"0", "1", "1"}, defaults, {150, 70, 0}},
        {"2", {"1", "2"}, defaults, {150, 70, 0}},
        {"4", {"5", "0"}, defaults, {200, 201, 0}},  // one is missing: the widths so far are kept
    };
    for (const auto& layout : cases) {
        std::string text = std::string("[Detailed View]\nColumnCount=") + layout.count + "\n";
        for (std::size_t i = 0; i < layout.positions.size(); ++i) {
            text += FormatText("ColumnPosition%zu=%s\nColumnSize%zu=%zu\n", i, layout.positions[i], i, 200 + i);
        }
        SCOPED_TRACE(text);
        Load(text);
        ASSERT_EQ(table.ColumnCount, static_cast<int>(layout.expected.size()));
        EXPECT_EQ(Shown(table.ColumnPosition, table.ColumnCount), layout.expected);
        EXPECT_EQ(Shown(table.ColumnSize, table.ColumnCount), layout.sizes);
        EXPECT_EQ(layout.expected[static_cast<std::size_t>(table.NameColumn - 1)], COLUMN_NAME);
    }
}

TEST_F(Settings, HistoriesOnReading)
{
    const std::string longest(kMaxPathBytes, 'x');
    const struct {
        std::string lines;
        History expected;
    } cases[] = {
        {"HistoryCount=3\nHistory0=a\nHistory1=b\nHistory2=c\n", {"a", "b", "c"}},
        {"HistoryCount=2\nHistory0=a\nHistory1=b\nHistory2=c\n", {"a", "b"}},
        {"HistoryCount=4\nHistory0=a\nHistory1=b\nHistory2=\nHistory3=d\n", {"a", "b", "d"}},
        {"HistoryCount=4\nHistory3=d\nHistory0=a\n", {"a", "d"}},
        {"HistoryCount=3\nHistory0=" + longest + "\nHistory1=x" + longest + "\nHistory2=c\n", {longest, "c"}},
        {"HistoryCount=-1\nHistory0=a\n", {}},
        {"History0=a\n", {}},
        {"HistoryCount=2\nHistory0=a\n[Other]\nHistory1=b\n", {"a"}},
        {"HistoryCount=2\nHistory0=a\nHistory0=again\nHistory1 = b \n", {"a", "b "}},
    };
    for (const auto& history : cases) {
        SCOPED_TRACE(history.lines.substr(0, 100));
        Load("[DirHistory]\n" + history.lines);
        EXPECT_EQ(table.DirHistory, history.expected);
        EXPECT_TRUE(table.LocationDirHistory.empty());
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
        std::string text = "[DirHistory]\nHistoryCount=" + std::to_string(count) + "\n";
        for (std::size_t lines = random.Below(8); lines > 0; --lines) {
            text += random.Below(8) == 0 ? "[Other]\n" : "";
            text += std::string("History") + random.Pick(kNumbers) + random.Pick(kValues) + "\n";
        }
        History expected;
        for (std::size_t i = 0; i < count; ++i) {
            std::string value;
            GetString(text.c_str(), "[DirHistory]", FormatText("History%zu", i).c_str(), value, kMaxPathBytes + 1);
            if (!value.empty()) {
                expected.push_back(value);
            }
        }
        History list;
        GetHistoryList(text.c_str(), "[DirHistory]", list);
        ASSERT_EQ(list, expected) << text;
    }
}

TEST_F(Settings, LinesHoldNoNewlines)
{
    table.CurrentDir = "/line\nfeed/";
    table.FilterName = "a\nb";
    table.LocationDirHistory = {"/a\nShowHidden=yes/", "/b/", "/\n/", "/c/"};
    table.DirHistory = {"\n"};
    ASSERT_EQ(SetGTable(LiveLayout()), FILE_DONE);
    EXPECT_EQ(home.Contents(".fennick"),
              DefaultText() + "\n[LocationDirHistory]\nHistoryCount=2\nHistory0=/b/\nHistory1=/c/\n");
    std::string text;
    EXPECT_FALSE(SetString(text, "[S]", "Key", "a\nb"));
    EXPECT_FALSE(SetString(text, "[S]", "Key", std::string(4096, 'x')));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(SetString(text, "[S]", "Key", std::string(4095, 'x')));
    EXPECT_TRUE(SetNumeric(text, "[S]", "Other", INT_MIN));
    EXPECT_EQ(text, "\n[S]\nKey=" + std::string(4095, 'x') + "\nOther=-2147483648\n");
}

TEST_F(Settings, UserLinesAreGoneAfterTheNextExit)
{
    Load("# mine\n" + DefaultText() + "Extra=1\n\n[Mine]\nKey=1\n");
    ASSERT_EQ(SetGTable(LiveLayout()), FILE_DONE);
    EXPECT_EQ(home.Contents(".fennick"), DefaultText());
}

TEST_F(Settings, WithoutHomeNothingIsReadOrWritten)
{
    home.File(".fennick", "[Setting]\nShowHidden=yes\n");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(home.Path());
    const bool at_root = std::filesystem::exists("/.fennick");
    for (const char* const value : {static_cast<const char*>(nullptr), ""}) {
        home_variable.Set(value);
        Reload();
        EXPECT_EQ(table.ShowHidden, 0);
        EXPECT_EQ(SetGTable(LiveLayout()), FILE_DONE);
        EXPECT_EQ(home.Contents(".fennick"), "[Setting]\nShowHidden=yes\n");
        EXPECT_EQ(std::filesystem::exists("/.fennick"), at_root);
    }
    std::filesystem::current_path(before);
    pGTable = nullptr;
    EXPECT_EQ(GetGTable(), FILE_NO_ARGUMENT);
    EXPECT_EQ(SetGTable(LiveLayout()), FILE_NO_ARGUMENT);
}

void ExpectUsable(const GTable& table)
{
    ASSERT_GE(table.ColumnCount, 1);
    ASSERT_LE(table.ColumnCount, kColumnKinds);
    const Columns shown = Shown(table.ColumnPosition, table.ColumnCount);
    EXPECT_EQ(std::set<int>(shown.begin(), shown.end()).size(), shown.size());
    EXPECT_GE(*std::min_element(shown.begin(), shown.end()), 0);
    EXPECT_LT(*std::max_element(shown.begin(), shown.end()), kColumnKinds);
    ASSERT_GE(table.NameColumn, 1);
    ASSERT_LE(table.NameColumn, table.ColumnCount);
    EXPECT_EQ(shown[static_cast<std::size_t>(table.NameColumn - 1)], COLUMN_NAME);
    for (const Setting& setting : kSettings) {
        if (const auto* const flag = std::get_if<FlagSetting>(&setting.value)) {
            EXPECT_EQ(table.*flag->field & ~1, 0) << setting.key;
        }
    }
    EXPECT_LE(table.CurrentDir.size(), kMaxPathBytes);
    EXPECT_LE(table.FilterName.size(), kMaxFilterBytes);
    for (const History* const history : {&table.LocationDirHistory, &table.DirHistory, &table.FilterHistory}) {
        for (const std::string& entry : *history) {
            EXPECT_FALSE(entry.empty());
            EXPECT_LE(entry.size(), kMaxPathBytes);
        }
    }
}

TEST_F(Settings, DamagedFilesLeaveAUsableRecord)
{
    const std::string sound = DefaultText() + "\n[DirHistory]\nHistoryCount=3\nHistory0=/a\nHistory1=/b\nHistory2=/c\n";
    const std::string pieces[] = {
        std::string(1, '\0'),
        "\n",
        "[",
        "=",
        "-1",
        "99999999999999999999",
        "\xE6\x97\xA5",
        "\xFF",
        "History",
        "2147483647",
        "\n[DirHistory]\nHistoryCount=1999999999\n",
        "\nColumnCount=11\n",
        "\n[Detailed View]\n",
        std::string(5000, '7'),
    };
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 300; ++round) {
        std::string text = sound;
        for (std::size_t changes = 1 + random.Below(8); changes > 0; --changes) {
            const std::size_t at = random.Below(text.size());
            switch (random.Below(4)) {
            case 0:
                text[at] = static_cast<char>(random.Below(256));
                break;
            case 1:
                text.erase(at, random.Below(40));
                text += "\n";
                break;
            default:
                text.insert(at, random.Pick(pieces));
            }
        }
        ASSERT_NE(std::setlocale(LC_ALL, round % 2 != 0 ? kUtf8Locale : kTwoByteLocale), nullptr);
        Load(text);
        ExpectUsable(table);
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
}

// All of these are over in no time, or the test is never over.
TEST_F(Settings, GiantFilesAreReadInOnePass)
{
    constexpr std::size_t kMega = 1 << 20;
    std::string umlauts;
    while (umlauts.size() < kMega) {
        umlauts += "\xC3\xA9";
    }
    const std::string empty_lines(kMega, '\n');
    std::string numbers;
    while (numbers.size() < kMega) {
        numbers += "History" + std::to_string(numbers.size()) + "=x\n";
    }
    const std::string texts[] = {
        std::string(kMega, '\xFF'),
        "[DirHistory]\nHistoryCount=2000000000\nx=" + umlauts + "\xFF\n" + umlauts,
        "[Detailed View]\nColumnCount=11\nColumnPosition0=" + umlauts,
        "[DirHistory]\nHistoryCount=2000000000\n" + empty_lines,
        "[DirHistory]\nHistoryCount=2000000000\nHistory" + std::string(kMega, '1'),
        "[DirHistory]\nHistoryCount=2000000000\n" + numbers,
        std::string(kMega, '['),
        std::string(kMega, '\0'),
    };
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.substr(0, 60));
        Load(text);
        ExpectUsable(table);
    }
}

}  // namespace
