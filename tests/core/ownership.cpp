// Changing modes and owners: exactly the file that was meant, and nothing lost on the way.

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include "child.h"
#include "engine/fnkfilemenu-property-change.h"
#include "scratch.h"

namespace {

class Ownership : public ::testing::Test {
protected:
    mode_t Mode(const std::string& name) const { return files.Status(name).st_mode & 07777; }

    ScratchDirectory files;
};

TEST_F(Ownership, AModeChangesOnWhatWasMeantAlone)
{
    files.File("file", "text", 0000);
    files.Directory("dir");
    files.Node("fifo", S_IFIFO);
    files.Node("socket", S_IFSOCK);
    files.Link("link", "file");
    for (const char* const name : {"file", "dir", "dir/", "fifo", "socket"}) {
        EXPECT_TRUE(ChangeMode(files.At(name), (files.Status(name).st_mode & S_IFMT) | 01750)) << name;
        EXPECT_EQ(Mode(name), 01750U) << name;
    }
    for (const auto& [name, type] :
         {std::pair("link", S_IFREG), {"link", S_IFLNK}, {"dir", S_IFREG}, {"gone", S_IFREG}}) {
        EXPECT_FALSE(ChangeMode(files.At(name), static_cast<mode_t>(type) | 0777))
            << name << " took the name meanwhile";
    }
    EXPECT_TRUE(Mode("file") == 01750 && Mode("dir") == 01750);
}

TEST_F(Ownership, ANewOwnerGetsNoSetIdBitsAndALinkIsGivenItself)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the super-user gives files away";
    }
    files.File("program", "", 06755);
    files.Link("link", "program");
    EXPECT_TRUE(ChangeOwner(files.At("program"), 12345, 54321));
    EXPECT_EQ(Mode("program"), 0755U);
    EXPECT_TRUE(ChangeOwner(files.At("link"), 1, 2));
    EXPECT_TRUE(files.Status("link").st_uid == 1 && files.Status("link").st_gid == 2);
    EXPECT_TRUE(files.Status("program").st_uid == 12345 && files.Status("program").st_gid == 54321);
    EXPECT_FALSE(ChangeOwner(files.At("gone"), 1, 2));
}

TEST_F(Ownership, GroupsAreOfferedOnceTheFilesOwnFirst)
{
    const auto names_of = [](std::initializer_list<gid_t> groups) {
        History names;
        for (const gid_t group : groups) {
            names.push_back(FindGroupName(group));
        }
        return names;
    };
    ASSERT_EQ(FindGroupName(0), "root");
    EXPECT_EQ(FindGroupName(54321), "");
    EXPECT_EQ(FindGroupId("root"), gid_t(0));
    EXPECT_EQ(FindGroupId(""), std::nullopt);
    EXPECT_EQ(FindUserName(0), "root");
    EXPECT_EQ(FindUserId("no such user"), std::nullopt);
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the super-user can choose groups to be in";
    }
    EXPECT_GT(ListOfferedGroups(54321).size(), 10U) << "the super-user gets them all";
    EXPECT_EQ(RunInChild([&] {
                  const gid_t groups[] = {12, 54321, 4, 3};
                  Require(setgroups(std::size(groups), groups) == 0 && setgid(2) == 0 && setuid(65534) == 0, "setuid");
                  EXPECT_EQ(ListOfferedGroups(4), names_of({4, 2, 3, 12}));
                  EXPECT_EQ(ListOfferedGroups(54321), names_of({2, 3, 4, 12}));
              }),
              CHILD_PASSED);
}

}  // namespace
