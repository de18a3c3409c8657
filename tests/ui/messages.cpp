// Message boxes and the progress dialog: what each answer means, and what cannot be touched
// meanwhile.

#include <gdk/gdkkeysyms.h>

#include <filesystem>

#include "kit/fnkmessage-box.h"
#include "engine/fnkmessage.h"
#include "kit/fnkprogress.h"
#include "windowtest.h"

namespace {

class Messages : public WindowTest {
protected:
    using Act = std::function<void(GtkWidget*)>;

    /// Opens a box and, once it is on the screen, does something to it.
    static Result Answer(const std::function<Result()>& ask, const Act& act)
    {
        Result result = RESULT_CANCEL;
        DuringDialog([&] { result = ask(); }, act);
        return result;
    }
    static Act Pressing(const char* label)
    {
        return [label](GtkWidget* box) { gtk_button_clicked(GTK_BUTTON(FindByText(box, label))); };
    }
    static Act Return()
    {
        return [](GtkWidget* box) { SendKey(box, GDK_KEY_Return); };
    }
    static Act Closing() { return SendClose; }
};

TEST_F(Messages, TheLastButtonIsReturnAndClosing)
{
    Start();
    const std::tuple<unsigned, const char*, Result, Result> cases[] = {
        {STYLE_ERROR, "OK", RESULT_OK, RESULT_OK},      {STYLE_QUESTION, "Yes", RESULT_OK, RESULT_CANCEL},
        {STYLE_SKIP, "Skip", RESULT_OK, RESULT_CANCEL}, {STYLE_DELETE_QUESTION, "Yes", RESULT_OK, RESULT_CANCEL},
        {0x40001, "OK", RESULT_OK, RESULT_CANCEL},      {0x10009, "Yes", RESULT_OK, RESULT_OK}};
    for (const auto& [style, first, pressed, fallback] : cases) {
        SCOPED_TRACE(style);
        const auto ask = [style = style] { return MessageBox("Title", "Two\nlines", style); };
        EXPECT_EQ(Answer(ask, Pressing(first)), pressed);
        const Act look = [](GtkWidget* box) {
            // The buttons stand as far from the edge as what is above them.
            GtkWidget* const last = gtk_window_get_focus(GTK_WINDOW(box));
            int right = 0;
            gtk_widget_translate_coordinates(last, box, gtk_widget_get_allocated_width(last), 0, &right, nullptr);
            EXPECT_GE(gtk_widget_get_allocated_width(box) - right, 10);
            SendKey(box, GDK_KEY_Return);
        };
        EXPECT_EQ(Answer(ask, look), fallback);
        EXPECT_EQ(Answer(ask, Closing()), fallback);
    }
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    ExpectConsistent();
}

TEST_F(Messages, DeletingADirectoryHasFourAnswers)
{
    Start();
    const auto ask = [] { return DeleteMessageBox("/some/dir/"); };
    const auto ticked = [](const char* label) -> Act {
        return [label](GtkWidget* box) {
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(FindByText(box, "Do the same for the rest")), TRUE);
            gtk_button_clicked(GTK_BUTTON(FindByText(box, label)));
        };
    };
    EXPECT_EQ(Answer(ask, Pressing("Yes")), RESULT_OK);
    EXPECT_EQ(Answer(ask, ticked("Yes")), RESULT_YES_ALL);
    EXPECT_EQ(Answer(ask, ticked("No")), RESULT_CANCEL);
    EXPECT_EQ(Answer(ask, ticked("Cancel")), RESULT_ABORT);
    EXPECT_EQ(Answer(ask, Return()), RESULT_ABORT);
    EXPECT_EQ(Answer(ask, Closing()), RESULT_ABORT);
}

TEST_F(Messages, ALongPathLosesItsMiddleAndNeverTheReason)
{
    Start();
    const std::string path = "/begin/" + std::string(1900, 'x') + "\xFF/end";
    const std::string text = FormatPathMessage("Cannot delete file %s\ncause:%s", path, ENOSPC);
    EXPECT_LT(text.size(), 400U);
    EXPECT_TRUE(g_utf8_validate(text.c_str(), -1, nullptr));
    EXPECT_NE(text.find("/begin/xxx"), std::string::npos);
    EXPECT_TRUE(text.ends_with(std::string("/end\ncause:") + g_strerror(ENOSPC))) << text;
    Answer([&] { return MessageBox("Error", text, STYLE_SKIP); },
           [](GtkWidget* box) {
               int width = 0;
               gtk_window_get_size(GTK_WINDOW(box), &width, nullptr);
               EXPECT_LT(width, 800);
               SendKey(box, GDK_KEY_Return);
           });
}

