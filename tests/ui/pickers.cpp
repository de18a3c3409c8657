// The pickers: directories and files, from a dialog that browses for them, and applications.

#include "panes/fnkselfile.h"

#include "acts.h"
#include "core/fnkraii.h"

namespace {

constexpr const char* kDirectory = "Symbolic link file name:";

class Pickers : public WindowTest {
protected:
    Pickers() { Make({"a/below/", "b\xFF/", "c/", ".hidden/", "link -> a/below"}); }

    static std::string SelectedIn(GtkWidget* dialog)
    {
        std::string path;
        GetTreeSelect(TreeOf(dialog), nullptr, &path);
        return path;
    }
    /// Browses for the field of the dialog for links, which says that text; what it says afterwards.
    static std::string Browse(const char* field, const std::string& text, const DialogActs& acts)
    {
        std::string result;
        Ask(MENU_SYMBOLIC_LINK, {[&](GtkWidget* dialog) {
                GtkWidget* const entry = FindNamed(dialog, field);
                SetEntryBytes(entry, text);
                GtkWidget* const combo = gtk_widget_get_ancestor(entry, GTK_TYPE_COMBO_BOX);
                GtkWidget* const box = gtk_widget_get_parent(combo != nullptr ? combo : entry);
                DuringDialogs([box] { PressButton("Browse...")(box); }, acts);
                result = GetEntryBytes(entry);
                if (combo != nullptr && result != text) {  // It is offered from now on.
                    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), 0);
                    EXPECT_EQ(GetEntryBytes(entry), result);
                }
                SendKey(dialog, GDK_KEY_Escape);
            }});
        return result;
    }
    /// Types over what the picker says.
    static DialogAct TypeText(const std::string& text, const DialogAct& then)
    {
        return [=](GtkWidget* dialog) {
            GtkWidget* const entry = FindNamed(dialog, "Select directory:");
            gtk_widget_grab_focus(entry);
            gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
            then(dialog);
        };
    }
};

TEST_F(Pickers, ADirectoryIsPickedFromTheTreeOrTyped)
{
    Start();
    Visit("a");
    // It starts where the entry points, or else where the main window is.
    const std::pair<std::string, std::string> cases[] = {
        {"", files.At("a/")}, {files.At("a/below/gone/x"), files.At("a/below/")}, {"below", files.At("a/below/")}};
    for (const auto& [text, start] : cases) {
        const auto look = [expected = start](GtkWidget* dialog) {
            EXPECT_EQ(SelectedIn(dialog), expected);
            PressButton("Cancel")(dialog);
        };
        EXPECT_EQ(Browse(kDirectory, text, {look}), text);
    }
    const std::string chosen = files.At("b\xFF/");
    const auto choose = [&](GtkWidget* dialog) {
        SetTreeSelectPath(TreeOf(dialog), chosen);
        EXPECT_EQ(GetEntryBytes(FindNamed(dialog, "Select directory:")), chosen);
        PressButton("OK")(dialog);
    };
    EXPECT_EQ(Browse(kDirectory, "", {choose}), chosen);
    EXPECT_EQ(pGTable->DirHistory, (History{chosen, files.Path()}));
    // Return goes to what is typed, and OK takes it.
    const auto go = [this](GtkWidget* dialog) {
        SendKey(dialog, GDK_KEY_Return);
        EXPECT_EQ(SelectedIn(dialog), files.At("a/below/"));
        PressButton("Cancel")(dialog);
    };
    EXPECT_EQ(Browse(kDirectory, "", {TypeText(files.At("a/below"), go)}), "");
    for (const auto& [typed, taken] : {std::pair("c", "c/"), {".hidden", ".hidden/"}, {"link", "a/below/"}}) {
        EXPECT_EQ(Browse(kDirectory, "", {TypeText(files.At(typed), PressButton("OK"))}), files.At(taken));
    }
    // What is no directory of the tree is not taken for the one selected before.
    const DialogAct ok = PressButton("OK");
    EXPECT_EQ(Browse(kDirectory, "before", {TypeText(files.At("a/missing"), ok), ok, PressButton("Cancel")}), "before");
    ExpectAt("a/");
}

TEST_F(Pickers, AFileGoesIntoTheEntryAsItsBytes)
{
    const std::string file = home.File("\xFF.txt");
    Start();
    EXPECT_EQ(Browse("Existing file name:", "before", {PressButton("Cancel")}), "before");
    const auto choose = [&file](GtkWidget* dialog) {
        GtkFileChooser* const chooser = GTK_FILE_CHOOSER(dialog);
        gtk_file_chooser_select_filename(chooser, file.c_str());
        EXPECT_TRUE(Await([&] { return GlibPointer<char>(gtk_file_chooser_get_filename(chooser)) != nullptr; }));
        EXPECT_LE(gtk_widget_get_allocated_width(dialog), gtk_widget_get_allocated_width(pMainW->MainWindow));
        EXPECT_LE(gtk_widget_get_allocated_height(dialog), gtk_widget_get_allocated_height(pMainW->MainWindow));
        PressButton("OK")(dialog);
    };
    EXPECT_EQ(Browse("Existing file name:", "", {choose}), file);
}

TEST_F(Pickers, AnApplicationIsChosenByKeys)
{
    Start();
    GtkWidget* dialog = nullptr;
    pGTable->ApplicationList = {{"view", "xview"}, {"Zed", "/bin/z"}, {"\xFF", "\xFE"}, {"view", "other"}};
    const std::pair<std::vector<guint>, const char*> cases[] = {{{GDK_KEY_Return}, "before"},
                                                                {{GDK_KEY_Down, GDK_KEY_Return}, "/bin/z"},
                                                                {{GDK_KEY_Up, GDK_KEY_Return}, "\xFE"},
                                                                {{GDK_KEY_End, GDK_KEY_KP_Up, GDK_KEY_Return}, "xview"},
                                                                {{GDK_KEY_End, GDK_KEY_Escape}, "before"}};
    for (const auto& [keys, chosen] : cases) {
        std::string program = "before";
        const auto press = [pressed = keys](GtkWidget* box) {
            std::for_each(pressed.begin(), pressed.end(), [box](guint key) { SendKey(box, key); });
        };
        DuringDialogs([&] { EXPECT_EQ(SelectAppDlg(&dialog, &program), 0); }, {press});
        EXPECT_EQ(program, chosen);
    }
}

}  // namespace
