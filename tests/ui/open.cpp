// Opening entries, by a double click, by keys and by the menu, and the manual.

#include "acts.h"
#include "commands/fnkhelpmenu.h"
#include "program.h"

namespace {

class Open : public WindowTest {
protected:
    /// Starts the window with programs associated with files.
    void Start()
    {
        home.File(".extension", "[Extension]\nx=" + view + "\n\n[Application]\nOther=" + other + "\n");
        WindowTest::Start();
    }
    /// Opens the row by Return while these acts answer what is asked.
    void Return(const std::string& name, const DialogActs& acts)
    {
        SelectNames({name});
        DuringDialogs([this] { Press("Return"); }, acts);
    }
    /// Answers whether to run the program.
    static DialogAct Answer(const std::string& program, const char* button)
    {
        return [=](GtkWidget* box) {
            EXPECT_NE(FindByText(box, "Execute " + program + " ?"), nullptr) << program;
            PressButton(button)(box);
        };
    }
    void ExpectStarted(const Names& words) { EXPECT_EQ(programs.Next(), words) << "and nothing before"; }

    ReportingPrograms programs;
    const std::string view = programs.Make("view");
    const std::string other = programs.Make("other");
};

TEST_F(Open, ADoubleClickReturnF3AndTheMenuDoTheSame)
{
    const std::string path = files.File("a \xFF.x");
    Make({"b.x"});
    Start();
    DoubleClickRow("a \xFF.x");
    ExpectStarted({view, path});
    Press("Return");
    ExpectStarted({view, path});
    SelectNames({"a \xFF.x", "b.x"});
    EXPECT_FALSE(IsOffered(MENU_OPEN));
    Press("F3");
    SelectNames({"a \xFF.x"});
    Press("F3");  // It follows the selection of now, not of when the menu was last opened.
    ExpectStarted({view, path});
    Choose(MENU_OPEN);
    ExpectStarted({view, path});
    ExpectAt("", "a \xFF.x");
}

TEST_F(Open, DirectoriesAreEnteredAndNodesExpanded)
{
    const ScratchDirectory outside;
    files.Link("out", outside.Path());
    Make({"a/below/file", "link -> a/../a/below", "loop -> loop", "turned.x"});
    Start();
    Return("out", {ReadBox("The specified path cannot be operated.")});
    ExpectAt("", "out");
    Steps("node a");
    EXPECT_TRUE(IsOffered(MENU_OPEN));
    Steps("key F3 = a/");
    EXPECT_FALSE(IsOffered(MENU_OPEN));
    Steps(
        "visit .; select loop; key Return = . loop; select link; key Return = a/below/ file;"
        "visit .; select a; key F3 = a/; visit .; remove turned.x; make turned.x/; select turned.x; key Return");
    EXPECT_EQ(pGTable->CurrentDir, files.At("turned.x/"));
    ExpectConsistent(DISK_CHANGED);
}

TEST_F(Open, ProgramsAreAskedForAndChosen)
{
    const std::string data = files.File("data.x");
    const std::string unknown = files.File("README\xFF");
    const std::string run = programs.Make("run", files);
    files.Link("link", "run");
    Start();
    const auto choose = [](GtkWidget* box) {
        SendKey(box, GDK_KEY_Down);
        PressButton("OK")(box);
    };
    Return("README\xFF", {[](GtkWidget* box) { SendKey(box, GDK_KEY_Return); }});  // Presses Cancel.
    Return("README\xFF", {choose});
    ExpectStarted({other, unknown});
    pGTable->ConfilmExec = 1;
    Return("README\xFF", {choose, Answer(other, "No")});
    Return("link", {Answer(run, "Yes")});
    ExpectStarted({run});
    Return("data.x", {Answer(view, "Yes")});
    ExpectStarted({view, data});
    ExpectAt("", "data.x");
}

TEST_F(Open, WhatCannotBeOpenedIsTold)
{
    Make({"data.x", "lost -> gone", "a.none"});
    files.File("secret", "", 0200);
    files.File("image", std::string(100, '\0'), 0755);
    Start();
    pGTable->ExtensionList.push_back({"none", ""});
    const auto expect = [this](const std::string& name, const std::string& status) {
        Return(name, {});
        EXPECT_EQ(StatusShown(), " " + status);
    };
    expect("lost", "The link " + files.At("lost") + " leads nowhere.");
    expect("secret", "You may not read " + files.At("secret") + ".");
    expect("a.none", "No program is set to open " + files.At("a.none") + ".");
    expect("image", "Cannot start " + files.At("image") + ": Exec format error");
    pGTable->ApplicationList.clear();
    const ScopedVariable path("PATH", home.Path().c_str());
    const std::string unknown = files.At("secret");
    Require(chmod(unknown.c_str(), 0600) == 0, "chmod");
    expect("secret", "Cannot start xdg-open: No such file or directory");
    const std::string opener = programs.Make("xdg-open", home);
    Return("secret", {});
    ExpectStarted({opener, unknown});
    std::filesystem::remove(unknown);
    expect("secret", unknown + " does not exist.");
    Steps("select data.x");
    EXPECT_EQ(StatusShown(), " data.x  0KByte");
}

TEST_F(Open, TheManualIsHandedToTheBrowser)
{
    const std::string browser = programs.Make("xdg-open");
    const ScopedVariable path("PATH", programs.directory.Path().c_str());
    Start();
    const std::string program = files.At("bin/");
    const ScopedVariable locale("LC_ALL", "de_AT.UTF-8");
    for (const char* const beside : {"help/fennick.htm", "help/de/fennick.htm", "share/fennick/Help/fennick.htm"}) {
        const std::string manual = files.File(beside);
        EXPECT_EQ(FindManual(program), manual);
    }
    files.File("share/fennick/Help/de/fennick.htm");
    const ScopedVariable languages("LANGUAGE", "en_GB:de");
    EXPECT_EQ(FindManual(program), files.At("share/fennick/Help/fennick.htm"));
    if (access("/usr/lib/netscape/start", X_OK) == 0) {
        GTEST_SKIP() << "this machine has a browser of its own to start";
    }
    Choose(MENU_MANUAL);
    const Names words = programs.Next();
    EXPECT_TRUE(words.size() == 2 && words[0] == browser && words[1].ends_with("/fennick.htm")) << Joined(words);
}

}  // namespace
