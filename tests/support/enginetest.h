#pragma once
// The fixture of tests of the file engine: short notations for trees, commands and answers.

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "answers.h"
#include "disk.h"
#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-sync.h"
#include "faults.h"
#include "tabletest.h"

/// By path: the content of a file, "/" for a directory, "-> text" for a link, "|" for a pipe, and
/// "= path" for a hard link; in front a mode like "0640 " unless it is 0644, or 0755 for a directory.
using Tree = std::map<std::string, std::string>;
constexpr const char* kGone = "(gone)";

class EngineTest : public TableTest {
protected:
    /// What was asked and reported since the last look, and the number of steps.
    using Said = std::pair<std::vector<std::string>, int>;

    EngineTest()
    {
        answers = Answers();
        faults.spares_disk = true;
    }
    ~EngineTest() override
    {
        faults.Disarm();
        faults.at_call = nullptr;
        faults.is_old_file_system = false;
        FlushChanges();
    }

    void Make(const Tree& tree) const
    {
        Disk disk;
        for (const auto& [path, text] : tree) {
            const bool has_mode = text.starts_with('0') && text.find(' ') != std::string::npos;
            const std::string what = has_mode ? text.substr(text.find(' ') + 1) : text;
            const mode_t type = what == "/"               ? S_IFDIR
                                : what == "|"             ? S_IFIFO
                                : what.starts_with("-> ") ? S_IFLNK
                                                          : S_IFREG;
            const mode_t plain = type == S_IFDIR ? 0755 : 0644;
            const mode_t mode = has_mode ? static_cast<mode_t>(std::stoul(text, nullptr, 8)) : plain;
            disk[path] = {type, mode, type == S_IFREG ? what : what.substr(std::min<std::size_t>(3, what.size()))};
        }
        for (auto& [path, object] : disk) {
            if (object.content.starts_with("= ")) {
                Object& other = disk.at(object.content.substr(2));
                other.inode = reinterpret_cast<ino_t>(&other);
                object = other;
            }
        }
        WriteDisk(files.Path(), disk);
    }
    /// Leaves out plain directories with something in them.
    Tree Show(const std::string& below = "") const
    {
        Tree tree;
        for (const auto& [path, object] : ReadDisk(files.At(below))) {
            const mode_t plain = object.IsDirectory() ? 0755 : 0644;
            char mode[16] = "";
            std::snprintf(mode, sizeof mode, "0%o ", object.mode);
            const std::string front = object.mode == plain ? "" : mode;
            tree[path] = object.IsLink()          ? "-> " + object.content
                         : object.IsDirectory()   ? front + "/"
                         : object.type == S_IFREG ? front + object.content
                                                  : front + "|";
            const auto above =
                path.find('/') != std::string::npos ? tree.find(path.substr(0, path.rfind('/'))) : tree.end();
            if (above != tree.end() && above->second == "/") {
                tree.erase(above);
            }
        }
        return tree;
    }
    static Tree Change(Tree tree, const Tree& changes)
    {
        for (const auto& [path, text] : changes) {
            text == kGone ? static_cast<void>(tree.erase(path)) : static_cast<void>(tree[path] = text);
        }
        return tree;
    }

