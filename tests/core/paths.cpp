// Stepping through text, splitting paths, names and sizes: nothing here touches the disk.

#include <glib.h>

#include <cstdint>

#include "fnkutil.h"
#include "tabletest.h"

namespace {

class Paths : public TableTest {};

TEST_F(Paths, CharNextStepsByTwoByteRuleOrUtf8)
{
    constexpr int kNone = -1;
    // Where the delimiter is found by the two-byte rule and in UTF-8.
    const std::tuple<const char*, char, int, int> cases[] = {{"", '/', kNone, kNone},
                                                             {"/", '/', 0, 0},
                                                             {"ab", '/', kNone, kNone},
                                                             {"\xB0/", '/', kNone, 1},
                                                             {"a\xB0\x41/", '/', 3, 3},
                                                             {"\xB0", '/', kNone, kNone},
                                                             {"\xE6\x97\xA5/", '/', 3, 3},
                                                             {"\xE6\x97\xA5/\xB0", '/', kNone, 3},
                                                             {"\xB0\x61/\xE6\x97\xA5/", '/', 2, 2},
                                                             {"\xE6\x97/", '/', 2, 2},
                                                             {"\xE6/", '/', kNone, 1},
                                                             {"\xC0\xAF/\xFF", '/', 2, 2},
                                                             {"\xF0\x9F\x98\x80/", '/', 4, 4},
                                                             {"", '\0', kNone, kNone},
                                                             {"a", '\0', kNone, kNone},
                                                             {"ab", '\0', 1, 1},
                                                             {"\xE6\x97\xA5x", '\0', 3, 3},
                                                             {"\xB0x", '\0', kNone, 1},
                                                             {"\xB0xy", '\0', 2, 1}};
    const auto position = [](const char* text, char delimiter) {
        const char* const found = CharNext(text, delimiter);
        return found == nullptr ? kNone : found - text;
    };
    for (const auto& [text, delimiter, two_byte, utf8] : cases) {
        SetLocale(kTwoByteLocale);
        EXPECT_EQ(position(text, delimiter), two_byte) << text;
        SetLocale(kUtf8Locale);
        EXPECT_EQ(position(text, delimiter), utf8) << text;
    }
    EXPECT_EQ(CharNext(nullptr, '/'), nullptr);
}

/// The rule of the stepper without any memory of the steps before.
std::size_t SlowNext(const std::string& text, std::size_t at, bool utf8_locale)
{
    const std::string rest = text.substr(at);
    if (static_cast<unsigned char>(rest[0]) >= 0x80 && !utf8_locale && !g_utf8_validate(rest.c_str(), -1, nullptr)) {
        return std::min(at + 2, text.size());
    }
    std::size_t bytes = 1;
    while (bytes <= rest.size() && !g_utf8_validate(rest.c_str(), static_cast<gssize>(bytes), nullptr)) {
        ++bytes;
    }
    return at + (bytes <= 4 && bytes <= rest.size() ? bytes : 1);
}

TEST_F(Paths, StepperRemembersNothingWrong)
{
    constexpr const char* kPieces[] = {"a",    "/",    "\xC3\xA9", "\xE6\x97\xA5", "\xF0\x9F\x98\x80",
                                       "\x80", "\xB0", "\xE6"};
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (std::size_t pieces = random.Below(9); pieces > 0; --pieces) {
            text += random.Pick(kPieces);
        }
        SetLocale(round % 2 == 0 ? kUtf8Locale : kTwoByteLocale);
        CharStepper stepper(text.data(), text.data() + text.size());
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t next = SlowNext(text, at, round % 2 == 0);
            ASSERT_EQ(stepper.Next(text.data() + at) - text.data(), static_cast<std::ptrdiff_t>(next))
                << "in " << testing::PrintToString(text) << " at " << at;
            at = next;
        }
    }
}

TEST_F(Paths, ParentAndLastComponent)
{
    constexpr const char* kCases[][3] = {{"/usr/local/bin", "/usr/local/", "bin"},
                                         {"/usr/local/bin/", "/usr/local/", "bin"},
                                         {"/usr", "/", "usr"},
                                         {"/usr/", "/", "usr"},
                                         {"/", "/", ""},
                                         {"", "", ""},
                                         {"/a b/c\nd/", "/a b/", "c\nd"},
                                         {"/\xE6\x97\xA5/\xE6\x9C\xAC/", "/\xE6\x97\xA5/", "\xE6\x9C\xAC"}};
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        for (const auto& [path, parent, last] : kCases) {
            EXPECT_EQ(GetParentDirectory(path), parent) << path << " in " << locale;
            EXPECT_EQ(GetLastPath(path), last) << path << " in " << locale;
        }
        EXPECT_EQ(GetLastPath("/\x83/x"), locale == kUtf8Locale ? "x" : "\x83/x");
    }
}

