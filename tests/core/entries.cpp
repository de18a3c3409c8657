// What the disk says about a path: typed paths and the types of entries.

#include "fnkraii.h"
#include "fnkutil.h"
#include "tabletest.h"

namespace {

class Entries : public TableTest {};

TEST_F(Entries, TypedPathIsJudgedAndMadeCanonical)
{
    files.Directory("user/docs");
    files.Directory("user/\xE6\x97\xA5");
    files.Directory("user/same");
    files.Directory("user/mad\xFE");
    files.Directory("other");
    files.File("user/file.txt");
    files.Link("user/good", "docs");
    files.Link("user/chain", "good");
    files.Link("user/absolute", files.At("user/docs/"));
    files.Link("user/dangling", "gone");
    files.Link("user/new", "same/new");
    files.Link("user/loop", "loop");
    files.Link("user/out", "..");
    files.Link("user/tofile", "file.txt");
    table.RootDir = table.CurrentDir = files.At("user/");
    constexpr const char* kAsTyped = nullptr;
    const struct {
        std::string typed;
        PathStatus status;
        const char* resolved;
    } cases[] = {
        {"docs", PATH_DIRECTORY, "user/docs"},
        {"docs/", PATH_DIRECTORY, "user/docs"},
        {".", PATH_DIRECTORY, "user"},
        {"./docs/../file.txt", PATH_FILE, "user/file.txt"},
        {files.At("user/docs/."), PATH_DIRECTORY, "user/docs"},
        {"new.txt", PATH_NEW, "user/new.txt"},
        {"docs/new dir/", PATH_NEW, "user/docs/new dir"},
        {"line\nfeed", PATH_NEW, "user/line\nfeed"},
        {"\xE6\x97\xA5/\xE6\x9C\xAC", PATH_NEW, "user/\xE6\x97\xA5/\xE6\x9C\xAC"},
        {"a//b", PATH_INVALID, kAsTyped},
        {"docs//", PATH_INVALID, kAsTyped},
        {"missing/new.txt", PATH_INVALID, kAsTyped},
        {"missing/../docs", PATH_INVALID, kAsTyped},
        {"..", PATH_OUTSIDE_ROOT, ""},
        {"../other", PATH_OUTSIDE_ROOT, "other"},
        {"/../..", PATH_OUTSIDE_ROOT, kAsTyped},
        {"out/other", PATH_OUTSIDE_ROOT, "other"},
        {"out/user/docs", PATH_DIRECTORY, "user/docs"},
        {"file.txt/x", PATH_NO_PARENT, "user/file.txt/x"},
        {"file.txt", PATH_FILE, "user/file.txt"},
        {"good", PATH_DIRECTORY, "user/docs"},
        {"chain/x", PATH_NEW, "user/docs/x"},
        {"absolute/../x", PATH_NEW, "user/x"},
        {"tofile", PATH_FILE, "user/file.txt"},
        {"dangling", PATH_INVALID, kAsTyped},
        {"new", PATH_NEW, "user/same/new"},
        {"loop", PATH_FILE, "user/loop"},
        {std::string(kMaxPathBytes + 1, 'x'), PATH_TOO_LONG, kAsTyped},
        {std::string(kMaxPathBytes + 1 - table.CurrentDir.size(), 'x'), PATH_TOO_LONG, kAsTyped},
        {"", PATH_EMPTY, kAsTyped},
    };
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
        for (const auto& expected : cases) {
            SCOPED_TRACE(std::string(locale) + ": " + expected.typed.substr(0, 100));
            std::string path = expected.typed;
            EXPECT_EQ(CheckFileExist(&path), expected.status);
            if (expected.resolved != kAsTyped) {
                EXPECT_EQ(path + (*expected.resolved == '\0' ? "/" : ""), files.At(expected.resolved));
            } else if (expected.status == PATH_TOO_LONG || expected.status == PATH_EMPTY) {
                EXPECT_EQ(path, expected.typed);
            }
        }
    }
    std::string broken = "mad\xFE";
    EXPECT_EQ(CheckFileExist(&broken), PATH_DIRECTORY);
    EXPECT_EQ(broken, files.At("user/mad\xFE"));
    EXPECT_EQ(CheckFileExist(nullptr), PATH_NULL);
}

// Not "docs" with a detour: the kernel finds nothing there either.
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
    files.Directory(deep);
    const std::size_t room = kMaxPathBytes - files.At(deep).size();
    files.Link("deep", deep);
    std::string path = "deep/" + std::string(room, 'x');
    EXPECT_EQ(CheckFileExist(&path), PATH_NEW);
    EXPECT_EQ(path.size(), kMaxPathBytes);
    path = "deep/" + std::string(room + 1, 'x');
    EXPECT_EQ(CheckFileExist(&path), PATH_TOO_LONG);
}

