// Message boxes and the progress dialog: what each answer means, and what cannot be touched
// meanwhile.

#include "acts.h"
#include "fnkmessage-box.h"
#include "fnkmessage.h"
#include "fnkprogress.h"

namespace {

class Messages : public WindowTest {
protected:
    static Result Answer(const std::function<Result()>& ask, const DialogAct& act)
    {
        Result result = RESULT_DONE;
        DuringDialogs([&] { result = ask(); }, {act});
        return result;
    }
};

TEST_F(Messages, ReturnAndClosingPressTheLastButton)
{
    Start();
    const std::tuple<unsigned, const char*, Result, Result> cases[] = {
        {STYLE_ERROR, "OK", RESULT_OK, RESULT_OK},      {STYLE_QUESTION, "Yes", RESULT_OK, RESULT_CANCEL},
        {STYLE_SKIP, "Skip", RESULT_OK, RESULT_CANCEL}, {STYLE_DELETE_QUESTION, "Yes", RESULT_OK, RESULT_CANCEL},
        {0x40001, "OK", RESULT_OK, RESULT_CANCEL},      {0x10009, "Yes", RESULT_OK, RESULT_OK}};
    for (const auto& [style, first, pressed, last] : cases) {
        const auto ask = [style = style] { return MessageBox("Title", "Two\nlines", style); };
        EXPECT_EQ(Answer(ask, PressButton(first)), pressed) << style;
        EXPECT_EQ(Answer(ask, [](GtkWidget* box) { SendKey(box, GDK_KEY_Return); }), last) << style;
        EXPECT_EQ(Answer(ask, SendClose), last) << style;
    }
    const auto ask = [] { return DeleteMessageBox("/some/dir/"); };
    EXPECT_EQ(Answer(ask, [](GtkWidget* box) { SendKey(box, GDK_KEY_Return); }), RESULT_ABORT);
    EXPECT_EQ(Answer(ask, SendClose), RESULT_ABORT);
    const std::tuple<const char*, int, Result> answers[] = {
        {"Yes", 0, RESULT_OK},     {"No", 0, RESULT_CANCEL}, {"Cancel", 0, RESULT_ABORT}, {"Yes", 1, RESULT_YES_ALL},
        {"No", 1, RESULT_CANCEL}, {"Yes", 2, RESULT_OK},    {"Cancel", 1, RESULT_ABORT}};
    for (const auto& [button, ticks, result] : answers) {
        EXPECT_EQ(Answer(ask,
                         [&, button = button, ticks = ticks](GtkWidget* box) {
                             for (int i = 0; i < ticks; ++i) {
                                 PressButton("Do the same for the rest")(box);
                             }
                             PressButton(button)(box);
                         }),
                  result)
            << button << ticks;
    }
    ExpectConsistent();
}

TEST_F(Messages, ALongNameNeverHidesTheReasonOrTheButtons)
{
    Start();
    const std::string reason = std::string("\ncause:") + g_strerror(ENOSPC);
    for (const std::string& name : {std::string(1900, 'x') + "\xFF", std::string(200, '\n') + "\r\u2028\u2029"}) {
        const std::string text = FormatPathMessage("Cannot delete file %s\ncause:%s", "/begin/" + name + "end", ENOSPC);
        EXPECT_TRUE(g_utf8_validate(text.c_str(), -1, nullptr));
        EXPECT_NE(text.find("/begin/"), std::string::npos);
        EXPECT_TRUE(text.ends_with("end" + reason)) << text;
        Answer([&] { return MessageBox("Error", text, STYLE_SKIP); },
               [](GtkWidget* box) {
                   int width = 0;
                   int height = 0;
                   gtk_window_get_size(GTK_WINDOW(box), &width, &height);
                   EXPECT_TRUE(width < 800 && height < 400) << width << " x " << height;
                   SendClose(box);
               });
    }
}

class Progress : public Messages {
protected:
    void SetUp() override
    {
        for (const char* const name : {"tree/a", "tree/below/b", "tree/below/c", "single"}) {
            files.File(name);
        }
        files.Directory("tree/empty");
        files.Link("tree/link", "/");
        Start();
    }
    /// Starts a command of five steps.
    void Setup(OperationKind kind) { SetupProgress({files.At("tree/"), files.At("single")}, kind); }
    static double Fraction() { return gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(pGTable->ProgressBar)); }
    /// The bar follows at the next painting, not at every step.
    static bool AwaitPainting(const std::function<bool()>& condition)
    {
        const gint64 deadline = g_get_monotonic_time() + 20 * G_USEC_PER_SEC;
        while (!condition() && g_get_monotonic_time() < deadline) {
            EXPECT_FALSE(KeepPainting());
        }
        return condition();
    }
    /// A click into the window below does nothing.
    void ExpectInputHeld()
    {
        const TreePath row(gtk_tree_path_new_from_indices(static_cast<int>(RowOf("single")), -1));
        Click(MainList(), row.get());
        SendKey(pMainW->MainWindow, GDK_KEY_Tab);
        EXPECT_EQ(SelectedNames(), Names());
    }
};

