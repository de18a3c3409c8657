// From the command line to the first directories.

#include "app/fnktable-start.h"

#include "core/fnkutil.h"
#include "tabletest.h"

namespace {

class Start : public TableTest {};

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
    using Case = std::tuple<std::vector<std::string>, std::string, std::string>;
    for (const auto& [arguments, root, start] :
         {Case({}, home.Path(), ""), Case({dir}, home.Path(), ""), Case({"--root"}, "/", ""),
          Case({"--root", dir}, "/", dir), Case({"--home", dir}, dir + "/", ""),
          Case({"--home", dir + "/", "x"}, dir + "/", "x"), Case({"--home", dir + "/missing", dir}, home.Path(), dir),
          Case({"--home", files.File("file")}, home.Path(), ""), Case({"--home", ""}, home.Path(), ""),
          Case({"--home", too_long}, home.Path(), ""), Case({"--home"}, home.Path(), ""),
          Case({"--Root", dir}, home.Path(), ""), Case({"--root=" + dir}, home.Path(), ""),
          Case({"x", "--root", dir}, home.Path(), "")}) {
        const CommandLine parsed = Parse(arguments);
        EXPECT_EQ(parsed.root, root) << testing::PrintToString(arguments);
        EXPECT_EQ(parsed.start, start) << testing::PrintToString(arguments);
        EXPECT_FALSE(parsed.is_version_requested);
    }
    EXPECT_TRUE(Parse({"--version"}).is_version_requested);
    EXPECT_FALSE(Parse({dir, "--version"}).is_version_requested);
    home_variable.Set(nullptr);
    EXPECT_EQ(Parse({}).root, "/");
}

TEST_F(Start, RelativeDirectoriesCountFromWhereOneIs)
{
    files.Directory("top/dir");
    files.Link("top/link", "dir");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(files.At("top"));
    const CommandLine parsed = Parse({"--home", "../top/.", "dir"});
    const CommandLine linked = Parse({"--home", "link", "link"});
    std::filesystem::current_path(before);
    EXPECT_EQ(parsed.root, files.At("top/"));
    EXPECT_EQ(parsed.start, files.At("top/dir/"));
    // No more than a link named from the top.
    EXPECT_EQ(linked.root, home.Path());
    EXPECT_EQ(linked.start, "link");
}

TEST_F(Start, StartsInsideTheRootOrAtIt)
{
    const std::string dir = files.Directory("root/dir");
    files.Link("root/link", "dir");
    using Case = std::pair<std::string, std::string>;
    for (const auto& [start, expected] :
         {Case(dir, dir + "/"), Case(dir + "/", dir + "/"), Case("", ""), Case(files.At("root/missing"), ""),
          Case(files.File("root/file"), ""), Case(files.At("root/link"), ""), Case(files.Path(), ""),
          Case(dir + std::string(kMaxPathBytes, '/'), "")}) {
        table.StartDir.clear();
        SetStartDirectories({false, files.At("root/"), start});
        EXPECT_EQ(table.StartDir, expected) << start.substr(0, 100);
        EXPECT_EQ(table.RootDir, files.At("root/"));
    }
}

TEST_F(Start, HistoriesOfferSomething)
{
    table.RootDir = "/r/";
    table.LocationDirHistory = {"/a/", "/r/"};
    SeedHistories();
    EXPECT_EQ(table.LocationDirHistory, (History{"/r/", "/a/"}));
    EXPECT_EQ(table.DirHistory, History{"/r/"});
    EXPECT_EQ(table.FilterHistory, History{"*"});
    table.DirHistory = table.FilterHistory = {"x"};
    SeedHistories();
    EXPECT_EQ(table.DirHistory, History{"x"});
    EXPECT_EQ(table.FilterHistory, History{"x"});
}

}  // namespace
