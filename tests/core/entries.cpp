// What the disk says about a path: typed paths and the types of entries.

#include "fnkraii.h"
#include "fnkutil.h"
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
    // What is typed, the verdict, and what it becomes if that is told.
    const std::tuple<const char*, PathStatus, const char*> cases[] = {
        {"docs", PATH_DIRECTORY, "user/docs"},
        {"docs/", PATH_DIRECTORY, "user/docs"},
        {".", PATH_DIRECTORY, "user"},
        {"./docs/../file.txt", PATH_FILE, "user/file.txt"},
        {"new.txt", PATH_NEW, "user/new.txt"},
        {"docs/a b/", PATH_NEW, "user/docs/a b"},
        {"line\nfeed", PATH_NEW, "user/line\nfeed"},
        {"\xE6\x97\xA5/\xE6\x9C\xAC", PATH_NEW, "user/\xE6\x97\xA5/\xE6\x9C\xAC"},
        {"mad\xFE", PATH_DIRECTORY, "user/mad\xFE"},
        {"a//b", PATH_INVALID, ""},
        {"docs//", PATH_INVALID, ""},
        {"missing/new.txt", PATH_INVALID, ""},
        {"missing/../docs", PATH_INVALID, ""},
        {"/../..", PATH_OUTSIDE_ROOT, ""},
        {"../other", PATH_OUTSIDE_ROOT, "other"},
        {"out/other", PATH_OUTSIDE_ROOT, "other"},
        {"out/user/docs", PATH_DIRECTORY, "user/docs"},
        {"file.txt/x", PATH_NO_PARENT, "user/file.txt/x"},
        {"file.txt", PATH_FILE, "user/file.txt"},
        {"good", PATH_DIRECTORY, "user/docs"},
        {"chain/x", PATH_NEW, "user/docs/x"},
        {"absolute/../x", PATH_NEW, "user/x"},
        {"tofile", PATH_FILE, "user/file.txt"},
        {"dangling", PATH_INVALID, ""},
        {"new", PATH_NEW, "user/same/new"},
        {"loop", PATH_FILE, "user/loop"},
        {"", PATH_EMPTY, ""}};
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        for (const auto& [typed, status, resolved] : cases) {
            std::string path = typed;
            EXPECT_EQ(CheckFileExist(&path), status) << typed << " in " << locale;
            if (*resolved != '\0') {
                EXPECT_EQ(path, files.At(resolved)) << typed << " in " << locale;
            }
        }
    }
    std::string path = files.At("user/docs/.");
    EXPECT_EQ(CheckFileExist(&path), PATH_DIRECTORY);
    EXPECT_EQ(path, files.At("user/docs"));
    EXPECT_EQ(CheckFileExist(nullptr), PATH_NULL);
}

