// Opening entries: by a double click, by keys and by the menu.

#include "acts.h"
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
    void Return(const std::string& name, const DialogActs& acts = {})
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
    EXPECT_EQ(programs.Next(), (Names{view, path}));
    Press("Return");
    EXPECT_EQ(programs.Next(), (Names{view, path}));
    SelectNames({"a \xFF.x", "b.x"});
    EXPECT_FALSE(IsOffered(MENU_OPEN));
    Press("F3");
    SelectNames({"a \xFF.x"});
    Press("F3");  // It follows the selection of now, not of when the menu was last opened.
    EXPECT_EQ(programs.Next(), (Names{view, path})) << "and nothing before";
    Choose(MENU_OPEN);
    EXPECT_EQ(programs.Next(), (Names{view, path}));
    SelectNames({"a \xFF.x", "b.x"});
    Press("F3");
    const std::string fennick = programs.Make("fennick");
    const ScopedVariable search("PATH", (programs.directory.Path() + ":/usr/bin:/bin").c_str());
    Choose(MENU_NEW_WINDOW);
    EXPECT_EQ(programs.Next(), Names{fennick}) << "and nothing before";
    ExpectAt("", "a \xFF.x,b.x");
}

TEST_F(Open, DirectoriesAreEnteredAndNodesExpanded)
{
    Make({"a/below/file", "b/", "link -> a/../a/below", "loop -> loop", "turned.x"});
    Start();
    EXPECT_FALSE(IsOffered(MENU_OPEN)) << "the root is expanded";
    Steps("node a");
    EXPECT_TRUE(IsOffered(MENU_OPEN));
    Steps("key F3 = a/");
    EXPECT_TRUE(IsExpanded(files.At("a/")));
    EXPECT_FALSE(IsOffered(MENU_OPEN));
    Steps("node b = b/");
    EXPECT_FALSE(IsOffered(MENU_OPEN)) << "nothing to expand";
    Steps(
        "visit .; select loop; key Return = . loop; select link; key Return = a/below/ file;"
        "visit .; select a; key F3 = a/; visit .; remove turned.x; make turned.x/; select turned.x; key Return");
    EXPECT_EQ(pGTable->CurrentDir, files.At("turned.x/"));
    ExpectConsistent(DISK_CHANGED);
}

TEST_F(Open, WhatLeadsOutOfTheRootOrIsTooLongIsRefused)
{
    const ScratchDirectory outside;
    files.Link("out", outside.Path());
    files.Link("dots", "../" + std::filesystem::path(outside.Path()).parent_path().filename().string() + "/");
    std::string deep;
    while (files.At(deep).size() < kMaxPathBytes - 200) {
        deep += std::string(100, 'd') + "/";
    }
    const std::string file(210, 'f');
    const std::string directory(210, 'd');
    Make({deep + file, deep + directory + "/"});
    Start();
    for (const char* const name : {"out", "dots"}) {
        Return(name, {ReadBox("The specified path cannot be operated.")});
        ExpectAt("", name);
    }
    Visit(deep);
    for (const std::string& name : {file, directory}) {
        SelectNames({name});
        for (const MenuEntry entry :
             {MENU_OPEN, MENU_SYMBOLIC_LINK, MENU_COPY, MENU_MOVE, MENU_DELETE, MENU_PROPERTY}) {
            Ask(entry, {ReadBox("Path is too long.")});
        }
    }
    EXPECT_EQ(pGTable->CurrentDir, files.At(deep));
    EXPECT_EQ(files.Names(deep), (Names{directory, file}));
}

TEST_F(Open, ProgramsAreAskedForAndChosen)
{
    const std::string data = files.File("data.x");
    const std::string unknown = files.File("README\xFF");
    const std::string run = programs.Make("run", files);
    files.Link("link", "run");
    Start();
    const auto cancel = [](GtkWidget* box) { SendKey(box, GDK_KEY_Return); };
    const auto choose = [](GtkWidget* box) {
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(box)), "Select application");
        SendKey(box, GDK_KEY_Down);
        PressButton("OK")(box);
    };
    Return("README\xFF", {cancel});
    Return("README\xFF", {choose});
    EXPECT_EQ(programs.Next(), (Names{other, unknown})) << "and nothing before";
    pGTable->ConfilmExec = 1;
    Return("README\xFF", {choose, Answer(other, "No")});
    Return("data.x", {Answer(view, "No")});
    Return("run", {Answer(run, "No")});
    Return("link", {Answer(run, "Yes")});
    EXPECT_EQ(programs.Next(), Names{run}) << "and nothing before";
    Return("data.x", {Answer(view, "Yes")});
    EXPECT_EQ(programs.Next(), (Names{view, data}));
    ExpectAt("", "data.x");
}

}  // namespace