    /// "copy SOURCE... > DESTINATION", "move ...", or "delete PATH...", as the program's commands run
    /// them. A "!" at the end: overwriting is not asked about.
    Result Run(const std::string& command)
    {
        std::istringstream words(command);
        std::string verb;
        std::vector<std::string> items;
        words >> verb;
        for (std::string word; words >> word;) {
            items.push_back(word == "." ? "" : word);
        }
        table.ConfilmOverwrite = items.back() == "!" ? 0 : 1;
        items.erase(std::remove(items.begin(), items.end(), "!"), items.end());
        const std::string destination = files.At(items.back());
        const std::size_t count = verb == "delete" ? items.size() : items.size() - 2;
        int flag = 0;
        Result answer = RESULT_CANCEL;
        Result result = RESULT_DONE;
        for (std::size_t i = 0; i < count && result != RESULT_CANCEL; ++i) {
            const std::string path = files.At(items[i]);
            result = verb == "copy"   ? CopyFile(destination, path, &flag)
                     : verb == "move" ? MoveFile(destination, path, &flag)
                                      : RemoveFile(path, &answer);
            answer = answer == RESULT_OK ? RESULT_CANCEL : answer;
        }
        return result;
    }
    /// 'y' for Yes or Skip, 'n' for No or Cancel; to questions about deleting also 'Y' for all that
    /// follow, and 'c' for Cancel. The last one holds on.
    static void Answer(const std::string& to_messages, const std::string& to_deletes = "Y")
    {
        const auto given = [](const std::string& letters) {
            static const std::map<char, Result> kResults = {
                {'y', RESULT_OK}, {'Y', RESULT_YES_ALL}, {'c', RESULT_ABORT}, {'n', RESULT_CANCEL}};
            std::vector<Result> results;
            for (const char letter : letters) {
                results.push_back(kResults.at(letter));
            }
            return results;
        };
        answers = Answers();
        answers.to_messages = given(to_messages);
        answers.to_deletes = given(to_deletes);
    }
    /// Paths without the scratch directory, and messages on one line.
    Said Hear() const
    {
        Said said = {std::exchange(answers.asked, {}), std::exchange(answers.steps, 0)};
        for (std::string& text : said.first) {
            for (std::size_t at = text.find(files.Path()); at != std::string::npos; at = text.find(files.Path())) {
                text.erase(at, files.Path().size());
            }
            std::replace(text.begin(), text.end(), '\n', ' ');
        }
        return said;
    }
    static std::string Question(const std::string& path)
    {
        return "Confirmation: " + path + " already exists. Does it overwrite?";
    }
    /// what is a verb and a path.
    static std::string Failure(std::string what, const std::string& cause)
    {
        return "Error: Cannot " + what.insert(what.find(' '), " file") + " cause:" + cause + " [Skip]";
    }
    static std::string Inside() { return "Error: Cannot move to a sub directory."; }
};

/// A command on a tree, and what comes of it.
struct Story {
    Story(const char* on, Tree from, std::string run, std::string answers_given, Result returned, int counted,
          std::vector<std::string> said, Tree to)
        : about(on),
          before(from),
          command(run),
          given(answers_given),
          result(returned),
          steps(counted),
          asked(said),
          changes(to)
    {
    }
    const char* about;
    Tree before;
    std::string command;
    std::string given;  ///< Answers to messages, and behind a blank those to questions about deleting.
    Result result;
    int steps;
    std::vector<std::string> asked;
    Tree changes;  ///< The rest stays as it is.
};

class StoryTest : public EngineTest {
protected:
    void Tell(const std::vector<Story>& stories)
    {
        for (std::size_t i = 0; i < 2 * stories.size(); ++i) {
            const Story& story = stories[i / 2];
            faults.is_old_file_system = i % 2 != 0;
            SCOPED_TRACE(story.about);
            EmptyDisk(files.Path());
            Make(story.before);
            const Tree before = Show();
            const Disk objects = ReadDisk(files.Path());
            const std::size_t blank = std::min(story.given.find(' '), story.given.size());
            Answer(story.given.substr(0, blank), story.given.substr(std::min(blank + 1, story.given.size())));
            EXPECT_EQ(Run(story.command), story.result);
            const Said said = Hear();
            // Directories are read in any order.
            EXPECT_EQ(std::multiset(said.first.begin(), said.first.end()),
                      std::multiset(story.asked.begin(), story.asked.end()));
            EXPECT_EQ(said.second, story.steps);
            EXPECT_EQ(Show(), Change(before, story.changes));
            for (const auto& [path, object] : ReadDisk(files.Path())) {
                const Object* const old = FindObject(objects, path);
                EXPECT_TRUE(old == nullptr || old->inode == object.inode || story.changes.contains(path)) << path;
            }
        }
    }
};
