// The pickers: files, directories and applications, chosen by keys and by the pointer.

#include "panes/fnkselfile.h"

#include <gdk/gdkkeysyms.h>

#include "core/fnkraii.h"
#include "windowtest.h"

namespace {

class Pickers : public WindowTest {
protected:
    /// A widget of that kind anywhere below the widget.
    static GtkWidget* FindByType(GtkWidget* widget, GType type)
    {
        if (g_type_is_a(G_OBJECT_TYPE(widget), type)) {
            return widget;
        }
        GtkWidget* found = nullptr;
        if (GTK_IS_CONTAINER(widget)) {
            const std::unique_ptr<GList, decltype(&g_list_free)> children(
                gtk_container_get_children(GTK_CONTAINER(widget)), &g_list_free);
            for (GList* child = children.get(); child != nullptr && found == nullptr; child = child->next) {
                found = FindByType(GTK_WIDGET(child->data), type);
            }
        }
        return found;
    }
    static GtkTreeView* TreeOf(GtkWidget* dialog) { return GTK_TREE_VIEW(FindByType(dialog, GTK_TYPE_TREE_VIEW)); }
    static GtkWidget* EntryOf(GtkWidget* dialog) { return FindByType(dialog, GTK_TYPE_ENTRY); }
    static std::string SelectedIn(GtkWidget* dialog)
    {
        std::string path;
        GetTreeSelect(TreeOf(dialog), nullptr, &path);
        return path;
    }
    static void PressButton(GtkWidget* dialog, const char* label)
    {
        gtk_button_clicked(GTK_BUTTON(FindByText(dialog, label)));
    }
    /// A caller's window with something to fill in and a button to browse for it.
    struct Caller {
        explicit Caller(BrowseKind kind) : window(gtk_window_new(GTK_WINDOW_TOPLEVEL))
        {
            GtkWidget* const box = CreateHBox(window, false, 0, 0);
            if (kind == BROWSE_FILE) {
                entry = target = gtk_entry_new();
            } else {
                target = CreateComboBox(&entry, true, 0);
            }
            gtk_container_add(GTK_CONTAINER(box), target);
            button = CreateBrowseButton(box, target, kind);
            gtk_widget_show_all(window);
        }
        Caller(const Caller&) = delete;
        Caller& operator=(const Caller&) = delete;
        ~Caller() { gtk_widget_destroy(window); }

        std::string Browse(const std::function<void(GtkWidget*)>& act) const
        {
            DuringDialog([this] { gtk_button_clicked(GTK_BUTTON(button)); }, act);
            EXPECT_EQ(gtk_grab_get_current(), nullptr);
            return GetEntryBytes(entry);
        }

