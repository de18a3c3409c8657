// Symbolic links, from the menu to what is on the disk.

#include <filesystem>

#include "acts.h"

namespace {

class Links : public WindowTest {
protected:
    /// Types both texts and presses OK.
    static DialogAct Fill(const std::string& existing, const std::string& link)
    {
        return [=](GtkWidget* dialog) {
            gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, "Existing file name:")), existing.c_str());
            gtk_entry_set_text(GTK_ENTRY(FindNamed(dialog, "Symbolic link file name:")), link.c_str());
            PressButton("OK")(dialog);
        };
    }
    std::string Target(const std::string& name) const { return std::filesystem::read_symlink(files.At(name)); }
};

TEST_F(Links, WhatIsSelectedIsLinkedTo)
{
    Make({"src/", "bro\xFFken", "place/"});
    Start();
    SelectNames({"src", "bro\xFFken"});
    EXPECT_FALSE(IsOffered(MENU_SYMBOLIC_LINK));
    SelectNames({"bro\xFFken"});
    Ask(MENU_SYMBOLIC_LINK, {EnterText("place/link")});
    EXPECT_EQ(Target("place/link"), files.At("bro\xFFken"));
    EXPECT_EQ(Joined(ListNames()), "..,link");
    ExpectAt("place/");
    // Nothing is selected: the directory of the tree. The "/" behind a link is none of its name.
    Ask(MENU_SYMBOLIC_LINK, {EnterText("../up/")});
    EXPECT_EQ(Target("up"), files.At("place/"));
    EXPECT_EQ(pGTable->DirHistory, History{files.Path()});
    ExpectAt("");
}

TEST_F(Links, TheTextIsWhatWasTypedButForASlashBehindDirectories)
{
    Make({"dir/file", "dir/sub/", "dangling -> nowhere", "to-dir -> dir"});
    Start();
    Visit("dir");
    const std::tuple<const char*, std::string, const char*, std::string> cases[] = {
        {"file", "../a", "a", "file"},
        {"dir//sub", files.At("b"), "b", "dir//sub/"},
        {"dir", "c", "c", "dir/"},
        {"dangling", "d", "d", "dangling"},
        {"to-dir", "e", "e", "to-dir"},
        // What leads to something in its canonical form only is written so.
        {"dir/file/", "f", "f", files.At("dir/file")},
    };
    for (const auto& [existing, link, made, target] : cases) {
        Ask(MENU_SYMBOLIC_LINK, {Fill(existing, link)});
        EXPECT_EQ(Target(made), target);
        ExpectAt("");
    }
}

TEST_F(Links, NothingIsReplacedAndWhatIsWrongIsSaid)
{
    Make({"dir/", "dangling -> free", "same -> dir/same"});
    files.File("file", "kept");
    const Names before = files.Names();
    Start();
    const std::tuple<const char*, const char*, const char*> refused[] = {
        {"missing", "link", "The specified file does not exist."},
        {"", "link", "Path is too short."},
        {"no/such", "link", "Path is inaccurate."},
        {"/no-such-file-outside", "link", "The specified path cannot be operated."},
        {"file", "", "Path is too short."},
        {"file", "dir", "The specified directory already exists."},
        {"dir", "file", "The specified file already exists."},
        {"file", "dangling", "The specified file already exists."},
        {"file", "same", "The specified file already exists."},
        {"file", "no/such", "Path is inaccurate."},
        {"file", "file/below", "Parent directory does not exist."},
        {"file", "/link", "The specified path cannot be operated."},
    };
    DialogActs acts;
    for (const auto& [existing, link, message] : refused) {
        acts.insert(acts.end(), {Fill(existing, link), ReadBox(message)});
    }
    acts.push_back(PressButton("Cancel"));
    Ask(MENU_SYMBOLIC_LINK, acts);
    const OrdinaryUser user({&files, &home});
    files.SetMode("dir", 0555);
    Ask(MENU_SYMBOLIC_LINK,
        {Fill("file", "dir/link"),
         ReadBox(std::string("Symbolic link has not been created.\ncause:") + g_strerror(EACCES)), SendClose});
    EXPECT_EQ(files.Names(), before);
    EXPECT_EQ(files.Names("dir"), Names());
    EXPECT_EQ(files.Contents("file"), "kept");
    EXPECT_EQ(Target("dangling"), "free");
    ExpectConsistent();
}

}  // namespace
