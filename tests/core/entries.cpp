// What the disk says about a path: typed paths and the types of entries.

#include "core/fnkraii.h"
#include "core/fnkutil.h"
#include "tabletest.h"

namespace {

class Entries : public TableTest {};

TEST_F(Entries, TypedPathIsJudgedAndMadeCanonical)
{
    for (const char* const name : {"user/docs", "user/\xE6\x97\xA5", "user/same", "user/mad\xFE", "other"}) {
        files.Directory(name);
    }
    files.File("user/file.txt");
    const std::pair<const char*, const char*> links[] = {{"good", "docs"},      {"chain", "good"}, {"dangling", "gone"},
                                                         {"new", "same/new"},   {"loop", "loop"},  {"out", ".."},
                                                         {"tofile", "file.txt"}};
    for (const auto& [name, target] : links) {
        files.Link(std::string("user/") + name, target);
    }
    files.Link("user/absolute", files.At("user/docs/"));
    table.RootDir = table.CurrentDir = files.At("user/");
    using Case = std::tuple<const char*, PathStatus, const char*>;
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        for (const auto& [typed, status, resolved] :
             {Case("docs", PATH_DIRECTORY, "user/docs"), Case(".", PATH_DIRECTORY, "user"),
              Case("./docs/../file.txt", PATH_FILE, "user/file.txt"), Case("docs/a b/", PATH_NEW, "user/docs/a b"),
              Case("line\nfeed", PATH_NEW, "user/line\nfeed"), Case("mad\xFE", PATH_DIRECTORY, "user/mad\xFE"),
              Case("\xE6\x97\xA5/\xE6\x9C\xAC", PATH_NEW, "user/\xE6\x97\xA5/\xE6\x9C\xAC"),
              Case("../other", PATH_OUTSIDE_ROOT, "other"), Case("out/other", PATH_OUTSIDE_ROOT, "other"),
              Case("out/user/docs", PATH_DIRECTORY, "user/docs"), Case("file.txt/x", PATH_NO_PARENT, "user/file.txt/x"),
              Case("chain", PATH_DIRECTORY, "user/docs"), Case("chain/x", PATH_NEW, "user/docs/x"),
              Case("absolute/../x", PATH_NEW, "user/x"), Case("tofile", PATH_FILE, "user/file.txt"),
              Case("new", PATH_NEW, "user/same/new"), Case("loop/x", PATH_FILE, "user/loop")}) {
            std::string path = typed;
            EXPECT_EQ(CheckFileExist(&path), status) << typed << " in " << locale;
            EXPECT_EQ(path, files.At(resolved)) << typed << " in " << locale;
        }
        for (std::string path : {"file.txt/..", "file.txt/../docs", "file.txt/./../docs"}) {
            EXPECT_EQ(CheckFileExist(&path), PATH_NO_PARENT) << "the kernel finds nothing behind a file either";
        }
        for (std::string path :
             {std::string(256, 'x'), "docs/" + std::string(256, 'x'), std::string(256, 'x') + "/a"}) {
            EXPECT_EQ(CheckFileExist(&path), PATH_TOO_LONG) << path << " in " << locale;
        }
        for (std::string path : {"a//b", "docs//", "missing/new.txt", "missing/../docs", "dangling", "no/no"}) {
            EXPECT_EQ(CheckFileExist(&path), PATH_INVALID) << path << " in " << locale;
        }
    }
    std::string path = files.At("user/docs/.");
    EXPECT_EQ(CheckFileExist(&path), PATH_DIRECTORY);
    EXPECT_EQ(path, files.At("user/docs"));
    path = "/../..";
    EXPECT_EQ(CheckFileExist(&path), PATH_OUTSIDE_ROOT);
    path = "";
    EXPECT_EQ(CheckFileExist(&path), PATH_EMPTY);
    EXPECT_EQ(CheckFileExist(nullptr), PATH_NULL);
}

