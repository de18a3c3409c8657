// Copying, moving and deleting while the system fails them: whichever call it is, and whatever the
// user answers, nothing that was there may be lost, and nothing half done be left.

#include "faults.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <set>

#include "child.h"
#include "enginetest.h"
#include "engine/fnkfiles-delete.h"
#include "core/fnkfiles.h"

namespace {

/// Built with sanitizers, the one errno is as good as the other.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kIsSlow = true;
#else
constexpr bool kIsSlow = false;
#endif

constexpr const char* kSourceFiles[] = {"t/plain", "t/sub/leaf", "t/sub/deep/large", "t/sparse", "t/sub/link",
                                        "t/clash", "single"};

class FaultTest : public EngineTest {
protected:
    FaultTest() { faults.spares_disk = true; }
    ~FaultTest() override
    {
        faults.Disarm();
        faults.spares_disk = faults.is_old_file_system = false;
        faults.at_call = nullptr;
    }

    void MakeSource() const
    {
        files.File("from/t/plain", "plain", 0600);
        files.File("from/t/sub/leaf", "leaf");
        files.File("from/t/sub/deep/large", std::string(70'000, 'l'));
        files.File("from/t/sparse", "");
        std::filesystem::resize_file(files.At("from/t/sparse"), 200'000);
        files.Link("from/t/sub/link", "plain");
        files.File("from/t/clash", "new");
        files.File("from/single", "single");
    }
    void MakeTarget() const
    {
        files.File("to/t/clash", "old");
        files.File("to/t/sub/leaf", "old leaf");
        files.File("to/t/sub/only", "only here");
        files.File("to/t/sub/deep/large", std::string(80'000, 'o'));
        files.Link("to/t/sub/link", "old link");
        files.File("to/single", "old");
        files.Directory("to/t/plain");  // Empty, where a file is to be.
    }
    /// The content without the mode, which a failed chmod may leave as it is; empty for nothing.
    std::string What(const std::string& path) const
    {
        if (!Exists(path)) {
            return {};
        }
        std::string text = DescribeObject(path);
        if (!text.starts_with("link")) {
            const std::size_t mode = text.find(' ');
            text.erase(mode, text.find(' ', mode + 1) - mode);
        }
        return text;
    }
    /// When the system denies that a directory is there, an item takes its name or merges with it.
    bool IsSomewhereBelow(const std::string& name, const std::string& what) const
    {
        const Tree tree = Describe(name);
        return std::any_of(tree.begin(), tree.end(),
                           [&](const auto& entry) { return What(name + "/" + entry.first) == what; });
    }

    /// Prepares, lets the k-th call of work fail with each error and each answer, and checks, for
    /// every k that there is.
    void FailEverywhere(const std::function<void()>& prepare, const std::function<void()>& work,
                        const std::function<void(const std::string& where)>& check)
    {
        constexpr struct {
            int error;
            Result answer;
            bool old_file_system;
        } kCases[] = {{EIO, RESULT_CANCEL, false}, {EIO, RESULT_OK, false},    {EIO, RESULT_OK, true},
                      {EACCES, RESULT_OK, false},  {ENOSPC, RESULT_OK, false}, {ENOENT, RESULT_OK, false},
                      {EINVAL, RESULT_OK, false}};
        for (const auto& [error, answer, old_file_system] : kCases) {
            if (kIsSlow && error != EIO) {
                continue;
            }
            faults.is_old_file_system = old_file_system;
            int k = 0;
            do {
                ++k;
                for (const char* const name : {"from", "to"}) {
                    std::filesystem::remove_all(files.At(name));
                    files.Directory(name);
                }
                prepare();
                answers = Answers();
                answers.to_messages = {answer};
                answers.to_deletes = {RESULT_YES_ALL};
                faults.Arm(k, error);
                work();
                faults.Disarm();
                const std::string where = "call " + std::to_string(k) + " errno " + std::to_string(error) +
                                          (answer == RESULT_OK ? " skipped" : " cancelled") +
                                          (old_file_system ? " old" : "");
                check(where);
                EXPECT_EQ(TemporariesIn(""), Tree()) << where;
            } while (faults.calls_made >= k && !HasFailure());
            EXPECT_GT(k, 10) << "the calls are led here";
        }
    }
    void ExpectSourceUntouched(const Tree& before, const std::string& where)
    {
        EXPECT_EQ(Describe("from"), before) << where;
    }
};

TEST_F(FaultTest, ACopyToANewPlaceIsWholeOrNotThere)
{
    Tree before;
    FailEverywhere(
        [&] {
            MakeSource();
            before = Describe("from");
        },
        [&] {
            Copy("to", {"from/t/", "from/single"});
        },
        [&](const std::string& where) {
            ExpectSourceUntouched(before, where);
            for (const std::string name : kSourceFiles) {
                const std::string copied = What("to/" + name);
                EXPECT_TRUE(copied.empty() || copied == What("from/" + name)) << name << ": " << where;
            }
        });
}

TEST_F(FaultTest, ACopyOverOldFilesLeavesEachOldOrNew)
{
    Tree before;
    std::map<std::string, std::string> old;
    FailEverywhere(
        [&] {
            MakeSource();
            MakeTarget();
            before = Describe("from");
            for (const std::string name : kSourceFiles) {
                old[name] = What("to/" + name);
            }
            table.ConfilmOverwrite = 0;
        },
        [&] {
            Copy("to", {"from/t/", "from/single"});
        },
        [&](const std::string& where) {
            ExpectSourceUntouched(before, where);
            EXPECT_EQ(What("to/t/sub/only"), "file only here") << where;
            for (const std::string name : kSourceFiles) {
                const std::string there = What("to/" + name);
                EXPECT_TRUE(there == old[name] || there == What("from/" + name)) << name << ": " << where << there;
            }
        });
}

TEST_F(FaultTest, AMoveNeverLosesAFile)
{
    for (const bool merge : {false, true}) {
        std::map<std::string, std::string> fresh;
        FailEverywhere(
            [&] {
                MakeSource();
                if (merge) {
                    MakeTarget();
                }
                for (const std::string name : kSourceFiles) {
                    fresh[name] = What("from/" + name);
                }
                table.ConfilmOverwrite = 0;
            },
            [&] {
                Move("to", {"from/t/", "from/single"});
            },
            [&](const std::string& where) {
                EXPECT_TRUE(!merge || What("to/t/sub/only") == "file only here") << where;
                for (const auto& [name, what] : fresh) {
                    const std::string source = What("from/" + name);
                    const std::string target = What("to/" + name);
                    EXPECT_TRUE(source == what || IsSomewhereBelow("to", what)) << name << ": " << where;
                    // What is not overwritten is what it was.
                    EXPECT_TRUE(target == what || !merge || name == "t/sparse" || !target.empty())
                        << name << ": " << where;
                }
            });
    }
}

TEST_F(FaultTest, ADeclinedOverwriteKeepsTheOldFileWhateverFails)
{
    for (const bool move : {false, true}) {
        FailEverywhere(
            [&] {
                files.File("from/clash", "new");
                files.File("to/clash", "old");
                files.File("from/clash2", "new");
                files.File("to/clash2", "old");
                files.File("from/clash3", "new");
                files.File("to/clash3", "old");
                table.ConfilmOverwrite = 1;
            },
            [&] {
                answers.to_messages = {RESULT_CANCEL};
                for (const std::string name : {"clash", "clash2", "clash3"}) {
                    move ? Move("to", {"from/" + name}) : Copy("to", {"from/" + name});
                }
            },
            [&](const std::string& where) {
                for (const std::string name : {"clash", "clash2", "clash3"}) {
                    EXPECT_EQ(What("to/" + name), "file old") << where;
                    EXPECT_EQ(What("from/" + name), "file new") << where;
                }
            });
    }
}

TEST_F(FaultTest, LinksOnTheWayStayAndLeadNoDirectoryIntoItself)
{
    for (const bool into_itself : {true, false}) {
        FailEverywhere(
            [&] {
                files.File("from/t/plain", "plain");
                files.File("from/t/t", "inside");
                files.Link("to/link", files.At("from"));
                table.ConfilmOverwrite = 0;
            },
            [&] { into_itself ? Move("from/t/t", {"to/link/t/"}) : Copy("to/link/new/t", {"from/t/"}); },
            [&](const std::string& where) {
                if (faults.error == ENOENT) {
                    return;  // A system that denies what is there cannot be told from one where it is not.
                }
                EXPECT_EQ(What("from/t/plain"), "file plain") << where;
                EXPECT_EQ(What("from/t/t"), "file inside") << where;
                EXPECT_EQ(What("to/link"), "link " + files.At("from")) << where;
            });
    }
}

TEST_F(FaultTest, ADeleteTakesNothingElse)
{
    Tree before;
    FailEverywhere(
        [&] {
            MakeSource();
            MakeTarget();
            files.Link("from/t/out", files.At("to"));
            before = Describe("to");
        },
        [&] {
            Result answer = RESULT_CANCEL;
            RemoveFile(files.At("from/t/"), &answer);
        },
        [&](const std::string& where) { EXPECT_EQ(Describe("to"), before) << where; });
}

TEST_F(FaultTest, ADirectorySwappedForALinkBetweenTwoCallsHarmsNothingOutside)
{
    const auto swap = [this](const std::string& name) {
        if (Exists(name) && !Exists("aside")) {
            std::filesystem::rename(files.At(name), files.At("aside"));
            files.Link(name, files.At("outside"));
        }
    };
    const std::function<void()> commands[] = {
        [this] { Copy("to", {"from/t/"}); },
        [this] { Move("to", {"from/t/"}); },
        [this] { Copy("to", {"from/single"}); },
        [this] { Move("to", {"from/single"}); },
        [this] {
            Result answer = RESULT_CANCEL;
            RemoveFile(files.At("from/t/"), &answer);
        },
    };
    table.ConfilmOverwrite = 0;
    for (const char* const name : {"from/t/sub", "to/t/sub", "to"}) {
        for (std::size_t command = 0; command < std::size(commands); ++command) {
            int k = 0;
            do {
                k += kIsSlow ? 5 : 1;
                for (const char* const top : {"from", "to", "aside", "outside"}) {
                    std::filesystem::remove_all(files.At(top));
                }
                MakeSource();
                MakeTarget();
                std::filesystem::copy(
                    files.At("from/t"), files.At("outside"),
                    std::filesystem::copy_options::recursive | std::filesystem::copy_options::copy_symlinks);
                const Tree before = Describe("outside");
                answers = Answers();
                answers.to_messages = {RESULT_CANCEL};
                answers.to_deletes = {RESULT_YES_ALL};
                faults.at_call = [&] { swap(name); };
                faults.Arm(k, 0);
                commands[command]();
                faults.Disarm();
                EXPECT_EQ(Describe("outside"), before) << name << " at call " << k << " of command " << command;
            } while (faults.calls_made >= k && !HasFailure());
        }
    }
}

TEST_F(FaultTest, TemporaryNamesGoWithTheProcess)
{
    // A signal ends the process from inside the main loop that the engine runs, after the settings
    // are written. What has a name so early is for nobody else to read.
    files.File("from/large", std::string(32 << 20, 'x'), 0600);
    files.File("to/large", "old");
    const std::vector<std::string> before = files.Names("to");
    ASSERT_EQ(RunInChild([&] {
                  faults.is_old_file_system = true;
                  table.ConfilmOverwrite = 0;
                  umask(0);
                  answers.at_paint = [&] {
                      const std::vector<std::string> names = files.Names("to");
                      const bool is_private = (files.Status("to/" + names.front()).st_mode & 077) == 0;
                      WriteFile(files.At("settings"), "written");
                      std::exit(names.size() == 2 && is_private ? CHILD_PASSED : CHILD_FAILED);
                  };
                  Copy("to", {"from/large"});
                  ADD_FAILURE() << "was over too soon";
              }),
              CHILD_PASSED);
    EXPECT_EQ(files.Names("to"), before);
    EXPECT_EQ(files.Contents("to/large") + files.Contents("settings"), "oldwritten");
    EXPECT_EQ(files.Names(), (std::vector<std::string>{"from", "settings", "to"}));
}

}  // namespace
