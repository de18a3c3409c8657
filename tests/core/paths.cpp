// Stepping through text, splitting paths, names and sizes: nothing here touches the disk.

#include <array>
#include <cstdint>

#include "core/fnkfiles-place.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "tabletest.h"

namespace {

class Paths : public TableTest {};

TEST_F(Paths, CharNextStepsByTwoByteRuleOrUtf8)
{
    constexpr int kNone = -1;
    // Where the delimiter is found by the two-byte rule and in UTF-8.
    using Case = std::tuple<const char*, char, int, int>;
    const auto position = [](const char* text, char delimiter) {
        const char* const found = CharNext(text, delimiter);
        return found == nullptr ? kNone : found - text;
    };
    for (const auto& [text, delimiter, two_byte, utf8] :
         {Case("", '/', kNone, kNone), Case("/", '/', 0, 0), Case("\xB0/", '/', kNone, 1),
          Case("\xB0", '/', kNone, kNone), Case("\xE6\x97\xA5/", '/', 3, 3), Case("\xE6\x97\xA5/\xB0", '/', kNone, 3),
          Case("\xE6\x97/", '/', 2, 2), Case("\xE6/", '/', kNone, 1), Case("\xF0\x9F\x98\x80/", '/', 4, 4),
          Case("", '\0', kNone, kNone), Case("a", '\0', kNone, kNone), Case("ab", '\0', 1, 1),
          Case("\xE6\x97\xA5x", '\0', 3, 3), Case("\xB0x", '\0', kNone, 1), Case("\xB0xy", '\0', 2, 1)}) {
        SetLocale(kTwoByteLocale);
        EXPECT_EQ(position(text, delimiter), two_byte) << text;
        SetLocale(kUtf8Locale);
        EXPECT_EQ(position(text, delimiter), utf8) << text;
    }
    EXPECT_EQ(CharNext(nullptr, '/'), nullptr);
}

TEST_F(Paths, ParentAndLastComponent)
{
    using Case = std::tuple<const char*, const char*, const char*>;
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        for (const auto& [path, parent, last] :
             {Case("/usr/local/bin", "/usr/local/", "bin"), Case("/usr/local/bin/", "/usr/local/", "bin"),
              Case("/usr", "/", "usr"), Case("/usr/", "/", "usr"), Case("/", "/", ""), Case("", "", ""),
              Case("/\xE6\x97\xA5/\xE6\x9C\xAC/", "/\xE6\x97\xA5/", "\xE6\x9C\xAC")}) {
            EXPECT_EQ(GetParentDirectory(path), parent) << path << " in " << locale;
            EXPECT_EQ(GetLastPath(path), last) << path << " in " << locale;
        }
        EXPECT_EQ(WithoutSlash("/") + WithoutSlash("/a/") + WithoutSlash("/b"), "//a/b");
        EXPECT_EQ(GetLastPath("/\x83/x"), locale == kUtf8Locale ? "x" : "\x83/x");
    }
}

TEST_F(Paths, SizesAreShownRounded)
{
    using Case = std::pair<std::uint64_t, const char*>;
    for (const auto& [size, text] :
         {Case(0, "0KByte"), Case(1, "0.1KByte"), Case(153, "0.1KByte"), Case(154, "0.2KByte"), Case(512, "0.5KByte"),
          Case(972, "0.9KByte"), Case(973, "1KByte"), Case(1536, "1.5KByte"), Case(1048064, "1023.5KByte"),
          Case(1048575, "1024KByte"), Case(1048576, "1MByte"), Case(4294967295, "4096MByte"),
          Case(5368709120, "5120MByte"), Case(1099512152064, "1048576.5MByte"),
          Case(UINT64_MAX, "17592186044416MByte")}) {
        EXPECT_EQ(ConvertSize(size), text) << size;
    }
    EXPECT_EQ(DisplayText("a\xFF\xE2\x80\xAEtxt.\xE2\x81\xA9\xE2\x80\xAF\xE2"),
              "a\uFFFD[U+202E]txt.[U+2069]\u202F\uFFFD");
}

TEST_F(Paths, HiddenAndBackupNames)
{
    // Shown with neither flag, with ShowBackup, with ShowHidden, with both.
    using Case = std::pair<const char*, std::array<int, 4>>;
    for (const auto& [name, shown] :
         {Case("plain", {1, 1, 1, 1}), Case("x.bak.txt", {1, 1, 1, 1}), Case("..", {1, 1, 1, 1}),
          Case("file~", {0, 1, 0, 1}), Case("~a", {1, 1, 1, 1}), Case("a.BAK", {0, 1, 0, 1}),
          Case(".bak", {0, 0, 1, 1}), Case(".", {0, 0, 1, 1}), Case(".x~", {0, 0, 0, 1}), Case("xbak", {1, 1, 1, 1})}) {
        for (const int flags : {0, 1, 2, 3}) {
            table.ShowBackup = flags & 1;
            table.ShowHidden = flags >> 1;
            EXPECT_EQ(CheckFileName(name), shown[static_cast<std::size_t>(flags)]) << name << " " << flags;
        }
    }
}

TEST_F(Paths, HistoryMovesWhatItKnows)
{
    const History abc = {"a", "b", "c"};
    const History ten = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    // The settings file can bring more than ten.
    const History twelve = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "x", "y"};
    const std::string longest(kMaxPathBytes, 'x');
    using Case = std::tuple<History, std::string, History>;
    for (const auto& [before, added, after] :
         {Case({}, "a", {"a"}), Case(abc, "a", abc), Case(abc, "b", {"b", "a", "c"}),
          Case(abc, "A", {"A", "a", "b", "c"}), Case(abc, "", abc), Case(abc, longest, {longest, "a", "b", "c"}),
          Case(abc, longest + "x", abc), Case(ten, "n", {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8"}),
          Case(ten, "9", {"9", "0", "1", "2", "3", "4", "5", "6", "7", "8"}),
          Case(twelve, "n", {"n", "0", "1", "2", "3", "4", "5", "6", "7", "8", "x", "y"}),
          Case(twelve, "y", {"y", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "x"})}) {
        History list = before;
        AddHistoryListS(list, added);
        EXPECT_EQ(list, after) << "after adding " << added.substr(0, 20);
    }
}

}  // namespace