// The kernel finds nothing behind a file either.
TEST_F(Entries, TypedPathDoesNotClimbOutOfAFile)
{
    files.Directory("docs");
    files.File("file.txt");
    for (const char* const typed : {"file.txt/..", "file.txt/../docs", "file.txt/./../docs"}) {
        std::string path = typed;
        EXPECT_EQ(CheckFileExist(&path), PATH_NO_PARENT) << typed << " became " << path;
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
    const std::tuple<std::string, PathStatus, std::size_t> cases[] = {
        {"deep/" + std::string(room, 'x'), PATH_NEW, kMaxPathBytes},
        {"deep/" + std::string(room + 1, 'x'), PATH_TOO_LONG, room + 6},
        {deep + std::string(room + 1, 'x'), PATH_TOO_LONG, deep.size() + room + 1},
        {std::string(kMaxPathBytes + 1, '/'), PATH_TOO_LONG, kMaxPathBytes + 1}};
    for (const auto& [typed, status, size] : cases) {
        std::string path = typed;
        EXPECT_EQ(CheckFileExist(&path), status);
        EXPECT_EQ(path.size(), size);
    }
}

TEST_F(Entries, TypeOfWhatIsThere)
{
    for (const char* const name : {"Core", "a/core", "dir"}) {
        files.Directory(name);
    }
    files.File("file");
    files.File("run", "", 0755);
    files.File("core.txt", "", 0600);
    files.Node("fifo", S_IFIFO);
    files.Node("socket", S_IFSOCK);
    files.Link("to-file", "file");
    files.Link("to-dir", files.At("dir"));
    files.Link("dangling", "gone");
    files.Link("gone-far", "/nowhere/to/be/found");
    files.Link("to-dangling", "dangling");
    files.Link("loop", "loop");
    // Detours so long that the path made of the target just fits, or just does not.
    const std::size_t room = kMaxPathBytes - files.Path().size();
    files.Link("long", "." + std::string(room - 5, '/') + "file");
    files.Link("too-long", "." + std::string(room - 4, '/') + "file");
    files.Link("long-way", std::string(room - 4, '/') + files.At("file"));
    files.Link("too-long-way", std::string(room - 3, '/') + files.At("file"));
    const std::pair<const char*, FileType> cases[] = {{"Core", FT_CORE},
                                                      {"a/core", FT_CORE},
                                                      {"dir", FT_DIRECTORY},
                                                      {"file", FT_NORMAL},
                                                      {"run", FT_EXECUTE},
                                                      {"core.txt", FT_NORMAL},
                                                      {"fifo", FT_FIFO},
                                                      {"socket", FT_SOCKET},
                                                      {"to-file", FT_SYMLINK},
                                                      {"to-dir", FT_SYMLINK},
                                                      {"dangling", FT_STALLED_LINK},
                                                      {"gone-far", FT_STALLED_LINK},
                                                      {"to-dangling", FT_SYMLINK},
                                                      {"loop", FT_SYMLINK},
                                                      {"long", FT_SYMLINK},
                                                      {"too-long", FT_STALLED_LINK},
                                                      {"long-way", FT_SYMLINK},
                                                      {"too-long-way", FT_STALLED_LINK},
                                                      {"/dev/null", FT_DEVICE}};
    const Descriptor directory(open(files.Path().c_str(), O_RDONLY | O_DIRECTORY));
    for (const auto& [name, type] : cases) {
        const std::string path = *name == '/' ? name : files.At(name);
        struct stat st = {};
        ASSERT_EQ(lstat(path.c_str(), &st), 0);
        EXPECT_EQ(GetFileType(path, st), type) << name;
        if (std::string(name) != "a/core") {
            EXPECT_EQ(GetFileTypeAt(directory.Get(), name, st), type) << name;
        }
        EXPECT_EQ(IsDirectory(path), S_ISDIR(st.st_mode) ? 1 : 0) << name;
    }
}

// Only the one class of bits that applies counts, also for the super-user.
TEST_F(Entries, ExecutableToWhom)
{
    // Whether the user owns it, whether it is of the user's group.
    const std::tuple<bool, bool, mode_t, FileType> cases[] = {
        {true, true, 0100, FT_EXECUTE}, {true, true, 0611, FT_NORMAL},    {true, false, 0701, FT_EXECUTE},
        {true, false, 0601, FT_NORMAL}, {false, true, 0744, FT_NORMAL},   {false, true, 0010, FT_EXECUTE},
        {false, true, 0701, FT_NORMAL}, {false, false, 0701, FT_EXECUTE}, {false, false, 0776, FT_NORMAL}};
    for (const auto& [owner, group, mode, type] : cases) {
        struct stat st = {};
        st.st_mode = S_IFREG | mode;
        st.st_uid = getuid() + (owner ? 0 : 1);
        st.st_gid = getgid() + (group ? 0 : 1);
        EXPECT_EQ(GetFileType(files.At("x"), st), type) << std::oct << mode << " owner " << owner << " group " << group;
    }
}

}  // namespace
