// Opening files: what it comes to, and how programs are started.

#include "core/fnkutil-launch.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <sstream>

#include "core/fnkfiles-associations.h"
#include "core/fnkutil.h"
#include "program.h"
#include "tabletest.h"

namespace {

using DecideWhat = TableTest;

TEST_F(DecideWhat, ModeAndExtensionDecide)
{
    SetLocale(kUtf8Locale);
    table.ExtensionList = {{"txt", "view"}, {"none", ""}, {"", "bare"}, {"d/README", "x"}, {"\xFF", "y"}, {"TXT", "z"}};
    table.ApplicationList = {{"Editor", "edit"}};
    files.Directory("dir.txt");
    files.Link("broken", "gone");
    using Case = std::tuple<const char*, mode_t, LaunchKind, const char*>;
    for (const auto& [name, mode, kind, program] :
         {Case("dir.txt/", 0, LAUNCH_DIRECTORY, ""), Case("broken", 0, LAUNCH_STALLED, ""),
          Case("gone", 0, LAUNCH_MISSING, ""), Case("run.txt", 0744, LAUNCH_ITSELF, ""),
          Case("group-run.txt", 0474, LAUNCH_PROGRAM, "view"), Case("write-only.txt", 0244, LAUNCH_UNREADABLE, ""),
          Case("a\n\xFF.TXT", 0644, LAUNCH_PROGRAM, "view"), Case("x.tar.txt", 0644, LAUNCH_PROGRAM, "view"),
          Case("x.", 0644, LAUNCH_PROGRAM, "bare"), Case("conf.d/README", 0644, LAUNCH_PROGRAM, "x"),
          Case("a.\xFF", 0644, LAUNCH_PROGRAM, "y"), Case("README", 0644, LAUNCH_CHOICE, ""),
          Case("a.txt~", 0644, LAUNCH_CHOICE, ""), Case("x.none", 0644, LAUNCH_NOTHING, "")}) {
        const Launch launch = DecideLaunch(mode != 0 ? files.File(name, "", mode) : files.At(name));
        EXPECT_EQ(launch.kind, kind) << name;
        EXPECT_EQ(launch.program, program) << name;
    }
    EXPECT_EQ(DecideLaunch("").kind, LAUNCH_MISSING);
    table.ApplicationList.clear();
    EXPECT_EQ(DecideLaunch(files.At("README")).program, "xdg-open") << "nothing to choose from";
    // A Turkish "i" is no small "I".
    const std::string turkish = home.At("tr_TR.UTF-8");
    Require(std::system(("localedef -i tr_TR -f UTF-8 " + turkish).c_str()) == 0, turkish);
    const ScopedVariable locales("LOCPATH", home.Path().c_str());
    SetLocale("tr_TR.UTF-8");
    table.ExtensionList = {{"gif", "view"}};
    EXPECT_NE(GetCompatibleAP("/A.GIF"), nullptr);
}

TEST_F(DecideWhat, LinksAreFollowedInsideTheRoot)
{
    table.ApplicationList = {{"Editor", "edit"}};
    const ScratchDirectory other;
    other.File("secret.txt");
    files.File("here/a.txt");
    files.File("run", "", 0755);
    using Link = std::pair<std::string, std::string>;
    for (const auto& [name, target] :
         {Link("here/sibling", "a.txt"), Link("here/up", "../run"), Link("here/far", files.At("below/second")),
          Link("below/second", "third"), Link("below/third", "../here/a.txt"), Link("here/root", files.At("here/..")),
          Link("here/out", other.At("secret.txt")),
          Link("here/dots", "../../" + GetLastPath(other.Path()) + "/secret.txt"), Link("door", other.Path()),
          Link("here/door", "../door/secret.txt"), Link("here/chain", "out"), Link("ping", "./ping"),
          Link("long", std::string(2048, 'x'))}) {
        files.Link(name, target);
    }
    std::string target = "here/a.txt";
    for (int i = 1; i <= 41; ++i) {
        files.Link("link" + std::to_string(i), std::exchange(target, "link" + std::to_string(i)));
    }
    using Case = std::tuple<const char*, LaunchKind, const char*>;
    for (const auto& [name, kind, end] :
         {Case("here/sibling", LAUNCH_CHOICE, "here/a.txt"), Case("here/up", LAUNCH_ITSELF, "run"),
          Case("here/far", LAUNCH_CHOICE, "here/a.txt"), Case("here/root", LAUNCH_DIRECTORY, ""),
          Case("link40", LAUNCH_CHOICE, "here/a.txt"), Case("link41", LAUNCH_STALLED, ""),
          Case("ping", LAUNCH_STALLED, ""), Case("long", LAUNCH_STALLED, ""), Case("here/out", LAUNCH_OUTSIDE_ROOT, ""),
          Case("here/dots", LAUNCH_OUTSIDE_ROOT, ""), Case("here/door", LAUNCH_OUTSIDE_ROOT, ""),
          Case("here/chain", LAUNCH_OUTSIDE_ROOT, "")}) {
        const Launch launch = DecideLaunch(files.At(name));
        EXPECT_EQ(launch.kind, kind) << name;
        if (kind != LAUNCH_STALLED && kind != LAUNCH_OUTSIDE_ROOT) {
            EXPECT_EQ(launch.path, files.At(end)) << name;
        }
    }
    // The root itself may be behind a link.
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
    using Section = std::pair<std::string, Entries>;
    for (const auto& [text, expected] :
         {Section("[Extension]\ntxt=emacs\nb=\xFE\xFD\n", {{"txt", "emacs"}, {"b", "\xFE\xFD"}}),
          Section("[Extension]\na=1\n\nb=2\n", {{"a", "1"}}), Section("[Extension]\na=1\n[b=2\nc=3\n", {{"a", "1"}}),
          Section("text\n\n[Other]\nx=y\n# see [Extension] \na=1", {{"a", "1"}}),
          Section("[Extension]\nno separator\nsh=a=b\n=v\nk=\nhtml = x \n",
                  {{"sh", "a=b"}, {"", "v"}, {"k", ""}, {"html ", " x "}}),
          Section("[Extension]\n" + key + "=v\n" + key + "k=v\na=1\n", {{key, "v"}, {"a", "1"}}),
          Section("[Extension]\na=" + value + "\na=" + value + "v\nb=2\n", {{"a", value}, {"b", "2"}}),
          Section("\xEF\xBB\xBF[Extension]\r\na=1\r\nb=\r\n\r\nc=3\r\n", {{"a", "1"}, {"b", ""}}),
          Section("[extension]\na=1\n", {})}) {
        EXPECT_EQ(read(text, "[Extension]"), expected) << text;
    }
    std::ifstream stream(FENNICK_DATA "extension.example");
    const std::string example{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_FALSE(read(example, "[Extension]").empty() || read(example, "[Application]").empty());
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

    ReportingPrograms programs;
    const std::string program = programs.Make("program");
    const std::string fennick = programs.Make("fennick");
    const std::string opener = programs.Make("xdg-open");
    const ScopedVariable path{"PATH", (programs.directory.Path() + ":/usr/bin:/bin").c_str()};
    const Browser browser{programs.Make("start"), files.Directory("proc")};
};

TEST_F(Exec, AProgramInheritsNothingAndHasItsOwnSession)
{
    const int leak = dup2(0, 77);
    struct sigaction before = {};
    sigaction(SIGTERM, nullptr, &before);
    signal(SIGTERM, SIG_IGN);
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
    for (const std::string key : {"SigIgn:\t", "SigBlk:\t"}) {
        EXPECT_NE(status.find(key + "0000000000000000"), std::string::npos) << key;
    }
    EXPECT_TRUE(sigismember(&mask_after, SIGINT) == 1 && sigismember(&mask_after, SIGTERM) == 0) << "here they stay";
    std::string words[6];  // Process, name, state, parent, group, session.
    for (std::string& word : words) {
        stat >> word;
    }
    EXPECT_NE(words[3], std::to_string(getpid()));
    EXPECT_TRUE(words[4] == words[0] && words[5] == words[0]) << words[4] << " " << words[5];
    struct rlimit limit = {};
    Require(getrlimit(RLIMIT_NOFILE, &limit) == 0, "getrlimit");
    limit.rlim_cur = 200;
    Require(setrlimit(RLIMIT_NOFILE, &limit) == 0, "setrlimit");
    RaiseOpenFileLimit();
    EXPECT_NE(OutputOf("cat", "/proc/self/limits").find("Max open files            200  "), std::string::npos);
}

TEST_F(Exec, AProgramIsOneNameSearchedForAlongThePath)
{
    programs.Make("with blank");
    const ScratchDirectory first;
    first.Directory("program");
    first.File("picture", std::string("echo\0", 5), 0755);
    first.File("unmarked", "echo \"$#\" \"${0##*/}\" \"$1\"", 0755);
    const ScopedVariable search("PATH", ("/usr/bin:/bin:" + first.Path() + "::").c_str());
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(programs.directory.Path());
    for (const char* const text : {"program --option", "program;true", "gone", "picture", "", "/gone/program"}) {
        EXPECT_GT(ExecProcess(text, "x"), 0) << text;
    }
    // Had any of those been started, it would come first.
    ExecProcess("program", "");
    EXPECT_EQ(programs.Next(), Words{"./program"}) << "an empty part is the directory one is in";
    ExecProcess("with blank", "--x");
    EXPECT_EQ(programs.Next(), (Words{"./with blank", "--x"}));
    EXPECT_EQ(OutputOf("unmarked", "-a b;c") + OutputOf(first.At("unmarked"), ""), "1 unmarked -a b;c\n0 unmarked \n");
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
        files.File("proc/4242/status", is_running ? "Name:\tnetscape-x\nState:\tS (sleeping)\n" : "");
        EXPECT_GT(ExecProcess(name, argument, its_browser), 0);
        EXPECT_EQ(programs.Next(), words);
    }
}

TEST_F(Exec, ABrowserIsALiveProcessOfThatName)
{
    using Case = std::tuple<const char*, const char*, pid_t>;
    for (const auto& [id, status, found] :
         {Case("1", "Name:\tinit\nState:\tS\n", 0), Case("2", "Name:\tnetscape\nState:\tZ (zombie)\n", 0),
          Case("3", "Name:\tnetscape\n", 0), Case("4", "State:\tS\n", 0),
          Case("5", "Name:\tmynetscape\nState:\tR\n", 0), Case("self", "Name:\tnetscape\nState:\tR\n", 0),
          Case("88", "Name: \t netscape-communicator\nUmask:\t0022\nState:\tR (running)\n", 88)}) {
        files.File(std::string("proc/") + id + "/status", status);
        EXPECT_EQ(CheckWebProcess(browser.processes), found) << id;
    }
    EXPECT_EQ(CheckWebProcess(files.At("gone")), 0);
    if (geteuid() == 0) {
        for (const char* const name : {"proc/88", "proc/88/status"}) {
            Require(chown(files.At(name).c_str(), 65534, 65534) == 0, "chown");
        }
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
