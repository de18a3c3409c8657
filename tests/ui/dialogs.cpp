// The widget kit: dialogs and how they run, drop-downs that hold bytes.

#include "windowtest.h"

namespace {

class Dialogs : public WindowTest {
protected:
    struct Dialog {
        GtkWidget* window = nullptr;
        GtkWidget* vbox = nullptr;
        GtkWidget* ok = nullptr;
        GtkWidget* cancel = nullptr;
        int ok_clicks = 0;
        int cancel_clicks = 0;
    };
    static void Build(Dialog& dialog)
    {
        const auto count = +[](GtkWidget*, gpointer clicks) { ++*static_cast<int*>(clicks); };
        dialog.window = CreateNormalDialogBox(&dialog.vbox, 200, 100, 5);
        ASSERT_EQ(CreateDlgButtonBox(dialog.window, &dialog.ok, &dialog.cancel, CLOSING_WIRED), 0);
        g_signal_connect(dialog.ok, "clicked", G_CALLBACK(count), &dialog.ok_clicks);
        g_signal_connect(dialog.ok, "clicked", G_CALLBACK(on_CancelButton_clicked), nullptr);
        g_signal_connect(dialog.cancel, "clicked", G_CALLBACK(count), &dialog.cancel_clicks);
    }
    /// Runs a new dialog, and what is to be done while it is open, as soon as it is.
    Dialog Run(GtkWidget* parent, const std::function<void(Dialog&)>& meanwhile)
    {
        Dialog dialog;
        Build(dialog);
        struct Visit {
            Dialog& dialog;
            const std::function<void(Dialog&)>& meanwhile;
        } visit{dialog, meanwhile};
        RunUntilQuit([&] {
            g_idle_add(
                [](gpointer data) -> gboolean {
                    auto* const now = static_cast<Visit*>(data);
                    EXPECT_TRUE(Await([now] { return gtk_window_is_active(GTK_WINDOW(now->dialog.window)) != FALSE; }));
                    now->meanwhile(now->dialog);
                    return G_SOURCE_REMOVE;
                },
                &visit);
            ModalMainLoop(dialog.window, parent);
            gtk_main_quit();
        });
        return dialog;
    }
};

TEST_F(Dialogs, ReturnPressesCancelAndTheParentIsInsensitiveMeanwhile)
{
    Start();
    GtkWidget* const parent = pMainW->MainWindow;
    const Dialog dialog = Run(parent, [&](Dialog& open) {
        EXPECT_FALSE(gtk_widget_is_sensitive(pMainW->FileList));
        EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(open.window)));
        EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(open.window)), open.cancel);
        EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(open.window)), open.cancel);
        // A key for the window below goes to the dialog.
        SendKey(pMainW->MainWindow, GDK_KEY_Tab);
        EXPECT_EQ(CountListSelection(), 0U);
        gtk_widget_grab_focus(open.cancel);
        SendKey(open.window, GDK_KEY_Return);
    });
    EXPECT_EQ(dialog.cancel_clicks, 1);
    EXPECT_EQ(dialog.ok_clicks, 0);
    EXPECT_TRUE(gtk_widget_is_sensitive(parent));
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    ExpectConsistent();
}

TEST_F(Dialogs, ClosingIsCancelling)
{
    Start();
    GtkWidget* seen = nullptr;
    const Dialog dialog = Run(pMainW->MainWindow, [&](Dialog& open) {
        seen = open.window;
        g_object_add_weak_pointer(G_OBJECT(seen), reinterpret_cast<gpointer*>(&seen));
        SendClose(open.window);
        EXPECT_NE(seen, nullptr) << "the handlers still need it";
    });
    EXPECT_EQ(dialog.cancel_clicks, 1);
    EXPECT_EQ(dialog.ok_clicks, 0);
    EXPECT_EQ(seen, nullptr);
}

