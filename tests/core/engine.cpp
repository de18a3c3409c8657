// Copying, moving and deleting: what arrives, what stays, who is asked. Failing calls are the
// oracle's (tests/oracle).

#include "child.h"
#include "enginetest.h"

namespace {

using Engine = StoryTest;

const Tree kTree = {{"t/plain", "0640 one"}, {"t/program", "04755 #!"}, {"t/sub", "02710 /"},
                    {"t/sub/leaf", "two"},   {"t/hollow", "01777 /"},   {"t/link", "-> sub"},
                    {"t/empty", "0600 "},    {"t/pipe", "0620 |"},      {"t/sub/new\nline \xFF", "x"}};

Tree With(const Tree& more, Tree tree = kTree)
{
    tree.insert(more.begin(), more.end());
    return tree;
}

/// kTree under another name.
Tree Moved(const std::string& to, const Tree& more = {})
{
    Tree tree = more;
    for (const auto& [path, text] : kTree) {
        tree[to + path.substr(1)] = text;
    }
    return tree;
}

Tree Copied(const std::string& to)
{
    Tree tree = Moved(to);
    tree[to + "/pipe"] = "0620 ";
    return tree;
}

TEST_F(Engine, Trees)
{
    Tree copied = Copied("to/t");
    copied["to"] = kGone;
    Tree gone;
    for (const auto& [path, text] : kTree) {
        gone[path] = kGone;
    }
    const Tree moved = With(Moved("to/t", {{"to", kGone}}), gone);
    Tell({Story("into a directory", With({{"to", "/"}}), "copy t/ > to", "", RESULT_DONE, 7, {}, copied),
          Story("to a new name", kTree, "copy t/ > as/yet/new", "", RESULT_DONE, 7, {}, Copied("as/yet/new")),
          Story("a move is one step", With({{"to", "/"}}), "move t/ > to", "", RESULT_DONE, 1, {}, moved),
          Story("a delete asks once, and follows no link", With({{"t/out", "-> ../to"}, {"to/kept", "x"}}), "delete t/",
                "y y", RESULT_DONE, 8, {"Delete - t/"}, With({{"t/out", kGone}}, gone))});
}

TEST_F(Engine, DirectoriesMerge)
{
    const Tree before = {{"from/d", "0750 /"},
                         {"from/d/same", "new"},
                         {"from/d/sub/own", "new"},
                         {"to/d/same", "old"},
                         {"to/d/sub/other", "x"}};
    const Tree merged = {{"to/d", "0750 /"}, {"to/d/same", "new"}, {"to/d/sub/own", "new"}};
    const Tree emptied =
        With({{"from", "/"}, {"from/d", kGone}, {"from/d/same", kGone}, {"from/d/sub/own", kGone}}, merged);
    Tell({Story("copy", before, "copy from/d/ > to", "y", RESULT_DONE, 2, {Question("to/d")}, merged),
          Story("move", before, "move from/d/ > to", "y", RESULT_DONE, 2, {Question("to/d")}, emptied)});
}

TEST_F(Engine, OverwritingIsAskedAboutOnce)
{
    const Tree before = {{"a", "new"}, {"b", "new"}, {"c", "new"}, {"to/a", "old"}, {"to/b", "old"}};
    const Tree copied = {{"to/a", "new"}, {"to/b", "new"}};
    Tell({Story("No keeps the old, and asks again", before, "copy a b > to", "n", RESULT_DONE, 2,
                {Question("to/a"), Question("to/b")}, {}),
          Story("Yes holds for the rest", before, "copy a b > to", "y", RESULT_DONE, 2, {Question("to/a")}, copied),
          Story("No, then Yes", before, "move a b > to", "ny", RESULT_DONE, 2, {Question("to/a"), Question("to/b")},
                {{"b", kGone}, {"to/b", "new"}}),
          Story("what meets nothing counts as Yes", before, "copy c b > to", "n", RESULT_DONE, 2, {},
                {{"to/c", "new"}, {"to/b", "new"}}),
          Story("switched off", before, "copy a b > to !", "n", RESULT_DONE, 2, {}, copied)});
}

TEST_F(Engine, NothingGoesOntoOrIntoItself)
{
    const Tree before = With({{"file", "x"}, {"alias", "-> t"}, {"here", "-> ."}, {"t2", "/"}});
    std::vector<Story> stories;
    for (const std::string verb : {"copy ", "move "}) {
        for (const std::string command :
             {"file > file !", "file > . !", "file > here/file !", "t/ > t/ !", "t/ > . !", "t/ > t2/.. !"}) {
            stories.push_back(Story("onto itself", before, verb + command, "", RESULT_DONE, 1, {}, {}));
        }
        for (const std::string to : {"t", "t/sub", "t/new", "alias/sub", "alias/new", "t2/../t/x"}) {
            stories.push_back(Story("into itself", before, verb + "t/ > " + to, "y", RESULT_DONE, 1, {Inside()}, {}));
        }
    }
    Tree beside = Copied("t2/t");
    beside["t2"] = kGone;
    stories.push_back(Story("a name that begins alike", before, "copy t/ > t2", "y", RESULT_DONE, 7, {}, beside));
    Tell(stories);
}

TEST_F(Engine, FilesAndLinksReplaceEachOther)
{
    const Tree before = {{"new", "0604 new"},
                         {"new-link", "-> text"},
                         {"outside", "x"},
                         {"to/link", "-> ../outside"},
                         {"to/file", "old"}};
    std::vector<Story> stories;
    for (const std::string source : {"new", "new-link"}) {
        for (const std::string target : {"to/link", "to/file"}) {
            const std::string command = source + " > " + target + " !";
            stories.push_back(
                Story("copy", before, "copy " + command, "", RESULT_DONE, 1, {}, {{target, before.at(source)}}));
            stories.push_back(Story("move", before, "move " + command, "", RESULT_DONE, 1, {},
                                    {{target, before.at(source)}, {source, kGone}}));
        }
    }
    Tell(stories);
    EXPECT_EQ(files.Contents("outside"), "x");
}

TEST_F(Engine, WhatIsInTheWay)
{
    const Tree clash = {{"from/x", "new"}, {"from/y", "new"}, {"to/from/x/kept", "old"}};
    const Tree one_clash = {{"from/x", "new"}, {"to/from/x/kept", "old"}};
    const Tree linked = {
        {"from/d/x", "new"}, {"elsewhere/x", "old"}, {"to/from/d", "-> ../../elsewhere"}, {"way", "-> elsewhere"}};
    const std::string not_empty = Failure("delete to/from/x", "Directory not empty");
    Tell({Story("an empty directory goes for a file", {{"from/x", "new"}, {"to/from/x", "/"}}, "copy from/ > to !", "",
                RESULT_DONE, 1, {}, {{"to/from/x", "new"}}),
          Story("a full one stays, and a copy goes on", clash, "copy from/ > to !", "y", RESULT_DONE, 2, {not_empty},
                {{"to/from/y", "new"}}),
          Story("a move stops", one_clash, "move from/ > to !", "y", RESULT_OK, 1, {not_empty}, {}),
          Story("Cancel at the report stops a copy", one_clash, "copy from/ > to !", "n", RESULT_CANCEL, 1, {not_empty},
                {}),
          Story("a link stays unless that is agreed", linked, "copy from/ > to !", "n", RESULT_DONE, 1,
                {Question("to/from/d")}, {}),
          Story("with questions switched off too", linked, "copy from/ > way !", "n", RESULT_DONE, 1, {Question("way")},
                {}),
          Story("and what it leads to stays", linked, "copy from/ > to !", "y", RESULT_DONE, 1, {Question("to/from/d")},
                {{"to/from/d", kGone}, {"to/from/d/x", "new"}}),
          Story("on the way a link is followed", linked, "copy from/ > way/new", "n", RESULT_DONE, 1, {},
                {{"elsewhere/new/d/x", "new"}}),
          Story("one question is enough", linked, "copy from/ > way", "y", RESULT_DONE, 1, {Question("way")},
                {{"way", kGone}, {"way/d/x", "new"}}),
          Story("a file goes for a directory", {{"from/x", "new"}, {"file", "old"}}, "copy from/ > file/below", "n",
                RESULT_DONE, 1, {}, {{"file", kGone}, {"file/below/x", "new"}}),
          Story("a file that the directory itself replaces", {{"from/x", "new"}, {"file", "old"}}, "copy from/ > file",
                "y", RESULT_DONE, 1, {Question("file")}, {{"file", kGone}, {"file/x", "new"}})});
}

TEST_F(Engine, WhatIsMissing)
{
    const Tree before = {{"file", "x"}};
    const std::string none = "No such file or directory";
    Tell({Story("the source", before, "copy gone file/below > to", "y", RESULT_DONE, 2,
                {"Error: gone does not exist.", "Error: file/below does not exist."}, {}),
          Story("the directory to copy to", before, "copy file > no/such", "y", RESULT_DONE, 1,
                {Failure("copy no/such", none)}, {}),
          Story("a directory on the way", before, "move file > file/below", "y", RESULT_DONE, 1,
                {Failure("move file/below", "Not a directory")}, {}),
          Story("a \"/\" says that it is a directory", before, "copy file > gone/", "y", RESULT_DONE, 1,
                {Failure("copy gone/", none)}, {}),
          Story("and so it does of a file", before, "move file > file/", "y", RESULT_DONE, 1,
                {Failure("move file/", "Not a directory")}, {}),
          Story("the user cancels", before, "copy file file > no/such", "n", RESULT_CANCEL, 0,
                {Failure("copy no/such", none)}, {}),
          Story("what is to be deleted", before, "delete gone gone/too", "", RESULT_DONE, 0, {}, {})});
    int flag = 0;
    EXPECT_EQ(CopyFile("", files.At("file"), &flag), RESULT_NO_ARGUMENT);
    EXPECT_EQ(MoveFile(files.At("to"), files.At("file"), nullptr), RESULT_NO_ARGUMENT);
}

TEST_F(Engine, ACommandDoesNotOverwriteWhatItHasMade)
{
    // As where case is ignored, the name of the second leads to the copy of the first.
    const Tree before = {{"a/x", "1"}, {"b/x", "2"}, {"to/x", "old"}};
    Tell({Story("the second is reported", before, "copy a/x b/x > to !", "y", RESULT_DONE, 2,
                {Failure("copy to/x", "File exists")}, {{"to/x", "1"}}),
          Story("and stays if it moves", before, "move a/x b/x > to !", "n", RESULT_CANCEL, 1,
                {Failure("move to/x", "File exists")}, {{"to/x", "1"}, {"a", "/"}, {"a/x", kGone}})});
}

TEST_F(Engine, HardLinks)
{
    const Tree before = {{"one", "x"}, {"two", "= one"}, {"Two", "= one"}, {"d/two", "= one"}};
    Tell({Story("a move leaves one name less", before, "move one > two !", "", RESULT_DONE, 1, {}, {{"one", kGone}}),
          Story("in another directory too", before, "move two > d !", "", RESULT_DONE, 1, {}, {{"two", kGone}}),
          Story("and if only case differs", before, "move two > Two !", "", RESULT_DONE, 1, {}, {{"two", kGone}}),
          Story("a copy keeps both", before, "copy one > two !", "", RESULT_DONE, 1, {}, {{"two", "x"}})});
    EXPECT_NE(files.Status("one").st_ino, files.Status("two").st_ino);
}

TEST_F(Engine, DeletingAsksForEachFullDirectory)
{
    const Tree before = {{"a/x", "1"}, {"b/x/y", "2"}, {"c/x", "3"}, {"empty", "/"}, {"link", "-> a"}};
    const Tree none = {{"a/x", kGone}, {"b/x/y", kGone}, {"c/x", kGone}};
    const std::string all = "delete a/ b/ c/";
    const std::vector<std::string> asked = {"Delete - a/", "Delete - b/", "Delete - c/"};
    const std::vector<std::string> two = {"Delete - a/", "Delete - b/"};
    Tell({Story("Yes", before, all, "y y", RESULT_DONE, 3, asked, none),
          Story("Yes to all", before, all, "y Y", RESULT_DONE, 3, {"Delete - a/"}, none),
          Story("No, then Yes", before, all, "y ny", RESULT_DONE, 2, asked, {{"b/x/y", kGone}, {"c/x", kGone}}),
          Story("Yes, No, Yes to all", before, all, "y ynY", RESULT_DONE, 2, asked, {{"a/x", kGone}, {"c/x", kGone}}),
          Story("No for the last", before, "delete a/", "y n", RESULT_OK, 0, {"Delete - a/"}, {}),
          Story("Cancel", before, all, "y yc", RESULT_CANCEL, 1, two, {{"a/x", kGone}}),
          Story("no question for the rest", before, "delete empty/ link", "n c", RESULT_DONE, 1, {},
                {{"empty", kGone}, {"link", kGone}})});
}

TEST_F(Engine, CancelIsHeardAtTheNextStep)
{
    Make({{"t/a", "1"}, {"t/b", "2"}, {"t/c", "3"}, {"t/d", "4"}, {"to/t/full/x", "/"}, {"full", "x"}});
    for (const auto& [command, cancel_at, left] : {std::tuple("copy t/ > new", 2, "new"), {"delete t/", 2, "t"}}) {
        Answer("y");
        answers.cancel_at_step = cancel_at;
        EXPECT_EQ(Run(command), RESULT_CANCEL);
        EXPECT_EQ(files.Names(left).size(), 2U) << command;
    }
    Answer("y");
    answers.cancel_at_step = 1;
    EXPECT_EQ(Run("copy full t/a > to/t !"), RESULT_CANCEL) << "at a refused item too";
    EXPECT_FALSE(Show().contains("to/t/a"));
}

TEST_F(Engine, ARootBehindALinkIsADirectory)
{
    table.RootDir = files.At("root/");
    Tell({Story("copy", {{"x", "1"}, {"d/y", "2"}, {"real", "/"}, {"root", "-> real"}}, "copy x d/ > root", "",
                RESULT_DONE, 2, {}, {{"real", kGone}, {"real/x", "1"}, {"real/d/y", "2"}}),
          Story("move", {{"d/y", "2"}, {"real/d/z", "3"}, {"root", "-> real"}}, "move d/ > root/", "y", RESULT_DONE, 1,
                {Question("root/d")}, {{"d/y", kGone}, {"real/d/y", "2"}})});
}

TEST_F(Engine, WhereRightsAreMissing)
{
    const Tree before = {{"from", "/"},
                         {"from/secret", "00 x"},
                         {"from/secret-but-empty", "00 "},
                         {"from/locked", "00 /"},
                         {"from/locked/x", "x"},
                         {"from/open", "x"},
                         {"to/from/secret", "old"},
                         {"fixed", "0555 /"},
                         {"fixed/open", "old"},
                         {"fixed/sub/x", "x"},
                         {"t/a/b", "1"},
                         {"t/locked", "0555 /"},
                         {"t/locked/x", "x"},
                         {"shut", "00 /"},
                         {"shut/x", "x"},
                         {"half", "0644 /"},
                         {"half/x", "x"}};
    const std::string denied = "Permission denied";
    const auto tell = [&] {
        BecomeOrdinaryUser(files);
        Tell({Story("what cannot be read is skipped", before, "copy from/ > to !", "y", RESULT_DONE, 4,
                    {Failure("copy from/locked/", denied), Failure("copy from/secret", denied)},
                    {{"to/from/secret-but-empty", "00 "}, {"to/from/locked", "00 /"}, {"to/from/open", "x"}}),
              Story("no file is replaced in a fixed directory", before, "copy from/open > fixed !", "y", RESULT_OK, 1,
                    {Failure("delete fixed/open", denied)}, {}),
              Story("nor by a move", before, "move from/open > fixed !", "y", RESULT_OK, 1,
                    {Failure("delete fixed/open", denied)}, {}),
              Story("and none is made", before, "copy from/open > fixed/new", "n", RESULT_CANCEL, 0,
                    {Failure("copy fixed/new", denied)}, {}),
              Story("nor moved there or away", before, "move fixed/sub/ > new", "y", RESULT_DONE, 1,
                    {Failure("move new", denied)}, {}),
              Story("a copy of a fixed directory is one", {{"d", "0555 /"}, {"d/x", "x"}}, "copy d/ > copy", "y",
                    RESULT_DONE, 1, {Failure("copy copy/x", denied)}, {{"copy", "0555 /"}}),
              Story("what cannot go keeps what is around it", before, "delete t/", "y y", RESULT_OK, 2,
                    {"Delete - t/", Failure("delete t/locked/x", denied)}, {{"t/a/b", kGone}}),
              Story("and Cancel stops there", before, "delete t/locked/ from/open", "n Y", RESULT_CANCEL, 0,
                    {"Delete - t/locked/", Failure("delete t/locked/x", denied)}, {}),
              Story("what cannot be listed stays", before, "delete shut/ from/open", "y Y", RESULT_DONE, 1,
                    {Failure("delete shut/", denied)}, {{"from/open", kGone}}),
              Story("what cannot be seen is not taken for gone", before, "delete shut/x", "y Y", RESULT_OK, 1,
                    {Failure("delete shut/x", denied)}, {}),
              Story("into a directory that cannot be searched", before, "copy t/a/ > half", "y", RESULT_DONE, 1,
                    {Failure("copy half/a", denied)}, {}),
              Story("what is not seen is not asked about", before, "copy from/open > half", "y", RESULT_DONE, 1,
                    {Failure("copy half/open", denied)}, {}),
              Story("a directory that is not seen is not replaced", before, "copy t/a/ > shut/new/a", "y", RESULT_DONE,
                    1, {Failure("copy shut/new/a", denied)}, {})});
        EmptyDisk(files.Path());
    };
    EXPECT_EQ(RunInChild(tell), CHILD_PASSED);
}

}  // namespace
