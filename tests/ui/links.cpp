// Symbolic links, from the menu to what is on the disk.

#include <filesystem>

#include "acts.h"

namespace {

class Links : public WindowTest {
protected:
    static void MakeLink(const DialogActs& acts)
    {
        DuringDialogs([] { Choose(MENU_SYMBOLIC_LINK); }, acts);
    }
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

TEST_F(Links, TheTextIsWhatWasTypedButForASlashBehindDirectories)
{
    Make({"dir/file", "dir/sub/", "dir/bro\xFFken", "dangling -> nowhere"});
    Start();
    Visit("dir");
    SelectNames({"sub", "bro\xFFken"});
    EXPECT_FALSE(IsOffered(MENU_SYMBOLIC_LINK));
    SelectNames({"bro\xFFken"});
    MakeLink({EnterText("../link")});
    EXPECT_EQ(Target("link"), files.At("dir/bro\xFFken"));
    EXPECT_EQ(Joined(ListNames()), "..,dir,dangling,link");
    // Nothing is selected: the directory of the tree. The "/" behind a link is none of its name.
    Visit("dir");
    MakeLink({EnterText("../up/")});
    EXPECT_EQ(Target("up"), files.At("dir/"));
    EXPECT_EQ(pGTable->DirHistory, History{files.Path()});
    Visit("dir");
    const std::tuple<const char*, std::string, const char*, std::string> cases[] = {
        {"file", "../a", "a", "file"},
        {"dir//sub", files.At("b"), "b", "dir//sub/"},
        {"dangling", "c", "c", "dangling"},
        // What leads to something in its canonical form only is written so.
        {"dir/file/", "d", "d", files.At("dir/file")}};
    for (const auto& [existing, link, made, target] : cases) {
        MakeLink({Fill(existing, link)});
        EXPECT_EQ(Target(made), target);
        ExpectAt("");
    }
}

TEST_F(Links, NothingIsReplacedAndWhatIsWrongIsSaid)
{
    Make({"dir/", "dangling -> free", "file"});
    const Names before = files.Names();
    Start();
    const std::tuple<const char*, const char*, const char*> refused[] = {
        {"missing", "link", "The specified file does not exist."},
        {"file", "dir", "The specified directory already exists."},
        {"file", "dangling", "The specified file already exists."},
        {"file", "file/below", "Parent directory does not exist."}};
    DialogActs acts;
    for (const auto& [existing, link, message] : refused) {
        acts.insert(acts.end(), {Fill(existing, link), ReadBox(message)});
    }
    acts.push_back(PressButton("Cancel"));
    MakeLink(acts);
    EXPECT_EQ(files.Names(), before);
    EXPECT_EQ(Target("dangling"), "free");
    ExpectConsistent();
}

}  // namespace