TEST_F(Messages, ANameThatIsBrokenGetsNoHyphens)
{
    Start();
    const std::string name(200, 'x');
    const Act expect_bare = [&name](GtkWidget* box) {
        int lines = 0;
        int glyphs = 0;
        for (GSList* at = pango_layout_get_lines_readonly(gtk_label_get_layout(GTK_LABEL(FindByText(box, name))));
             at != nullptr; at = at->next) {
            ++lines;
            for (GSList* run = static_cast<PangoLayoutLine*>(at->data)->runs; run != nullptr; run = run->next) {
                glyphs += static_cast<PangoGlyphItem*>(run->data)->glyphs->num_glyphs;
            }
        }
        EXPECT_GT(lines, 1);
        EXPECT_EQ(glyphs, name.size());
        SendKey(box, GDK_KEY_Return);
    };
    Answer([&] { return MessageBox("Error", name, STYLE_ERROR); }, expect_bare);
}

TEST_F(Messages, ANameFullOfLinesLeavesTheButtonsOnTheScreen)
{
    const std::string name = std::string(200, '\n') + "\r\u2028\u2029end";
    files.File(name);
    Start();
    SelectNames({name});
    const Act expect_small = [](GtkWidget* box) {
        int height = 0;
        gtk_window_get_size(GTK_WINDOW(box), nullptr, &height);
        EXPECT_LT(height, 400);
        EXPECT_NE(FindWidget(box,
                             [](GtkWidget* widget) {
                                 return GTK_IS_LABEL(widget) &&
                                        std::string(gtk_label_get_text(GTK_LABEL(widget))).find("\u21b5end") !=
                                            std::string::npos;
                             }),
                  nullptr);
        SendKey(box, GDK_KEY_Return);
    };
    const std::string text = FormatPathMessage("Cannot delete file %s\ncause:%s", files.At(name), ENOSPC);
    Answer([&] { return MessageBox("Error", text, STYLE_SKIP); }, expect_small);
    DuringDialog([] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_DELETE])); }, expect_small);
}

TEST_F(Messages, ABadPathIsSelectedToBeTypedAnew)
{
    Start();
    Type("/typed");
    const std::pair<PathStatus, const char*> cases[] = {{PATH_EMPTY, "Path is too short."},
                                                        {PATH_FILE, "The specified file already exists."},
                                                        {PATH_NULL, "Internal error."},
                                                        {static_cast<PathStatus>(9), "Internal error."},
                                                        {static_cast<PathStatus>(15), "Internal error."}};
    for (const auto& [status, message] : cases) {
        gtk_editable_select_region(GTK_EDITABLE(Entry()), 0, 0);
        bool found = false;
        Answer(
            [this, status = status] {
                FileExistMessageBox(status, Entry());
                return RESULT_OK;
            },
            [&found, message = message](GtkWidget* box) {
                found = FindByText(box, message) != nullptr;
                SendKey(box, GDK_KEY_Return);
            });
        EXPECT_TRUE(found) << message;
        int begin = 0;
        int end = 0;
        EXPECT_TRUE(gtk_editable_get_selection_bounds(GTK_EDITABLE(Entry()), &begin, &end));
        EXPECT_EQ(end - begin, 6);
    }
}

class Progress : public Messages {
protected:
    std::vector<std::string> MakeItems()
    {
        files.File("tree/a");
        files.File("tree/below/b");
        files.File("tree/below/c");
        files.Directory("tree/empty");
        files.Link("tree/link", "/");
        files.File("single");
        return {files.At("tree/"), files.At("single")};
    }
    static double Fraction() { return gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(pGTable->ProgressBar)); }
};

