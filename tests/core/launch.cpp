// Opening files: what it comes to, and how programs are started.

#include "core/fnkutil-launch.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>

#include <sstream>

#include "child.h"
#include "core/fnkfiles-associations.h"
#include "core/fnkutil.h"
#include "program.h"
#include "tabletest.h"

namespace {

class DecideWhat : public TableTest {
protected:
    void Expect(const std::string& name, LaunchKind kind, const std::string& end)
    {
        const Launch launch = DecideLaunch(files.At(name));
        EXPECT_EQ(launch.kind, kind) << name;
        if (kind != LAUNCH_NOTHING && kind != LAUNCH_OUTSIDE_ROOT) {
            EXPECT_EQ(launch.path, files.At(end)) << name;
        }
    }
};

TEST_F(DecideWhat, ModeAndExtensionDecide)
{
    SetLocale(kUtf8Locale);
    table.ExtensionList = {{"txt", "view"},   {"none", ""},  {"", "bare"},
                           {"d/README", "x"}, {"\xFF", "y"}, {"TXT", "later"}};
    files.Directory("dir.txt");
    files.File("run.txt", "", 0744);
    files.File("group-run.txt", "", 0474);
    files.File("write-only.txt", "", 0244);
    files.Link("broken", "gone");
    for (const char* const name :
         {"a\n\xFF.TXT", "x.none", "README", "x.tar.txt", "x.", "conf.d/README", "a.\xFF", "a.txt~"}) {
        files.File(name);
    }
    const std::tuple<const char*, LaunchKind, const char*> cases[] = {{"dir.txt/", LAUNCH_DIRECTORY, ""},
                                                                      {"run.txt", LAUNCH_ITSELF, ""},
                                                                      {"group-run.txt", LAUNCH_PROGRAM, "view"},
                                                                      {"a\n\xFF.TXT", LAUNCH_PROGRAM, "view"},
                                                                      {"x.tar.txt", LAUNCH_PROGRAM, "view"},
                                                                      {"x.", LAUNCH_PROGRAM, "bare"},
                                                                      {"conf.d/README", LAUNCH_PROGRAM, "x"},
                                                                      {"a.\xFF", LAUNCH_PROGRAM, "y"},
                                                                      {"write-only.txt", LAUNCH_NOTHING, ""},
                                                                      {"README", LAUNCH_CHOICE, ""},
                                                                      {"a.txt~", LAUNCH_CHOICE, ""},
                                                                      {"x.none", LAUNCH_NOTHING, ""},
                                                                      {"gone", LAUNCH_NOTHING, ""},
                                                                      {"broken", LAUNCH_NOTHING, ""}};
    for (const auto& [name, kind, program] : cases) {
        const Launch launch = DecideLaunch(files.At(name));
        EXPECT_EQ(launch.kind, kind) << name;
        EXPECT_EQ(launch.program, program) << name;
    }
    EXPECT_EQ(DecideLaunch("").kind, LAUNCH_NOTHING);
    if (geteuid() == 0) {  // Only the last bits count for the files of others.
        for (const auto& [mode, kind] :
             {std::pair(0744, LAUNCH_ITSELF), {0644, LAUNCH_PROGRAM}, {0640, LAUNCH_NOTHING}, {0044, LAUNCH_PROGRAM}}) {
            Require(chown(files.File("theirs.txt", "", static_cast<mode_t>(mode)).c_str(), 65534, 0) == 0, "chown");
            EXPECT_EQ(DecideLaunch(files.At("theirs.txt")).kind, kind) << std::oct << mode;
        }
    }
}

TEST_F(DecideWhat, LinksAreFollowedOneByOneInsideTheRoot)
{
    const ScratchDirectory other;
    other.File("secret.txt");
    const std::string outside = "../../" + GetLastPath(other.Path()) + "/secret.txt";
    table.CurrentDir = files.Directory("here") + "/";
    files.File("here/a.txt");
    files.File("run", "", 0755);
    const std::pair<std::string, std::string> links[] = {{"here/sibling", "a.txt"},
                                                         {"here/up", "../run"},
                                                         {"here/far", files.At("below/second")},
                                                         {"below/second", "third"},
                                                         {"below/third", "../here/a.txt"},
                                                         {"here/root", files.At("here/..")},
                                                         {"here/out", other.At("secret.txt")},
                                                         {"here/dots", outside},
                                                         {"here/nowhere", "/nonexistent/a.txt"},
                                                         {"door", other.Path()},
                                                         {"here/door", "../door/secret.txt"},
                                                         {"here/chain", "out"},
                                                         {"ping", "pong"},
                                                         {"pong", "./ping"},
                                                         {"long", std::string(2048, 'x')}};
    for (const auto& [name, target] : links) {
        files.Link(name, target);
    }
    Expect("here/sibling", LAUNCH_CHOICE, "here/a.txt");
    Expect("here/up", LAUNCH_ITSELF, "run");
    Expect("here/far", LAUNCH_CHOICE, "here/a.txt");
    Expect("here/root", LAUNCH_DIRECTORY, "");
    for (const char* const out : {"here/out", "here/dots", "here/nowhere", "here/door", "here/chain"}) {
        Expect(out, LAUNCH_OUTSIDE_ROOT, "");
    }
    std::string target = "here/a.txt";
    for (int i = 1; i <= 41; ++i) {
        const std::string name = "link" + std::to_string(i);
        files.Link(name, target);
        target = name;
    }
    Expect("link40", LAUNCH_CHOICE, "here/a.txt");
    for (const char* const endless : {"link41", "ping", "long"}) {
        Expect(endless, LAUNCH_NOTHING, "");
    }
    // A root that is itself reached through a link.
    table.RootDir = other.Link("root", files.Path()) + "/";
    EXPECT_EQ(DecideLaunch(table.RootDir + "here/far").path, table.RootDir + "here/a.txt");
    EXPECT_EQ(DecideLaunch(table.RootDir + "here/out").kind, LAUNCH_OUTSIDE_ROOT);
    table.RootDir = "/";
    EXPECT_EQ(DecideLaunch(files.At("here/out")).path, other.At("secret.txt"));
}

TEST_F(DecideWhat, AssociationsAreLinesOfASection)
{
    using Entries = std::vector<std::pair<std::string, std::string>>;
    const auto read = [this](const std::string& text, const char* section) {
        home.File(".extension", text);
        std::vector<AppInfo> list = {{"first", "kept"}};
        EXPECT_EQ(ReadAppInfo(section, &list), 0);
        Entries entries;
        for (const AppInfo& entry : list) {
            entries.emplace_back(entry.Key, entry.Value);
        }
        EXPECT_EQ(entries.front(), std::pair(std::string("first"), std::string("kept")));
        return Entries(entries.begin() + 1, entries.end());
    };
    const std::string key(255, 'k');
    const std::string value(2047 - 2, 'v');
    const std::pair<std::string, Entries> cases[] = {
        {"[Extension]\ntxt=emacs\nTXT=vi\n", {{"txt", "emacs"}, {"TXT", "vi"}}},
        {"[Extension]\na=1\n\nb=2\n", {{"a", "1"}}},
        {"[Extension]\na=1\n[b=2\nc=3\n", {{"a", "1"}}},
        {"text\n\n[Other]\nx=y\n# see [Extension] \na=1", {{"a", "1"}}},
        {"[Extension]\nno separator\nsh=a=b\n=v\nk=\nhtml = x \n",
         {{"sh", "a=b"}, {"", "v"}, {"k", ""}, {"html ", " x "}}},
        {"[Extension]\n" + key + "=v\n" + key + "k=v\na=1\n", {{key, "v"}, {"a", "1"}}},
        {"[Extension]\na=" + value + "\na=" + value + "v\nb=2\n", {{"a", value}, {"b", "2"}}},
        {"[Extension]\n", {}},
        {"[extension]\na=1\n", {}}};
    for (const char* const locale : {kTwoByteLocale, kUtf8Locale}) {
        SetLocale(locale);
        for (const auto& [text, expected] : cases) {
            EXPECT_EQ(read(text, "[Extension]"), expected) << text;
        }
    }
    EXPECT_EQ(read("[Extension]\n\xFF=\xFE\xFD\n", "[Extension]"), (Entries{{"\xFF", "\xFE\xFD"}}));
    std::ifstream stream(FENNICK_DATA "extension.example");
    const std::string example{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_FALSE(read(example, "[Extension]").empty() || read(example, "[Application]").empty());
    std::vector<AppInfo> list;
    EXPECT_EQ(ReadAppInfo(nullptr, &list) + ReadAppInfo("[Extension]", nullptr), -2);
    home_variable.Set(nullptr);
    EXPECT_EQ(ReadAppInfo("[Extension]", &list), 0);
    EXPECT_TRUE(list.empty());
}

using Words = std::vector<std::string>;

class Exec : public TableTest {
protected:
    /// What a program writes to the standard output that it inherits, until it ends.
    static std::string OutputOf(const std::string& name, const std::string& argument)
    {
        int ends[2];
        const int output = dup(STDOUT_FILENO);
        std::fflush(stdout);
        Require(output >= 0 && pipe2(ends, O_CLOEXEC) == 0 && dup2(ends[1], STDOUT_FILENO) >= 0, "pipe");
        ExecProcess(name, argument);
        dup2(output, STDOUT_FILENO);
        close(ends[1]);
        close(output);
        std::string text;
        for (char byte = 0; read(ends[0], &byte, 1) == 1;) {
            text += byte;
        }
        close(ends[0]);
        return text;
    }
    /// A process as the system tells of it.
    void Process(const std::string& id, const std::string& status) const
    {
        files.File("proc/" + id + "/status", status);
    }

    ReportingPrograms programs;
    const std::string program = programs.Make("program");
    const std::string fennick = programs.Make("fennick");
    const std::string opener = programs.Make("xdg-open");
    const ScopedVariable path{"PATH", (programs.directory.Path() + ":/usr/bin:/bin").c_str()};
    const Browser browser{programs.Make("start"), files.Directory("proc")};
};

TEST_F(Exec, AProgramStandsOnItsOwn)
{
    const int leak = dup2(0, 77);
    struct sigaction ignore = {};
    struct sigaction before = {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGTERM, &ignore, &before);
    sigset_t mask;
    sigset_t old_mask;
    sigset_t mask_after;
    sigemptyset(&mask);
    sigaddset(&mask, SIGINT);
    pthread_sigmask(SIG_SETMASK, &mask, &old_mask);
    const std::string open_descriptors = OutputOf("ls", "/proc/self/fd");
    const std::string status = OutputOf("cat", "/proc/self/status");
    std::istringstream stat(OutputOf("cat", "/proc/self/stat"));
    pthread_sigmask(SIG_SETMASK, &old_mask, &mask_after);
    sigaction(SIGTERM, &before, nullptr);
    close(leak);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
    EXPECT_EQ(open_descriptors, "0\n1\n2\n3\n") << "3 is the reader's own";
    for (const char* const key : {"SigIgn:", "SigBlk:"}) {
        std::string value;
        EXPECT_EQ(GetStatus(key, status.c_str(), value, 100), 0);
        EXPECT_EQ(value, "0000000000000000") << key;
    }
    EXPECT_TRUE(sigismember(&mask_after, SIGINT) == 1 && sigismember(&mask_after, SIGTERM) == 0)
        << "and here they stay";
    std::string name;
    std::string state;
    pid_t process = 0;
    pid_t parent = 0;
    pid_t group = 0;
    pid_t session = 0;
    stat >> process >> name >> state >> parent >> group >> session;
    EXPECT_NE(parent, getpid());
    EXPECT_TRUE(session == process && group == process) << session << " " << group << " " << process;
    EXPECT_EQ(RunInChild([] {
                  const struct rlimit limit = {200, 500};
                  Require(setrlimit(RLIMIT_NOFILE, &limit) == 0, "setrlimit");
                  RaiseOpenFileLimit();
                  EXPECT_NE(OutputOf("cat", "/proc/self/limits").find("Max open files            200  "),
                            std::string::npos);
              }),
              CHILD_PASSED);
}

TEST_F(Exec, AProgramIsOneNameSearchedForAlongThePath)
{
    programs.Make("with blank");
    const ScratchDirectory first;
    first.Directory("program");
    first.File("plain", "echo this is no program", 0755);
    const ScopedVariable search("PATH", ("/usr/bin:/bin:" + first.Path() + "::").c_str());
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(programs.directory.Path());
    for (const char* const text : {"program --option", "program;true", "gone", "plain", "", "/gone/program"}) {
        EXPECT_GT(ExecProcess(text, "x"), 0) << text;
    }
    // Had any of those been started, it would come first.
    ExecProcess("program", "");
    EXPECT_EQ(programs.Next(), Words{"./program"}) << "an empty part is the directory one is in";
    ExecProcess("with blank", "--x");
    EXPECT_EQ(programs.Next(), (Words{"./with blank", "--x"}));
    std::filesystem::current_path(before);
}

TEST_F(Exec, TheBrowserOrTheDesktopShowsTheFile)
{
    const Browser absent{files.At("absent"), browser.processes};
    const std::tuple<Browser, std::string, std::string, bool, Words> cases[] = {
        {browser, browser.start, "/a.html", false, {browser.start, "file:/a.html"}},
        {browser, browser.start, "/a b.html", true, {browser.start, "-remote", "openURL(/a b.html)"}},
        {browser, browser.start, "", true, {browser.start}},
        {browser, program, "/a b\n\xFF;$(x)", true, {program, "/a b\n\xFF;$(x)"}},
        {absent, absent.start, "/a b.html", true, {opener, "/a b.html"}}};
    for (const auto& [its_browser, name, argument, is_running, words] : cases) {
        Process("4242", is_running ? "Name:\tnetscape-x\nState:\tS (sleeping)\n" : "Name:\tinit\nState:\tS\n");
        EXPECT_GT(ExecProcess(name, argument, its_browser), 0);
        EXPECT_EQ(programs.Next(), words);
    }
}

TEST_F(Exec, ABrowserIsAProcessOfThatNameThatLives)
{
    EXPECT_EQ(CheckWebProcess(files.At("gone")), 0);
    const std::pair<const char*, const char*> others[] = {{"1", "Name:\tinit\nState:\tS\n"},
                                                          {"2", "Name:\tnetscape\nState:\tZ (zombie)\n"},
                                                          {"3", "Name:\tnetscape\n"},
                                                          {"4", "State:\tS\n"},
                                                          {"5", "Name:\tmynetscape\nState:\tR\n"},
                                                          {"6", ""},
                                                          {"self", "Name:\tnetscape\nState:\tR\n"}};
    for (const auto& [id, status] : others) {
        Process(id, status);
    }
    files.Directory("proc/7");
    EXPECT_EQ(CheckWebProcess(browser.processes), 0);
    Process("88", "Name: \t netscape-communicator\nUmask:\t0022\nState:\tR (running)\n");
    EXPECT_EQ(CheckWebProcess(browser.processes), 88);
    if (geteuid() == 0) {
        Require(chown(files.At("proc/88").c_str(), 65534, 65534) == 0, "chown");
        Require(chown(files.At("proc/88/status").c_str(), 65534, 65534) == 0, "chown");
        EXPECT_EQ(CheckWebProcess(browser.processes), 0) << "another user's";
    }
}

TEST_F(Exec, ANewWindowGetsTheSameCommandLine)
{
    EXPECT_GT(ExecFennick(), 0);
    EXPECT_EQ(programs.Next(), Words{fennick});
    std::string words[] = {"./fennick", "--home", "/a b"};
    char* line[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    table.ArgV = line;
    ExecFennick();
    EXPECT_EQ(programs.Next(), (Words{fennick, "--home", "/a b"}));
}

}  // namespace
