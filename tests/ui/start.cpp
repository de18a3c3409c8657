// The command line, the first directories, and where the catalogues are.

#include "app/fnktable-start.h"
#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "language.h"

namespace {

using Start = TableTest;

TEST_F(Start, OnlyTheFirstArgumentIsAnOption)
{
    const std::string dir = files.Directory("dir");
    const std::string file = files.File("file");
    files.Link("link", "dir");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(files.Path());
    const std::tuple<std::vector<std::string>, std::string, std::string> cases[] = {
        {{}, home.Path(), ""},
        {{"--root", dir}, "/", dir},
        {{"--home", dir + "/", "x"}, dir + "/", "x"},
        {{"--home", dir + "/missing", dir}, home.Path(), dir},
        {{"--home", file}, home.Path(), ""},
        {{"x", "--root", dir}, home.Path(), ""},
        {{"--home", "dir/.", "dir"}, dir + "/", dir + "/"},
        {{"--home", "link", "link"}, home.Path(), "link"}};
    for (auto [arguments, root, start] : cases) {
        arguments.insert(arguments.begin(), "fennick");
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        const CommandLine parsed = ParseCommandLine(static_cast<int>(argv.size()) - 1, argv.data());
        EXPECT_EQ(parsed.root, root) << testing::PrintToString(arguments);
        EXPECT_EQ(parsed.start, start) << testing::PrintToString(arguments);
    }
    std::filesystem::current_path(before);
}

TEST_F(Start, StartsInsideTheRootOrAtIt)
{
    const std::string dir = files.Directory("root/dir");
    files.Link("root/link", "dir");
    const std::pair<std::string, std::string> cases[] = {
        {dir, dir + "/"}, {"", ""}, {files.At("root/link"), ""}, {files.Path(), ""}};
    for (const auto& [start, expected] : cases) {
        table.StartDir.clear();
        SetStartDirectories({false, files.At("root/"), start});
        EXPECT_EQ(table.StartDir, expected) << start;
        EXPECT_EQ(table.RootDir, files.At("root/"));
    }
    table.LocationDirHistory = {"/a/", files.At("root/")};
    SeedHistories();
    EXPECT_EQ(table.LocationDirHistory, (History{files.At("root/"), "/a/"}));
    EXPECT_EQ(table.DirHistory, History{files.At("root/")});
    EXPECT_EQ(table.FilterHistory, History{"*"});
}

TEST_F(Start, CataloguesAreFoundBesideTheProgramUnlessTheyAreInstalled)
{
    const std::string installed = FindCatalogues("");
    const std::string program = files.Directory("bin") + "/";
    // A directory for other programs or languages is no reason to look there.
    files.File("bin/locale/eo/LC_MESSAGES/other.mo");
    EXPECT_EQ(FindCatalogues(program), installed);
    if (FindCatalogues(FENNICK_CATALOGUES "/../") == installed) {
        GTEST_SKIP() << "there are catalogues in " << installed;
    }
    for (const char* const place : {"bin/locale", "share/locale"}) {
        files.File(std::string(place) + "/eo/LC_MESSAGES/fennick.mo");
        EXPECT_EQ(FindCatalogues(program), files.At(place));
    }
}

}  // namespace