TEST_F(Entries, LinkToADirectoryIsNone)
{
    files.Directory("dir");
    files.File("file");
    files.Link("link", "dir");
    EXPECT_EQ(IsDirectory(files.At("dir")), 1);
    EXPECT_EQ(IsDirectory(files.At("dir/")), 1);
    EXPECT_EQ(IsDirectory(files.At("link")), 0);
    EXPECT_EQ(IsDirectory(files.At("file")), 0);
    EXPECT_EQ(IsDirectory(files.At("missing")), 0);
}

TEST_F(Entries, TypeOfWhatIsThere)
{
    files.Directory("Core");
    files.Directory("a/core");
    files.Directory("dir");
    files.File("file");
    files.File("run", "", 0755);
    files.File("core.txt", "", 0600);
    files.Node("fifo", S_IFIFO);
    files.Node("socket", S_IFSOCK);
    files.Link("to-file", "file");
    files.Link("to-dir", files.At("dir"));
    files.Link("dangling", "gone");
    files.Link("dangling-absolute", "/nowhere/to/be/found");
    files.Link("to-dangling", "dangling");
    files.Link("loop", "loop");
    // Detours so long that the path made of the target just fits, or just does not.
    const std::size_t room = kMaxPathBytes - files.Path().size();
    const auto detour = [](std::size_t length) { return "." + std::string(length - 5, '/') + "file"; };
    files.Link("long", detour(room));
    files.Link("too-long", detour(room + 1));
    files.Link("long-absolute", std::string(room - 4, '/') + files.At("file"));
    files.Link("too-long-absolute", std::string(room - 3, '/') + files.At("file"));
    const struct {
        const char* name;
        FileType type;
    } cases[] = {
        {"Core", FT_CORE},        {"a/core", FT_CORE},        {"dir", FT_DIRECTORY},
        {"file", FT_NORMAL},      {"run", FT_EXECUTE},        {"core.txt", FT_NORMAL},
        {"fifo", FT_FIFO},        {"socket", FT_SOCKET},      {"to-file", FT_SYMLINK},
        {"to-dir", FT_SYMLINK},   {"dangling", FT_STALLED_LINK}, {"dangling-absolute", FT_STALLED_LINK},
        {"to-dangling", FT_SYMLINK}, {"loop", FT_SYMLINK},    {"long", FT_SYMLINK},
        {"too-long", FT_STALLED_LINK}, {"long-absolute", FT_SYMLINK}, {"too-long-absolute", FT_STALLED_LINK},
    };
    const Descriptor directory(open(files.Path().c_str(), O_RDONLY | O_DIRECTORY));
    for (const auto& expected : cases) {
        const std::string name = expected.name;
        EXPECT_EQ(GetFileType(files.At(name), files.Status(name)), expected.type) << name;
        if (name.find('/') == std::string::npos) {
            EXPECT_EQ(GetFileTypeAt(directory.Get(), expected.name, files.Status(name)), expected.type) << name;
        }
    }
    struct stat device = {};
    ASSERT_EQ(lstat("/dev/null", &device), 0);
    EXPECT_EQ(GetFileType("/dev/null", device), FT_DEVICE);
}

// Only the one class of bits that applies counts, the super-user has no other rules, and only the
// primary group is asked for.
TEST_F(Entries, ExecutableToWhom)
{
    constexpr bool kOwn = true;
    constexpr bool kForeign = false;
    const struct {
        bool owner;
        bool group;
        mode_t mode;
        FileType type;
    } cases[] = {
        {kOwn, kOwn, 0100, FT_EXECUTE},       {kOwn, kOwn, 0611, FT_NORMAL},
        {kOwn, kForeign, 0701, FT_EXECUTE},   {kOwn, kForeign, 0601, FT_NORMAL},
        {kForeign, kOwn, 0744, FT_NORMAL},    {kForeign, kOwn, 0010, FT_EXECUTE},
        {kForeign, kOwn, 0701, FT_NORMAL},    {kForeign, kForeign, 0701, FT_EXECUTE},
        {kForeign, kForeign, 0776, FT_NORMAL}, {kForeign, kForeign, 0001, FT_EXECUTE},
    };
    for (const auto& expected : cases) {
        struct stat st = {};
        st.st_mode = S_IFREG | expected.mode;
        st.st_uid = getuid() + (expected.owner ? 0 : 1);
        st.st_gid = getgid() + (expected.group ? 0 : 1);
        EXPECT_EQ(GetFileType(files.At("x"), st), expected.type)
            << std::oct << expected.mode << " owner " << expected.owner << " group " << expected.group;
    }
}

}  // namespace