TEST_F(Dialogs, ADialogOverADialogEndsAlone)
{
    files.File("a");
    Start();
    bool inner_done = false;
    const Dialog outer = Run(pMainW->MainWindow, [&](Dialog& open) {
        Dialog inner;
        Build(inner);
        g_idle_add(
            [](gpointer button) -> gboolean {
                gtk_button_clicked(GTK_BUTTON(button));
                return G_SOURCE_REMOVE;
            },
            inner.ok);
        ModalMainLoop(inner.window, nullptr);
        inner_done = inner.ok_clicks == 1 && inner.cancel_clicks == 0;
        EXPECT_EQ(open.cancel_clicks + open.ok_clicks, 0);
        EXPECT_EQ(gtk_grab_get_current(), open.window);
        EXPECT_FALSE(gtk_widget_is_sensitive(pMainW->MainWindow));
        gtk_button_clicked(GTK_BUTTON(open.ok));
    });
    EXPECT_TRUE(inner_done);
    EXPECT_EQ(outer.ok_clicks, 1);
    EXPECT_TRUE(gtk_widget_is_sensitive(pMainW->MainWindow));
    Press(GDK_KEY_Tab);
    EXPECT_EQ(SelectedNames(), Names{"a"});
}

TEST_F(Dialogs, OneButtonIsTheDefaultAndAMissingArgumentIsAnError)
{
    Start();
    GtkWidget* vbox = nullptr;
    GtkWidget* ok = nullptr;
    GtkWidget* const window = CreateNormalDialogBox(&vbox, 0, 0, 5);
    EXPECT_EQ(CreateDlgButtonBox(window, &ok, nullptr, CLOSING_WIRED), 0);
    EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(window)), ok);
    gtk_widget_show(window);
    RunUntilQuit([&] { SendClose(window); });
    EXPECT_TRUE(GTK_IS_WINDOW(window));
    gtk_widget_destroy(window);
    EXPECT_EQ(CreateDlgButtonBox(nullptr, &ok, nullptr, CLOSING_WIRED), kWidgetError);
    EXPECT_EQ(CreateDialogBox(nullptr, 1, 1), nullptr);
    EXPECT_EQ(CreateNormalDialogBox(nullptr, 1, 1, 1), nullptr);
    EXPECT_EQ(CreateIconDialogBox(&vbox, Picture(), 1, 1, 1), nullptr);
    EXPECT_EQ(CreateNotebookDialogBox(nullptr, 1, 1), nullptr);
    for (auto* const builder : {CreateHandleBox, CreateSeparator}) {
        EXPECT_EQ(builder(nullptr), nullptr);
    }
    EXPECT_EQ(CreateVBox(nullptr, 0, 0), nullptr);
    EXPECT_EQ(CreateHBox(nullptr, false, 0, 0), nullptr);
    EXPECT_EQ(CreateLabel(nullptr, "text"), nullptr);
    EXPECT_EQ(CreateTabLabel(nullptr, 0, "text"), nullptr);
    EXPECT_EQ(CreatePixmap(Picture()), nullptr);
    ModalMainLoop(nullptr, nullptr);
}

TEST_F(Dialogs, ADropDownKeepsTheBytesOfItsItems)
{
    Start();
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, 10);
    g_object_ref_sink(combo);
    ASSERT_EQ(entry, ComboEntry(combo));
    const History items = {"/\xFF/", "/\xFE/", "plain"};
    gtk_entry_set_text(GTK_ENTRY(entry), "typed");
    SetComboStrings(combo, items);
    EXPECT_EQ(GetEntryBytes(entry), "typed") << "new items leave the text alone";
    EXPECT_FALSE(IsComboString(combo));
    for (std::size_t i = 0; i < items.size(); ++i) {
        gtk_combo_box_set_active(GTK_COMBO_BOX(combo), static_cast<int>(i));
        EXPECT_EQ(GetEntryBytes(entry), items[i]);
        EXPECT_TRUE(IsComboString(combo));
    }
    SetComboStrings(combo, {"other"});
    EXPECT_EQ(GetEntryBytes(entry), "plain");
    EXPECT_FALSE(IsComboString(combo));
    SetEntryBytes(entry, "/\xFF");
    gtk_entry_set_text(GTK_ENTRY(entry), "/x");
    EXPECT_EQ(GetEntryBytes(entry), "/x");

    History history = {"a"};
    AddHistoryListC(combo, history);
    EXPECT_EQ(history, (History{"/x", "a"}));
    SetEntryBytes(entry, "");
    AddHistoryListC(combo, history);
    AddHistoryListC(nullptr, history);
    EXPECT_EQ(history.size(), 2U);
    gtk_widget_destroy(combo);
    g_object_unref(combo);
}

}  // namespace