TEST_F(Paths, ChildOfRoot)
{
    table.RootDir = "/home/user/";
    for (const char* const inside : {"/home/user", "/home/user/", "/home/user/docs", "/home/user/../x"}) {
        EXPECT_EQ(CheckChildDirectory(inside), 0) << inside;
    }
    for (const char* const outside : {"/home/username", "/home/use", "/home/User/x", "/tmp", "/", ""}) {
        EXPECT_EQ(CheckChildDirectory(outside), 1) << outside;
    }
    table.RootDir = "/";
    EXPECT_EQ(CheckChildDirectory("/"), 0);
    EXPECT_EQ(CheckChildDirectory("/tmp"), 0);
}

TEST_F(Paths, SizesAreShownRounded)
{
    const std::pair<std::uint64_t, const char*> cases[] = {{0, "0KByte"},
                                                           {1, "0.1KByte"},
                                                           {51, "0.1KByte"},
                                                           {153, "0.1KByte"},
                                                           {154, "0.2KByte"},
                                                           {512, "0.5KByte"},
                                                           {972, "0.9KByte"},
                                                           {973, "1KByte"},
                                                           {1023, "1KByte"},
                                                           {1076, "1.1KByte"},
                                                           {1536, "1.5KByte"},
                                                           {1048064, "1023.5KByte"},
                                                           {1048575, "1024KByte"},
                                                           {1048576, "1MByte"},
                                                           {1572864, "1.5MByte"},
                                                           {4294967295, "4096MByte"},
                                                           {5368709120, "5120MByte"},
                                                           {1099512152064, "1048576.5MByte"},
                                                           {UINT64_MAX, "17592186044416MByte"}};
    for (const auto& [size, text] : cases) {
        EXPECT_EQ(ConvertSize(size), text) << size;
    }
}

TEST_F(Paths, HiddenAndBackupNames)
{
    // Shown with neither flag, with ShowBackup, with ShowHidden.
    const std::tuple<const char*, int, int, int> cases[] = {
        {"plain", 1, 1, 1},    {"x.bak.txt", 1, 1, 1}, {"..", 1, 1, 1},   {"file~", 0, 1, 0},
        {"~a", 1, 1, 1},       {"a.BAK", 0, 1, 0},     {".bak", 0, 0, 1}, {".", 0, 0, 1},
        {".profile", 0, 0, 1}, {".x~", 0, 0, 0},       {"xbak", 1, 1, 1}};
    for (const auto& [name, with_neither, with_backup, with_hidden] : cases) {
        table.ShowBackup = table.ShowHidden = 0;
        EXPECT_EQ(CheckFileName(name), with_neither) << name;
        table.ShowBackup = 1;
        EXPECT_EQ(CheckFileName(name), with_backup) << name;
        table.ShowHidden = 1;
        EXPECT_EQ(CheckFileName(name), 1) << name;
        table.ShowBackup = 0;
        EXPECT_EQ(CheckFileName(name), with_hidden) << name;
    }
}

TEST_F(Paths, HistoryMovesWhatItKnows)
{
    const History abc = {"a", "b", "c"};
    const History ten = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    // The settings file can bring more than ten.
    const History twelve = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "x", "y"};
    const std::string longest(kMaxPathBytes, 'x');
    const std::tuple<History, std::string, History> cases[] = {
        {{}, "a", {"a"}},
        {abc, "a", abc},
        {abc, "b", {"b", "a", "c"}},
        {abc, "A", {"A", "a", "b", "c"}},
        {abc, "", abc},
        {abc, longest, {longest, "a", "b", "c"}},
        {abc, longest + "x", abc},
        {ten, "n", {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8"}},
        {ten, "9", {"9", "0", "1", "2", "3", "4", "5", "6", "7", "8"}},
        {twelve, "n", {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8", "x", "y"}},
        {twelve, "y", {"y", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "x"}}};
    for (const auto& [before, added, after] : cases) {
        History list = before;
        AddHistoryListS(list, added);
        EXPECT_EQ(list, after) << "after adding " << added.substr(0, 20);
    }
}

}  // namespace