        GtkWidget* window;
        GtkWidget* target = nullptr;
        GtkWidget* entry = nullptr;
        GtkWidget* button = nullptr;
    };
};

TEST_F(Pickers, ADirectoryOfTheTreeGoesIntoTheEntryAndTheHistory)
{
    files.Directory("a/below");
    files.Directory("b\xFF");
    Start();
    Visit("a");
    const Caller caller(BROWSE_DIRECTORY);
    const std::string picked = caller.Browse([this](GtkWidget* dialog) {
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Select directory");
        EXPECT_EQ(SelectedIn(dialog), files.At("a/")) << "the main tree's";
        EXPECT_EQ(GetEntryBytes(EntryOf(dialog)), files.At("a/"));
        SetTreeSelectPath(TreeOf(dialog), files.At("b\xFF/"));
        EXPECT_EQ(GetEntryBytes(EntryOf(dialog)), files.At("b\xFF/"));
        PressButton(dialog, "OK");
    });
    EXPECT_EQ(picked, files.At("b\xFF/"));
    EXPECT_EQ(pGTable->DirHistory.front(), picked);
    SetEntryBytes(caller.entry, "");
    gtk_combo_box_set_active(GTK_COMBO_BOX(caller.target), 0);
    EXPECT_EQ(GetEntryBytes(caller.entry), picked);
    EXPECT_EQ(pGTable->CurrentDir, files.At("a/"));
    ExpectConsistent();
}

TEST_F(Pickers, TheDirectoryPickerStartsWhereTheEntryPoints)
{
    files.Directory("a/below");
    files.Directory("b");
    Start();
    Visit("a");
    const Caller caller(BROWSE_DIRECTORY);
    const History history = pGTable->DirHistory;
    const std::pair<std::string, std::string> cases[] = {{files.At("b"), files.At("b/")},
                                                         {files.At("a/below/gone/x"), files.At("a/below/")},
                                                         {"below", files.At("a/below/")},
                                                         {"/", files.At("a/")},
                                                         {files.At("../"), files.Path()}};
    for (const auto& [text, start] : cases) {
        SetEntryBytes(caller.entry, text);
        const auto close = text == "/" ? SendClose : +[](GtkWidget* dialog) { PressButton(dialog, "Cancel"); };
        const std::string left = caller.Browse([&, start = start](GtkWidget* dialog) {
            EXPECT_EQ(SelectedIn(dialog), start);
            close(dialog);
        });
        EXPECT_EQ(left, text) << "cancelled";
    }
    EXPECT_EQ(pGTable->DirHistory, history);
    ExpectConsistent();
}

TEST_F(Pickers, ATypedDirectoryIsGoneToByReturnAndTakenByOk)
{
    files.Directory("a/below");
    files.Directory("b");
    Start();
    const Caller caller(BROWSE_DIRECTORY);
    std::string picked = caller.Browse([this](GtkWidget* dialog) {
        gtk_widget_grab_focus(EntryOf(dialog));
        gtk_entry_set_text(GTK_ENTRY(EntryOf(dialog)), files.At("a/below").c_str());
        SendKey(dialog, GDK_KEY_Return);
        EXPECT_EQ(SelectedIn(dialog), files.At("a/below/"));
        EXPECT_EQ(GetEntryBytes(EntryOf(dialog)), files.At("a/below/"));
        SendKey(dialog, GDK_KEY_Tab);
        while (gtk_window_get_focus(GTK_WINDOW(dialog)) != FindByText(dialog, "OK")) {
            SendKey(dialog, GDK_KEY_Tab);
        }
        SendKey(dialog, GDK_KEY_Return);
    });
    EXPECT_EQ(picked, files.At("a/below/"));
    picked = caller.Browse([this](GtkWidget* dialog) {
        gtk_entry_set_text(GTK_ENTRY(EntryOf(dialog)), files.At("b").c_str());
        PressButton(dialog, "OK");
    });
    EXPECT_EQ(picked, files.At("b/"));
    // What is no directory in the tree is not taken for the one that was selected before.
    picked = caller.Browse([this](GtkWidget* dialog) {
        for (const std::string& wrong : {std::string("/"), files.At("a/missing"), std::string()}) {
            gtk_entry_set_text(GTK_ENTRY(EntryOf(dialog)), wrong.c_str());
            DuringDialogs([dialog] { PressButton(dialog, "OK"); }, {[](GtkWidget* box) { PressButton(box, "OK"); }});
            ASSERT_TRUE(gtk_widget_get_visible(dialog));
        }
        PressButton(dialog, "Cancel");
    });
    EXPECT_EQ(picked, files.At("b/"));
}

TEST_F(Pickers, AFileGoesIntoTheEntryAsItsBytes)
{
    home.File("seen.txt");
    home.File("\xFF.txt");
    Start();
    const Caller caller(BROWSE_FILE);
    SetEntryBytes(caller.entry, "before");
    const auto cancel = [](GtkWidget* dialog) { SendKey(dialog, GDK_KEY_Escape); };
    EXPECT_EQ(caller.Browse(cancel), "before");
    EXPECT_EQ(caller.Browse(SendClose), "before");
    const std::string picked = caller.Browse([this](GtkWidget* dialog) {
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "Select File");
        GtkFileChooser* const chooser = GTK_FILE_CHOOSER(dialog);
        const GlibPointer<char> folder(gtk_file_chooser_get_current_folder(chooser));
        EXPECT_EQ(std::string(folder.get()) + "/", home.Path());
        gtk_file_chooser_select_filename(chooser, home.At("\xFF.txt").c_str());
        EXPECT_TRUE(Await([chooser] { return GlibPointer<char>(gtk_file_chooser_get_filename(chooser)) != nullptr; }));
        PressButton(dialog, "OK");
    });
    EXPECT_EQ(picked, home.At("\xFF.txt"));
}

TEST_F(Pickers, AnApplicationIsChosenByKeysOrByADoubleClick)
{
    Start();
    GtkWidget* dialog = nullptr;
    std::string program = "before";
    EXPECT_EQ(SelectAppDlg(&dialog, &program), 0) << "nothing to choose from";
    EXPECT_EQ(SelectAppDlg(&dialog, nullptr), kArgumentError);
    EXPECT_EQ(SelectAppDlg(nullptr, &program), kArgumentError);
    pGTable->ApplicationList = {{"view", "xview"}, {"Zed", "/bin/z"}, {"\xFF", "\xFE"}, {"view", "other"}};
    const auto choose = [&](const std::function<void(GtkWidget*)>& act) {
        program = "before";
        DuringDialog([&] { EXPECT_EQ(SelectAppDlg(&dialog, &program), 0); }, act);
        EXPECT_EQ(dialog, nullptr);
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
        return program;
    };
    const auto keys = [](std::initializer_list<guint> pressed) {
        return [pressed = std::vector<guint>(pressed)](GtkWidget* box) {
            for (const guint key : pressed) {
                SendKey(box, key);
            }
        };
    };
    EXPECT_EQ(choose(keys({GDK_KEY_Return})), "before") << "Cancel";
    EXPECT_EQ(choose(keys({GDK_KEY_Down, GDK_KEY_Return})), "/bin/z") << "capitals first";
    EXPECT_EQ(choose(keys({GDK_KEY_Up, GDK_KEY_Return})), "\xFE");
    EXPECT_EQ(choose(keys({GDK_KEY_End, GDK_KEY_KP_Up, GDK_KEY_Return})), "xview") << "the first of that name";
    EXPECT_EQ(choose(keys({GDK_KEY_Down, GDK_KEY_Escape})), "before");
    EXPECT_EQ(choose(SendClose), "before");
    EXPECT_EQ(choose([](GtkWidget* box) {
                  PressButton(box, "OK");  // Nothing is selected yet.
                  ASSERT_NE(gtk_grab_get_current(), nullptr);
                  const TreePath path(gtk_tree_path_new_from_indices(1, -1));
                  gtk_tree_view_row_activated(TreeOf(box), path.get(), gtk_tree_view_get_column(TreeOf(box), 0));
                  gtk_tree_view_set_cursor(TreeOf(box), path.get(), nullptr, FALSE);
                  gtk_tree_view_row_activated(TreeOf(box), path.get(), gtk_tree_view_get_column(TreeOf(box), 0));
              }),
              "xview");
    ExpectConsistent();
}

}  // namespace
