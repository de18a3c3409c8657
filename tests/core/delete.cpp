// Deleting: what goes, what stays, who is asked, on a real file system.

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "child.h"
#include "enginetest.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-sync.h"
#include "core/fnkutil.h"

namespace {

class Delete : public EngineTest {
protected:
    /// As the command does, each item in turn; the result of the last.
    Result DeleteAll(const std::vector<std::string>& paths)
    {
        Result answer = RESULT_CANCEL;
        Result result = RESULT_DONE;
        for (const std::string& path : paths) {
            result = RemoveFile(path, &answer);
            if (result == RESULT_CANCEL) {
                break;
            }
            answer = answer == RESULT_OK ? RESULT_CANCEL : answer;
        }
        FlushChanges();
        return result;
    }
    void MakeTree(const std::string& name) const
    {
        files.File(name + "/a", "1");
        files.File(name + "/sub/b", "2");
        files.File(name + "/sub/deep/c", "3");
        files.Directory(name + "/empty");
    }
};

TEST_F(Delete, EverythingInATreeGoesAndNothingElse)
{
    MakeTree("outside");
    MakeTree("tree");
    files.Link("tree/link-to-directory", files.At("outside"));
    files.Link("tree/link-to-file", files.At("outside/a"));
    files.Link("tree/dangling", "/nowhere");
    files.Node("tree/pipe", S_IFIFO);
    files.File("tree/new\nline and \xFF bytes");
    answers.to_deletes = {RESULT_OK};
    EXPECT_EQ(DeleteAll({files.At("tree/")}), RESULT_DONE);
    EXPECT_FALSE(Exists("tree"));
    EXPECT_EQ(answers.asked, Asked{"Delete - " + files.At("tree/")});
    EXPECT_EQ(answers.steps, 8) << "one for everything but directories";
    EXPECT_EQ(files.Names("outside"), (std::vector<std::string>{"a", "empty", "sub"}));
}

TEST_F(Delete, LinksAndEmptyDirectoriesAreNotAskedAbout)
{
    MakeTree("outside");
    files.Link("link", "outside");
    files.Directory("empty");
    files.File("file");
    EXPECT_EQ(DeleteAll({files.At("link"), files.At("empty/"), files.At("file"), files.At("never-there"),
                         files.At("no-such-directory/file")}),
              RESULT_DONE);
    EXPECT_EQ(answers.asked, Asked());
    EXPECT_EQ(files.Names(), std::vector<std::string>{"outside"});
    EXPECT_EQ(files.Names("outside").size(), 3U);
}

TEST_F(Delete, AnAnswerHoldsForItsItemOrForTheRest)
{
    const auto paths = [this] {
        for (const char* const name : {"one", "two", "three"}) {
            MakeTree(name);
        }
        return std::vector<std::string>{files.At("one/"), files.At("two/"), files.At("three/")};
    };
    const std::tuple<std::vector<Result>, std::vector<std::string>, std::size_t> cases[] = {
        {{RESULT_OK}, {}, 3},
        {{RESULT_YES_ALL}, {}, 1},
        {{RESULT_CANCEL, RESULT_OK}, {"one"}, 3},
        {{RESULT_OK, RESULT_CANCEL, RESULT_YES_ALL}, {"two"}, 3},
        {{RESULT_OK, RESULT_ABORT}, {"three", "two"}, 2},
    };
    for (const auto& [script, left, questions] : cases) {
        answers = Answers();
        answers.to_deletes = script;
        DeleteAll(paths());
        EXPECT_EQ(files.Names(), left);
        EXPECT_EQ(answers.asked.size(), questions);
        for (const std::string& name : left) {
            EXPECT_TRUE(Exists(name + "/sub/deep/c")) << "what is declined stays whole";
        }
    }
}

TEST_F(Delete, WhatCannotGoKeepsTheDirectoriesAroundItAndSaysSoOnce)
{
    // As a user whom permissions stop, whoever runs this.
    ASSERT_EQ(RunInChild([this] {
                  BecomeOrdinaryUser(files);
                  MakeTree("tree");
                  files.File("tree/sub/locked/stays");
                  files.SetMode("tree/sub/locked", 0555);
                  answers.to_deletes = {RESULT_OK};
                  answers.to_messages = {RESULT_OK};
                  Result answer = RESULT_CANCEL;
                  EXPECT_EQ(RemoveFile(files.At("tree/"), &answer), RESULT_OK);
                  EXPECT_EQ(files.Names("tree"), std::vector<std::string>{"sub"});
                  EXPECT_EQ(files.Names("tree/sub"), std::vector<std::string>{"locked"});
                  EXPECT_EQ(answers.asked, (Asked{"Delete - " + files.At("tree/"),
                                                  "Error: Cannot delete file " + files.At("tree/sub/locked/stays") +
                                                      "\ncause:Permission denied [Skip]"}));
                  EXPECT_EQ(answers.steps, 4) << "what is skipped is a step too";

                  // Cancel at the report stops everything.
                  MakeTree("tree/sub/locked-not");
                  answers = Answers();
                  answers.to_deletes = {RESULT_YES_ALL};
                  answers.to_messages = {RESULT_CANCEL};
                  answer = RESULT_CANCEL;
                  files.File("last");
                  EXPECT_EQ(RemoveFile(files.At("tree/sub/locked/"), &answer), RESULT_CANCEL);
                  EXPECT_TRUE(Exists("tree/sub/locked/stays"));

                  // A directory that cannot be listed stops the command without a word.
                  files.SetMode("tree/sub/locked", 0);
                  answers = Answers();
                  answer = RESULT_YES_ALL;
                  EXPECT_EQ(RemoveFile(files.At("tree/sub/locked/"), &answer), RESULT_CANCEL);
                  EXPECT_EQ(answers.asked, Asked());

                  // What cannot be seen is not taken for gone.
                  answers.to_messages = {RESULT_OK};
                  EXPECT_EQ(RemoveFile(files.At("tree/sub/locked/stays"), &answer), RESULT_OK);
                  EXPECT_EQ(answers.asked.size(), 1U);
                  files.SetMode("tree/sub/locked", 0755);
              }),
              CHILD_PASSED);
}

TEST_F(Delete, CancelStopsAtTheNextStep)
{
    for (int i = 0; i < 20; ++i) {
        files.File("tree/" + std::to_string(i));
    }
    answers.to_deletes = {RESULT_YES_ALL};
    answers.cancel_at_step = 5;
    EXPECT_EQ(DeleteAll({files.At("tree/")}), RESULT_CANCEL);
    EXPECT_EQ(files.Names("tree").size(), 15U);
}

TEST_F(Delete, ADirectorySwappedForALinkUnderWayHarmsNothingOutside)
{
    // At every step of the walk in turn, each directory of the tree is exchanged for a link to a
    // directory that holds the same names.
    for (int swap_at = 1; swap_at <= 4; ++swap_at) {
        for (const std::string name : {"tree", "tree/sub", "tree/sub/deep"}) {
            std::filesystem::remove_all(files.At("tree"));
            std::filesystem::remove_all(files.At("aside"));
            std::filesystem::remove_all(files.At("outside"));
            MakeTree("tree");
            files.File("tree/sub/deep/d");
            MakeTree("outside");
            MakeTree("outside/sub/deep");
            files.File("outside/sub/deep/d");
            const auto count = [this] {
                const std::filesystem::recursive_directory_iterator walk(files.At("outside"));
                return std::distance(begin(walk), end(walk));
            };
            const auto before = count();
            answers = Answers();
            answers.to_deletes = {RESULT_YES_ALL};
            answers.to_messages = {RESULT_OK};
            answers.at_step = [&] {
                if (answers.steps == swap_at && Exists(name)) {
                    std::filesystem::rename(files.At(name), files.At("aside"));
                    files.Link(name, files.At("outside"));
                }
            };
            DeleteAll({files.At("tree/")});
            EXPECT_EQ(count(), before) << name << " at step " << swap_at;
        }
    }
}

TEST_F(Delete, PathsThatGrowTooLongAreReportedAndStay)
{
    std::string path = files.Path();
    int directory = open(path.c_str(), O_PATH | O_DIRECTORY);
    const std::string name(200, 'd');
    while (path.size() + name.size() + 1 <= kMaxPathBytes) {
        ASSERT_EQ(mkdirat(directory, name.c_str(), 0755), 0);
        const int below = openat(directory, name.c_str(), O_PATH | O_DIRECTORY);
        close(directory);
        directory = below;
        path += name + "/";
    }
    const std::string file(200, 'f');
    ASSERT_EQ(mkdirat(directory, name.c_str(), 0755), 0);
    ASSERT_EQ(mknodat(directory, file.c_str(), S_IFREG | 0644, 0), 0);
    close(directory);
    answers.to_deletes = {RESULT_OK};
    answers.to_messages = {RESULT_OK, RESULT_OK};
    EXPECT_EQ(DeleteAll({files.At(name + "/")}), RESULT_OK);
    ASSERT_EQ(answers.asked.size(), 3U);
    for (const std::size_t report : {1, 2}) {
        EXPECT_TRUE(answers.asked[report].ends_with("cause:File name too long [Skip]")) << answers.asked[report];
    }
    EXPECT_EQ(answers.steps, 1) << "the file";
    EXPECT_EQ(IsDirectory(path), 1);
}

}  // namespace
