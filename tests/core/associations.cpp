// The associations: how their file is read, and which program opens a file.

#include "core/fnkfiles-associations.h"

#include <map>
#include <sstream>
#include <utility>

#include "core/fnkutil-launch.h"
#include "tabletest.h"

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;

class Associations : public TableTest {
protected:
    static Entries Read(const char* section)
    {
        std::vector<AppInfo> list;
        EXPECT_EQ(ReadAppInfo(section, &list), 0);
        Entries entries;
        for (const AppInfo& entry : list) {
            entries.emplace_back(entry.Key, entry.Value);
        }
        return entries;
    }
    Entries Read(const std::string& text, const char* section)
    {
        home.File(".extension", text);
        return Read(section);
    }
};

TEST_F(Associations, ASectionIsLinesUpToAnEmptyOne)
{
    const std::string long_key(255, 'k');
    const std::string long_value(2047 - 2, 'v');
    const std::pair<std::string, Entries> cases[] = {
        {"[Extension]\ntxt=emacs\nTXT=vi\n", {{"txt", "emacs"}, {"TXT", "vi"}}},
        {"[Extension]\na=1\n\nb=2\n", {{"a", "1"}}},
        {"[Extension]\n\na=1\n", {}},
        {"[Extension]\na=1\n[Application]\nb=2\n", {{"a", "1"}}},
        {"[Extension]\na=1\n[b=2\nc=3\n", {{"a", "1"}}},
        {"text\n\n[Other]\nx=y\n# see [Extension] \na=1", {{"a", "1"}}},
        {"[Extension]\nno separator\nsh=a=b\n=v\nk=\n", {{"sh", "a=b"}, {"", "v"}, {"k", ""}}},
        {"[Extension]\nhtml = netscape \n", {{"html ", " netscape "}}},
        {"[Extension]\n" + long_key + "=v\n" + long_key + "k=v\na=1\n", {{long_key, "v"}, {"a", "1"}}},
        {"[Extension]\na=" + long_value + "\na=" + long_value + "v\nb=2\n", {{"a", long_value}, {"b", "2"}}},
        {"[Extension]\n\xFF=\xFE\xFD\n", {{"\xFF", "\xFE\xFD"}}},
        {"[Extension]", {}},
        {"[Extension]\n", {}},
        {"[extension]\na=1\n", {}},
        {"", {}},
    };
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        for (const auto& [text, expected] : cases) {
            // In the older encodings the byte in front of a separator takes it along.
            if (text.find('\xFF') == std::string::npos || locale == kUtf8Locale) {
                EXPECT_EQ(Read(text, "[Extension]"), expected) << text;
            }
        }
    }
}

TEST_F(Associations, WhatIsMissingLeavesTheListAsItWas)
{
    std::vector<AppInfo> list = {{"old", "entry"}};
    EXPECT_EQ(ReadAppInfo(nullptr, &list), -1);
    EXPECT_EQ(ReadAppInfo("[Extension]", nullptr), -1);
    EXPECT_EQ(ReadAppInfo("[Extension]", &list), 0) << "no file";
    home.File(".extension", "[Extension]\na=1\n");
    EXPECT_EQ(ReadAppInfo("[Application]", &list), 0) << "no section";
    home_variable.Set(nullptr);
    EXPECT_EQ(ReadAppInfo("[Extension]", &list), 0) << "no home";
    ASSERT_EQ(list.size(), 1U);
    home_variable.Set(home.Path().c_str());
    EXPECT_EQ(ReadAppInfo("[Extension]", &list), 0);
    EXPECT_EQ(list.size(), 2U) << "appended";
    FreeAppInfo(list);
    EXPECT_TRUE(list.empty());
}

/// Whoever copies the example gets every entry that it shows.
TEST_F(Associations, TheExampleSaysWhatItMeans)
{
    std::ifstream stream(FENNICK_DATA "extension.example");
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    std::map<std::string, Entries> shown;
    std::istringstream lines(text);
    std::string section;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('[')) {
            section = line;
        } else if (!line.empty() && !line.starts_with('#')) {
            const std::size_t separator = line.find('=');
            ASSERT_NE(separator, std::string::npos) << line;
            shown[section].emplace_back(line.substr(0, separator), line.substr(separator + 1));
        }
    }
    ASSERT_EQ(shown.size(), 2U);
    for (const auto& [name, entries] : shown) {
        EXPECT_EQ(Read(text, name.c_str()), entries) << name;
    }
}

TEST_F(Associations, TheTextBehindTheLastDotChoosesTheProgram)
{
    table.ExtensionList = {{"txt", "emacs"},  {"TXT", "vi"}, {"gz", "unpack"}, {"", "bare"},
                           {"d/README", "x"}, {"\xFF", "y"}, {"sh ", "z"}};
    SetLocale(kUtf8Locale);
    const std::pair<std::string, const char*> cases[] = {{"/a.TxT", "emacs"},     {"/a.tar.gz", "unpack"},
                                                         {"/README", nullptr},    {"/a.", "bare"},
                                                         {"/conf.d/README", "x"}, {"/.gz", "unpack"},
                                                         {"/a.\xFF", "y"},        {"/a.sh", nullptr},
                                                         {"/a.txt~", nullptr},    {"", nullptr}};
    for (const auto& [path, program] : cases) {
        const std::string* const found = GetCompatibleAP(path);
        EXPECT_EQ(found != nullptr ? found->c_str() : std::string("none"), program != nullptr ? program : "none")
            << path;
    }
    table.ExtensionList.clear();
    EXPECT_EQ(GetCompatibleAP("/a.txt"), nullptr);
}

}  // namespace
