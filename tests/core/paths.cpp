// Stepping through text, splitting paths, names and sizes: nothing here touches the disk.

#include <glib.h>

#include <cstring>
#include <limits>

#include "fnkutil.h"
#include "tabletest.h"

namespace {

class Paths : public TableTest {};

constexpr std::ptrdiff_t kNone = -1;

std::ptrdiff_t Position(const std::string& text, char delimiter)
{
    const char* const found = CharNext(text.c_str(), delimiter);
    return found == nullptr ? kNone : found - text.c_str();
}

TEST_F(Paths, CharNextStepsByTwoByteRuleOrUtf8)
{
    const struct {
        std::string text;
        char delimiter;
        std::ptrdiff_t two_byte;
        std::ptrdiff_t utf8;
    } cases[] = {
        {"", '/', kNone, kNone},
        {"/", '/', 0, 0},
        {"ab/", '/', 2, 2},
        {"ab", '/', kNone, kNone},
        {"\xB0/", '/', kNone, 1},
        {"a\xB0\x41/", '/', 3, 3},
        {"\xB0", '/', kNone, kNone},
        {"\xE6\x97\xA5/", '/', 3, 3},
        {"\xE6\x97\xA5/\xB0", '/', kNone, 3},      // the end decides how the beginning is read
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
        {"\xB0xy", '\0', 2, 1},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text);
        std::setlocale(LC_ALL, kTwoByteLocale);
        EXPECT_EQ(Position(expected.text, expected.delimiter), expected.two_byte);
        ASSERT_NE(std::setlocale(LC_ALL, kUtf8Locale), nullptr);
        EXPECT_EQ(Position(expected.text, expected.delimiter), expected.utf8);
    }
    EXPECT_EQ(CharNext(nullptr, '/'), nullptr);
}

/// The rule of the stepper, told without remembering anything between two steps.
std::size_t SlowNext(const std::string& text, std::size_t at, bool utf8_locale)
{
    const char* const rest = text.data() + at;
    const std::size_t length = text.size() - at;
    const bool ascii = static_cast<unsigned char>(*rest) < 0x80;
    const bool valid_rest = g_utf8_validate(rest, static_cast<gssize>(length), nullptr);
    if (ascii || valid_rest || utf8_locale) {
        for (std::size_t bytes = 1; bytes <= 4 && bytes <= length; ++bytes) {
            if (g_utf8_validate(rest, static_cast<gssize>(bytes), nullptr)) {
                return at + bytes;
            }
        }
        return at + 1;
    }
    return at + std::min<std::size_t>(2, length);
}

TEST_F(Paths, StepperRemembersNothingWrong)
{
    constexpr const char* kPieces[] = {"a", "/", "\xC3\xA9", "\xE6\x97\xA5", "\xF0\x9F\x98\x80", "\x80", "\xB0", "\xE6"};
    SeededRandom random;
    SCOPED_TRACE(random.Trace());
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (std::size_t pieces = random.Below(9); pieces > 0; --pieces) {
            text += random.Pick(kPieces);
        }
        const bool utf8_locale = random.Below(2) == 0;
        ASSERT_NE(std::setlocale(LC_ALL, utf8_locale ? kUtf8Locale : kTwoByteLocale), nullptr);
        CharStepper stepper(text.data(), text.data() + text.size());
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t next = SlowNext(text, at, utf8_locale);
            ASSERT_EQ(stepper.Next(text.data() + at) - text.data(), static_cast<std::ptrdiff_t>(next))
                << "in " << testing::PrintToString(text) << " at " << at;
            at = next;
        }
        EXPECT_EQ(stepper.Next(text.data() + text.size()), text.data() + text.size());
    }
}

TEST_F(Paths, ParentAndLastComponent)
{
    const struct {
        const char* path;
        const char* parent;
        const char* last;
    } cases[] = {
        {"/usr/local/bin", "/usr/local/", "bin"},
        {"/usr/local/bin/", "/usr/local/", "bin"},
        {"/usr", "/", "usr"},
        {"/usr/", "/", "usr"},
        {"/", "/", ""},
        {"", "", ""},
        {"abc", "a", "bc"},
        {"/a b/c\nd/", "/a b/", "c\nd"},
        {"/\xE6\x97\xA5/\xE6\x9C\xAC/", "/\xE6\x97\xA5/", "\xE6\x9C\xAC"},
    };
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
        for (const auto& expected : cases) {
            EXPECT_EQ(GetParentDirectory(expected.path), expected.parent) << expected.path << " in " << locale;
            EXPECT_EQ(GetLastPath(expected.path), expected.last) << expected.path << " in " << locale;
        }
        const bool utf8 = locale == kUtf8Locale;
        EXPECT_EQ(GetParentDirectory("/\x83/x"), utf8 ? "/\x83/" : "/");
        EXPECT_EQ(GetLastPath("/\x83/x"), utf8 ? "x" : "\x83/x");
    }
}