TEST_F(Progress, CountsWhatIsNoDirectoryAndEndsByItself)
{
    Setup(OPERATION_DELETE);
    ASSERT_NE(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(pGTable->ProgressTotal, 5);
    EXPECT_NE(FindByText(pGTable->ProgressDlg, "File deleting..."), nullptr);
    EXPECT_EQ(Fraction(), 0.0);
    for (int step = 1; step < 5; ++step) {
        EXPECT_EQ(UpdateProgress(), 0);
        EXPECT_TRUE(AwaitPainting([step] { return Fraction() == step / 5.0; })) << step;
        ExpectInputHeld();
    }
    EXPECT_EQ(UpdateProgress(), 0);
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(UpdateProgress(), 0) << "one more step than was counted";
    EXPECT_NE(gtk_grab_get_current(), nullptr) << "the command has not ended yet";
    EndProgress();
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    // Where there is nothing to count, the bar stays empty.
    SetupProgress({files.At("tree/empty/")}, OPERATION_COPY);
    EXPECT_EQ(pGTable->ProgressTotal, 0);
    bool painted = false;
    const gulong painting = g_signal_connect_swapped(
        pGTable->ProgressBar, "draw", G_CALLBACK(+[](bool* done) -> gboolean { return !(*done = true); }), &painted);
    gtk_widget_queue_draw(pGTable->ProgressBar);
    EXPECT_TRUE(AwaitPainting([&] { return painted; }));
    EXPECT_EQ(Fraction(), 0.0);
    g_signal_handler_disconnect(pGTable->ProgressBar, painting);
    EndProgress();
    ExpectConsistent();
}

TEST_F(Progress, CancelIsHeardOnceUpToTheLastStep)
{
    for (const DialogAct& cancel : {PressButton("Cancel"), DialogAct(SendClose)}) {
        Setup(OPERATION_COPY);
        EXPECT_EQ(UpdateProgress(), 0);
        cancel(pGTable->ProgressDlg);
        EXPECT_TRUE(KeepPainting());
        EXPECT_EQ(static_cast<unsigned>(UpdateProgress()), RESULT_CANCEL);
        EXPECT_EQ(pGTable->ProgressDlg, nullptr);
        EXPECT_FALSE(KeepPainting());
        EXPECT_EQ(UpdateProgress(), 0);
        EndProgress();
        EXPECT_EQ(gtk_grab_get_current(), nullptr);
    }
    SetupProgress({files.At("single")}, OPERATION_COPY);
    g_idle_add(
        [](gpointer) -> gboolean {
            PressButton("Cancel")(pGTable->ProgressDlg);
            return G_SOURCE_REMOVE;
        },
        nullptr);
    EXPECT_EQ(static_cast<unsigned>(UpdateProgress()), RESULT_CANCEL);
    EndProgress();
}

TEST_F(Progress, WithoutADialogTheWindowTakesNoInputEither)
{
    GtkWindow* below = nullptr;
    const auto ask = [&] {
        Answer([] { return MessageBox("Error", "Text", STYLE_SKIP); },
               [&](GtkWidget* box) {
                   below = gtk_window_get_transient_for(GTK_WINDOW(box));
                   SendClose(box);
               });
        return below;
    };
    EXPECT_EQ(ask(), Window());
    Setup(OPERATION_COPY);
    EXPECT_EQ(ask(), GTK_WINDOW(pGTable->ProgressDlg)) << "a box stays above the window that it interrupts";
    EndProgress();
    pGTable->ShowProgress = 0;
    Setup(OPERATION_MOVE);
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    ExpectInputHeld();
    EXPECT_EQ(ask(), Window());
    EXPECT_EQ(UpdateProgress(), 0);
    EndProgress();
    ClickRow("single");
    EXPECT_EQ(SelectedNames(), Names{"single"});
}

}  // namespace