TEST_F(Entries, TypedPathIsToldFromTheRootAlsoWhenThatIsALink)
{
    files.Directory("real/docs");
    files.Directory("real-too");
    files.Link("home", "real");
    table.RootDir = table.CurrentDir = files.At("home/");
    for (const auto& [typed, status, resolved] : {std::tuple(std::string("docs"), PATH_DIRECTORY, "home/docs"),
                                                  {"new", PATH_NEW, "home/new"},
                                                  {files.At("home"), PATH_DIRECTORY, "home/"},
                                                  {files.At("real/docs/"), PATH_DIRECTORY, "home/docs"},
                                                  {files.At("real-too"), PATH_OUTSIDE_ROOT, "real-too"},
                                                  {"../x", PATH_OUTSIDE_ROOT, "x"}}) {
        std::string path = typed;
        EXPECT_EQ(CheckFileExist(&path), status) << typed;
        EXPECT_EQ(path, files.At(resolved));
    }
}

TEST_F(Entries, LongestPathsAreStillJudged)
{
    std::string deep;
    while (files.At(deep).size() + 200 < kMaxPathBytes) {
        deep += std::string(99, 'd') + "/";
    }
    files.Link("deep", files.Directory(deep));
    const std::size_t room = kMaxPathBytes - files.At(deep).size();
    const std::pair<std::string, PathStatus> cases[] = {{"deep/" + std::string(room, 'x'), PATH_NEW},
                                                        {"deep/" + std::string(room + 1, 'x'), PATH_TOO_LONG},
                                                        {deep + std::string(room + 1, 'x'), PATH_TOO_LONG},
                                                        {std::string(kMaxPathBytes + 1, '/'), PATH_TOO_LONG}};
    for (const auto& [typed, status] : cases) {
        std::string path = typed;
        EXPECT_EQ(CheckFileExist(&path), status) << typed.size();
        EXPECT_EQ(path.size() == kMaxPathBytes, status == PATH_NEW) << path.size();
    }
}

TEST_F(Entries, TypeOfWhatIsThere)
{
    files.Directory("Core");
    files.Directory("dir");
    files.File("file");
    files.File("run", "", 0755);
    files.File("core.txt", "", 0600);
    files.Node("fifo", S_IFIFO);
    files.Node("socket", S_IFSOCK);
    using Link = std::pair<std::string, std::string>;
    for (const auto& [name, target] :
         {Link("to-file", "file"), Link("to-dir", files.At("dir")), Link("dangling", "gone"),
          Link("to-dangling", "dangling"), Link("loop", "loop")}) {
        files.Link(name, target);
    }
    using Types = std::pair<FileType, std::vector<const char*>>;
    for (const auto& [type, names] :
         {Types(FT_CORE, {"Core"}), Types(FT_DIRECTORY, {"dir"}), Types(FT_NORMAL, {"file", "core.txt"}),
          Types(FT_EXECUTE, {"run"}), Types(FT_FIFO, {"fifo"}), Types(FT_SOCKET, {"socket"}),
          Types(FT_SYMLINK, {"to-file", "to-dir", "to-dangling", "loop"}), Types(FT_STALLED_LINK, {"dangling"}),
          Types(FT_DEVICE, {"/dev/null"})}) {
        for (const char* const name : names) {
            const std::string path = *name == '/' ? name : files.At(name);
            struct stat st = {};
            ASSERT_EQ(lstat(path.c_str(), &st), 0);
            EXPECT_EQ(GetFileType(path, st), type) << name;
            EXPECT_EQ(IsDirectory(path), S_ISDIR(st.st_mode) ? 1 : 0) << name;
        }
    }
}

// Only one class of bits counts, for the super-user as well.
TEST_F(Entries, ExecutableToWhom)
{
    // Whether the user owns it, and is in its group.
    using Case = std::tuple<bool, bool, mode_t, FileType>;
    for (const auto& [owner, group, mode, type] :
         {Case(true, true, 0100, FT_EXECUTE), Case(true, true, 0611, FT_NORMAL), Case(false, true, 0744, FT_NORMAL),
          Case(false, true, 0010, FT_EXECUTE), Case(false, true, 0701, FT_NORMAL), Case(false, false, 0701, FT_EXECUTE),
          Case(false, false, 0776, FT_NORMAL)}) {
        struct stat st = {};
        st.st_mode = S_IFREG | mode;
        st.st_uid = getuid() + (owner ? 0 : 1);
        st.st_gid = getgid() + (group ? 0 : 1);
        EXPECT_EQ(GetFileType(files.At("x"), st), type) << std::oct << mode << " owner " << owner << " group " << group;
    }
}

}  // namespace