TEST_F(Paths, ChildOfRoot)
{
    const struct {
        const char* root;
        const char* path;
        int outside;
    } cases[] = {
        {"/home/user/", "/home/user", 0},     {"/home/user/", "/home/user/", 0},
        {"/home/user/", "/home/user/docs", 0}, {"/home/user/", "/home/user/../x", 0},
        {"/home/user/", "/home/username", 1}, {"/home/user/", "/home/use", 1},
        {"/home/user/", "/tmp", 1},           {"/home/user/", "/", 1},
        {"/home/user/", "", 1},               {"/", "/", 0},
        {"/", "/tmp", 0},
    };
    for (const auto& expected : cases) {
        table.RootDir = expected.root;
        EXPECT_EQ(CheckChildDirectory(expected.path), expected.outside) << expected.path << " in " << expected.root;
    }
}

TEST_F(Paths, SizesAreShownRounded)
{
    constexpr std::uint64_t kMega = 1 << 20;
    const struct {
        std::uint64_t size;
        const char* text;
    } cases[] = {
        {0, "0KByte"},
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
        {kMega - 1, "1024KByte"},
        {kMega, "1MByte"},
        {kMega * 3 / 2, "1.5MByte"},
        {0xFFFFFFFF, "4096MByte"},
        {std::uint64_t{5} << 30, "5120MByte"},
        {(std::uint64_t{1} << 40) + kMega / 2, "1048576.5MByte"},
        {std::numeric_limits<std::uint64_t>::max(), "17592186044416MByte"},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(ConvertSize(expected.size), expected.text) << expected.size;
    }
}

TEST_F(Paths, HiddenAndBackupNames)
{
    const struct {
        const char* name;
        int shown_by_default;
        int shown_with_backup;
        int shown_with_hidden;
    } cases[] = {
        {"plain", 1, 1, 1}, {"x.bak.txt", 1, 1, 1}, {"..", 1, 1, 1},  {"file~", 0, 1, 0},      {"~", 0, 1, 0},
        {"a.BAK", 0, 1, 0}, {".bak", 0, 0, 1},      {".", 0, 0, 1},   {".profile", 0, 0, 1},   {"...", 0, 0, 1},
        {".x~", 0, 0, 0},   {"xbak", 1, 1, 1},      {"~a", 1, 1, 1},  {"\xE6\x97\xA5.Bak", 0, 1, 0},
    };
    for (const auto& expected : cases) {
        table.ShowBackup = table.ShowHidden = 0;
        EXPECT_EQ(CheckFileName(expected.name), expected.shown_by_default) << expected.name;
        table.ShowBackup = 1;
        EXPECT_EQ(CheckFileName(expected.name), expected.shown_with_backup) << expected.name;
        table.ShowHidden = 1;
        EXPECT_EQ(CheckFileName(expected.name), 1) << expected.name;
        table.ShowBackup = 0;
        EXPECT_EQ(CheckFileName(expected.name), expected.shown_with_hidden) << expected.name;
    }
}

TEST_F(Paths, HomeThatLeavesNoRoomForItsSlashIsNone)
{
    home_variable.Set(std::string(kMaxPathBytes - 1, 'h').c_str());
    EXPECT_EQ(GetHomeDirectory().size(), kMaxPathBytes - 1);
    home_variable.Set(std::string(kMaxPathBytes, 'h').c_str());
    EXPECT_EQ(GetHomeDirectory(), "");
    home_variable.Set("");
    EXPECT_EQ(GetHomeDirectory(), "");
    home_variable.Set(nullptr);
    EXPECT_EQ(GetHomeDirectory(), "");
}

TEST_F(Paths, HistoryMovesWhatItKnows)
{
    const History abc = {"a", "b", "c"};
    const std::string longest(kMaxPathBytes, 'x');
    const struct {
        History before;
        std::string added;
        History after;
    } cases[] = {
        {{}, "a", {"a"}},
        {abc, "a", abc},
        {abc, "b", {"b", "a", "c"}},
        {abc, "c", {"c", "a", "b"}},
        {abc, "A", {"A", "a", "b", "c"}},
        {abc, "", abc},
        {abc, longest, {longest, "a", "b", "c"}},
        {abc, longest + "x", abc},
        {{"0", "1", "2", "3", "4", "5", "6", "7", "8"}, "n", {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8"}},
        {{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}, "n", {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8"}},
        // A longer one, which only the settings file can bring, loses its tenth too.
        {{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"},
         "n",
         {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8", "10", "11"}},
        {{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"},
         "11",
         {"11", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}},
    };
    for (const auto& expected : cases) {
        History list = expected.before;
        AddHistoryListS(list, expected.added);
        EXPECT_EQ(list, expected.after) << "after adding " << expected.added.substr(0, 20);
    }
}

TEST_F(Paths, DisplayTextIsAlwaysValid)
{
    EXPECT_EQ(DisplayText("\xE6\x97\xA5 a\n"), "\xE6\x97\xA5 a\n");
    EXPECT_EQ(DisplayText("a\xFFz"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(DisplayText(""), "");
    EXPECT_EQ(FormatText("%s-%d", std::string(5000, 'x').c_str(), 7), std::string(5000, 'x') + "-7");
}

}  // namespace