TEST_F(Progress, CountsWhatIsNoDirectoryAndEndsByItself)
{
    const std::vector<std::string> items = MakeItems();
    Start();
    SetupProgress(items, OPERATION_DELETE);
    ASSERT_NE(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(pGTable->ProgressTotal, 5);
    EXPECT_NE(FindByText(pGTable->ProgressDlg, "File deleting..."), nullptr);
    for (int step = 1; step < 5; ++step) {
        EXPECT_EQ(UpdateProgress(), 0);
        ASSERT_NE(pGTable->ProgressDlg, nullptr);
        // The bar follows at the next picture, not at every step.
        const gint64 deadline = g_get_monotonic_time() + 5 * G_USEC_PER_SEC;
        while (Fraction() != step / 5.0 && g_get_monotonic_time() < deadline) {
            EXPECT_FALSE(KeepPainting());
        }
        EXPECT_EQ(Fraction(), step / 5.0);
        // The window below takes no key.
        SendKey(pMainW->MainWindow, GDK_KEY_Tab);
        EXPECT_EQ(CountListSelection(), 0U);
    }
    EXPECT_EQ(UpdateProgress(), 0);
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(UpdateProgress(), 0) << "one more step than was counted";
    EXPECT_NE(gtk_grab_get_current(), nullptr) << "the command has not ended yet";
    EndProgress();
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    ExpectConsistent();
}

TEST_F(Progress, IsNothingWhileTheStepsAreStillCounted)
{
    const std::string empty = files.Directory("empty") + "/";
    Start();
    SetupProgress({empty}, OPERATION_COPY);
    ASSERT_EQ(pGTable->ProgressTotal, 0);
    static double painted;
    painted = -1;
    const auto look = [](gpointer) -> gboolean {
        painted = Fraction();
        return G_SOURCE_REMOVE;
    };
    g_idle_add(look, nullptr);
    const gint64 deadline = g_get_monotonic_time() + 5 * G_USEC_PER_SEC;
    while (painted < 0 && g_get_monotonic_time() < deadline) {
        EXPECT_FALSE(KeepPainting());
    }
    EXPECT_EQ(painted, 0.0);
    EndProgress();
}

TEST_F(Progress, ABoxStaysAboveTheWindowThatItInterrupts)
{
    const std::vector<std::string> items = MakeItems();
    Start();
    GtkWindow* below = nullptr;
    const auto ask = [] { return MessageBox("Error", "Text", STYLE_SKIP); };
    const Act look = [&below](GtkWidget* box) {
        below = gtk_window_get_transient_for(GTK_WINDOW(box));
        SendKey(box, GDK_KEY_Return);
    };
    Answer(ask, look);
    EXPECT_EQ(below, Window());
    SetupProgress(items, OPERATION_COPY);
    Answer(ask, look);
    EXPECT_EQ(below, GTK_WINDOW(pGTable->ProgressDlg));
    EndProgress();
    // A command that shows no progress holds the input with a window that is never seen.
    pGTable->ShowProgress = 0;
    SetupProgress(items, OPERATION_COPY);
    Answer(ask, look);
    EXPECT_EQ(below, Window());
    EndProgress();
}

TEST_F(Progress, CancelIsToldOnceAtTheNextStep)
{
    const std::vector<std::string> items = MakeItems();
    Start();
    for (const bool by_closing : {false, true}) {
        SetupProgress(items, OPERATION_COPY);
        EXPECT_EQ(UpdateProgress(), 0);
        (by_closing ? Closing() : Pressing("Cancel"))(pGTable->ProgressDlg);
        EXPECT_TRUE(KeepPainting());
        EXPECT_EQ(static_cast<unsigned>(UpdateProgress()), RESULT_CANCEL);
        EXPECT_EQ(pGTable->ProgressDlg, nullptr);
        EXPECT_FALSE(KeepPainting());
        EXPECT_EQ(UpdateProgress(), 0);
        EndProgress();
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
    }
}

TEST_F(Progress, CancelIsHeardUpToTheLastStep)
{
    const std::string last = files.File("last");
    Start();
    SetupProgress({last}, OPERATION_COPY);
    const auto press_cancel = [](gpointer) -> gboolean {
        Pressing("Cancel")(pGTable->ProgressDlg);
        return G_SOURCE_REMOVE;
    };
    g_idle_add(press_cancel, nullptr);
    EXPECT_EQ(static_cast<unsigned>(UpdateProgress()), RESULT_CANCEL);
    EndProgress();
}

TEST_F(Progress, WithoutADialogTheWindowStillTakesNoInput)
{
    const std::vector<std::string> items = MakeItems();
    Start();
    pGTable->ShowProgress = 0;
    SetupProgress(items, OPERATION_MOVE);
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    const int row = static_cast<int>(RowOf("single"));
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    Click(MainList(), path.get());
    EXPECT_EQ(CountListSelection(), 0U);
    EXPECT_EQ(UpdateProgress(), 0);
    EndProgress();
    Click(MainList(), path.get());
    EXPECT_EQ(CountListSelection(), 1U);
}

class DeleteCommand : public Messages {
protected:
    static void Delete() { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_DELETE])); }
    /// The command, and what each of its boxes is answered in turn.
    static void DeleteAnswering(const std::vector<const char*>& labels)
    {
        static std::vector<const char*> left;
        left = labels;
        // Looks again and again, as the boxes come and go while the command runs.
        const guint source = g_timeout_add(
            10,
            [](gpointer) -> gboolean {
                GtkWidget* const box = gtk_grab_get_current();
                GtkWidget* const button = box == nullptr || left.empty() || box == pGTable->ProgressDlg
                                              ? nullptr
                                              : FindByText(box, left.front());
                if (button != nullptr) {
                    left.erase(left.begin());
                    gtk_button_clicked(GTK_BUTTON(button));
                }
                return G_SOURCE_CONTINUE;
            },
            nullptr);
        Delete();
        g_source_remove(source);
        EXPECT_TRUE(left.empty()) << left.front() << " was never asked for";
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
    }
    static bool IsDeleteOffered()
    {
        GtkWidget* const menu = gtk_widget_get_parent(pMainW->MenuItem[MENU_DELETE]);
        gtk_menu_item_activate(GTK_MENU_ITEM(gtk_menu_get_attach_widget(GTK_MENU(menu))));
        return gtk_widget_get_sensitive(pMainW->MenuItem[MENU_DELETE]) != FALSE;
    }
};

