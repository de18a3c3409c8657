// The command line, the first directories, and the texts in every language.

#include "core/fnkstring.h"
#include "app/fnktable-start.h"
#include "core/fnkutil.h"
#include "language.h"

namespace {

using Start = TableTest;

CommandLine Parse(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "fennick");
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    return ParseCommandLine(static_cast<int>(arguments.size()), argv.data());
}

TEST_F(Start, OnlyTheFirstArgumentIsAnOption)
{
    const std::string dir = files.Directory("dir");
    const std::string too_long = files.Path() + std::string(kMaxPathBytes, '/');
    files.Link("link", "dir");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(files.Path());
    using Case = std::tuple<std::vector<std::string>, std::string, std::string>;
    for (const auto& [arguments, root, start] :
         {Case({}, home.Path(), ""), Case({dir}, home.Path(), ""), Case({"--root"}, "/", ""),
          Case({"--root", dir}, "/", dir), Case({"--home", dir}, dir + "/", ""),
          Case({"--home", dir + "/", "x"}, dir + "/", "x"), Case({"--home", dir + "/missing", dir}, home.Path(), dir),
          Case({"--home", files.File("file")}, home.Path(), ""), Case({"--home", ""}, home.Path(), ""),
          Case({"--home", too_long}, home.Path(), ""), Case({"--home"}, home.Path(), ""),
          Case({"--Root", dir}, home.Path(), ""), Case({"x", "--root", dir}, home.Path(), ""),
          Case({"--home", "dir/.", "dir"}, dir + "/", dir + "/"),
          Case({"--home", "link", "link"}, home.Path(), "link")}) {
        const CommandLine parsed = Parse(arguments);
        EXPECT_EQ(parsed.root, root) << testing::PrintToString(arguments);
        EXPECT_EQ(parsed.start, start) << testing::PrintToString(arguments);
        EXPECT_FALSE(parsed.is_version_requested);
    }
    std::filesystem::current_path(before);
    EXPECT_TRUE(Parse({"--version"}).is_version_requested);
    home_variable.Set(nullptr);
    EXPECT_EQ(Parse({}).root, "/");
}

TEST_F(Start, StartsInsideTheRootOrAtIt)
{
    const std::string dir = files.Directory("root/dir");
    files.Link("root/link", "dir");
    using Case = std::pair<std::string, std::string>;
    for (const auto& [start, expected] :
         {Case(dir, dir + "/"), Case("", ""), Case(files.At("root/missing"), ""), Case(files.File("root/file"), ""),
          Case(files.At("root/link"), ""), Case(files.Path(), ""), Case(dir + std::string(kMaxPathBytes, '/'), "")}) {
        table.StartDir.clear();
        SetStartDirectories({false, files.At("root/"), start});
        EXPECT_EQ(table.StartDir, expected) << start.substr(0, 100);
        EXPECT_EQ(table.RootDir, files.At("root/"));
    }
    table.LocationDirHistory = {"/a/", files.At("root/")};
    SeedHistories();
    EXPECT_EQ(table.LocationDirHistory, (History{files.At("root/"), "/a/"}));
    EXPECT_EQ(table.DirHistory, History{files.At("root/")});
    EXPECT_EQ(table.FilterHistory, History{"*"});
    table.DirHistory = table.FilterHistory = {"x"};
    SeedHistories();
    EXPECT_EQ(table.DirHistory, History{"x"});
    EXPECT_EQ(table.FilterHistory, History{"x"});
}

TEST_F(Start, TextsByNumberInEveryLanguage)
{
    SetLocale(kUtf8Locale);
    std::vector<std::string> english;
    for (const char* const language : kLanguages) {
        const ScopedLanguage spoken(language);
        std::vector<std::string> texts;
        for (int i = 0; i < std::max(kMenuEntryCount, kToolSlotCount); ++i) {
            texts.push_back(i < kMenuEntryCount ? GetMenuTipsString(i) : "");
            texts.push_back(i < kToolSlotCount ? GetToolTipsString(i) : "");
        }
        english = english.empty() ? texts : english;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(texts[i].empty(), english[i].empty()) << language << ": " << english[i];
            EXPECT_TRUE(texts[i].empty() || language == kLanguages[0] || texts[i] != english[i])
                << language << texts[i];
        }
        for (int id = 0; id < kColumnKinds; ++id) {
            EXPECT_EQ(GetListStringColumn(GetListColumnString(id).c_str()), id) << language;
        }
    }
    EXPECT_EQ(GetMenuTipsString(1) + GetToolTipsString(3), "") << "separators";
    for (const int outside : {-1, 1000000}) {
        EXPECT_EQ(GetMenuTipsString(outside) + GetToolTipsString(outside) + GetListColumnString(outside), "");
    }
    EXPECT_EQ(GetListStringColumn(""), kColumnKinds);
    EXPECT_EQ(GetListStringColumn(nullptr), 0);
}

TEST_F(Start, CataloguesAreFoundBesideTheProgramUnlessTheyAreInstalled)
{
    const std::string installed = FindCatalogues("");
    EXPECT_TRUE(installed.ends_with("/share/locale")) << installed;
    const std::string program = files.Directory("bin") + "/";
    // Directories of other languages, or for them, are no reason to look there.
    files.File("bin/locale/eo/LC_MESSAGES/other.mo");
    EXPECT_EQ(FindCatalogues(program), installed);
    if (FindCatalogues(FENNICK_CATALOGUES "/../") == installed) {
        GTEST_SKIP() << "there are catalogues in " << installed;
    }
    files.File("bin/locale/eo/LC_MESSAGES/fennick.mo");
    EXPECT_EQ(FindCatalogues(program), files.At("bin/locale"));
    files.File("share/locale/eo/LC_MESSAGES/fennick.mo");
    EXPECT_EQ(FindCatalogues(program), files.At("share/locale"));
}

}  // namespace