TEST_F(DeleteCommand, DeletesWhatIsSelectedAndShowsWhatIsLeft)
{
    files.File("a");
    files.File("b");
    files.File("tree/x");
    files.File("tree/below/y");
    files.File("keep");
    Start();
    EXPECT_FALSE(IsDeleteOffered()) << "the top directory";
    SelectNames({"a", "tree"});
    EXPECT_TRUE(IsDeleteOffered());
    DeleteAnswering({"No"});
    EXPECT_EQ(ListNames(), (Names{"..", "tree", "a", "b", "keep"}));
    EXPECT_EQ(CountListSelection(), 2U);
    DeleteAnswering({"Yes", "Cancel"});
    EXPECT_TRUE(std::filesystem::exists(files.At("tree/below/y")));
    ExpectConsistent();
    SelectNames({"tree", "b"});
    DeleteAnswering({"Yes", "Yes"});
    EXPECT_FALSE(std::filesystem::exists(files.At("tree")));
    EXPECT_FALSE(std::filesystem::exists(files.At("b")));
    EXPECT_TRUE(std::filesystem::exists(files.At("keep")));
    ExpectConsistent();
}

TEST_F(DeleteCommand, TheDirectoryThatIsShownLeadsToItsParent)
{
    files.File("up/shown/file");
    Start();
    pGTable->ConfilmDel = 0;
    Visit("up/shown");
    ASSERT_TRUE(IsDeleteOffered());
    DeleteAnswering({"No"});
    EXPECT_EQ(pGTable->CurrentDir, files.At("up/shown/")) << "it was declined";
    ExpectConsistent();
    DeleteAnswering({"Yes"});
    EXPECT_EQ(pGTable->CurrentDir, files.At("up/"));
    EXPECT_FALSE(std::filesystem::exists(files.At("up/shown")));
    ExpectConsistent();
    // Without questions and without a dialog.
    pGTable->ShowProgress = 0;
    DeleteAnswering({});
    EXPECT_EQ(pGTable->CurrentDir, files.Path());
    ExpectConsistent();
}

TEST_F(DeleteCommand, CancelWhileTheFilesAreCountedDeletesNothing)
{
    files.File("a");
    files.File("b");
    Start();
    pGTable->ConfilmDel = 0;
    SelectNames({"a", "b"});
    // Its turn comes when the dialog is painted for the first time, before anything is counted.
    g_idle_add(
        [](gpointer) -> gboolean {
            EXPECT_EQ(pGTable->ProgressTotal, 0);
            gtk_button_clicked(GTK_BUTTON(FindByText(pGTable->ProgressDlg, "Cancel")));
            return G_SOURCE_REMOVE;
        },
        nullptr);
    Delete();
    EXPECT_EQ(files.Names(), (Names{"a", "b"}));
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    ExpectConsistent();
}

}  // namespace
