// Message boxes and the progress dialog: what each answer means, and what cannot be touched
// meanwhile.

#include "acts.h"
#include "engine/fnkmessage.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"

namespace {

class Messages : public WindowTest {
protected:
    void SetUp() override
    {
        Make({"tree/a", "tree/below/b", "tree/below/c", "single", "tree/empty/", "tree/link -> /"});
        Start();
    }
    void TearDown() override { ExpectConsistent(); }
    static Result Answer(const std::function<Result()>& ask, const DialogAct& act)
    {
        Result result = RESULT_DONE;
        DuringDialogs([&] { result = ask(); }, {act});
        return result;
    }
    static void Return(GtkWidget* box) { SendKey(box, GDK_KEY_Return); }
    /// Starts a command of five steps.
    void Begin(OperationKind kind) { SetupProgress({files.At("tree/"), files.At("single")}, kind); }
    static void ExpectBoxAbove(GtkWindow* below)
    {
        Answer([] { return MessageBox("Error", "Text", STYLE_SKIP); },
               [below](GtkWidget* box) {
                   EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(box)), below);
                   SendClose(box);
               });
    }
    /// Nothing happens in the window below.
    void ExpectInputHeld()
    {
        ClickRow("single");
        SendKey(pMainW->MainWindow, GDK_KEY_Tab);
        EXPECT_EQ(SelectedNames(), Names());
    }
};

TEST_F(Messages, ReturnAndClosingPressTheLastButton)
{
    const std::tuple<unsigned, const char*, Result> cases[] = {
        {STYLE_ERROR, "OK", RESULT_OK}, {STYLE_QUESTION, "Yes", RESULT_CANCEL}, {STYLE_SKIP, "Skip", RESULT_CANCEL}};
    for (const auto& [style, first, last] : cases) {
        const auto ask = [asked = style] { return MessageBox("Title", "Two\nlines", asked); };
        EXPECT_EQ(Answer(ask, PressButton(first)), RESULT_OK) << style;
        EXPECT_EQ(Answer(ask, Return), last) << style;
        EXPECT_EQ(Answer(ask, SendClose), last) << style;
    }
    EXPECT_EQ(Answer([] { return DeleteMessageBox("/some/dir/"); }, Return), RESULT_ABORT);
    for (const auto& [button, result] :
         {std::pair("Yes", RESULT_YES_ALL), {"No", RESULT_CANCEL}, {"Cancel", RESULT_ABORT}}) {
        const auto act = [label = button](GtkWidget* box) {
            PressButton("Do the same for the rest")(box);
            PressButton(label)(box);
        };
        EXPECT_EQ(Answer([] { return DeleteMessageBox("/some/dir/"); }, act), result) << button;
    }
}

TEST_F(Messages, TheProgressDialogCountsWhatIsNoDirectoryAndEndsByItself)
{
    Begin(OPERATION_DELETE);
    ASSERT_NE(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(pGTable->ProgressTotal, 5);
    EXPECT_NE(FindByText(pGTable->ProgressDlg, "File deleting..."), nullptr);
    ExpectBoxAbove(GTK_WINDOW(pGTable->ProgressDlg));
    for (int step = 1; step < 5; ++step) {
        EXPECT_EQ(UpdateProgress(), 0);
        // The bar follows at the next painting, not at every step.
        EXPECT_TRUE(Await([step] {
            EXPECT_FALSE(KeepPainting());
            return gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(pGTable->ProgressBar)) == step / 5.0;
        }));
        ExpectInputHeld();
    }
    EXPECT_EQ(UpdateProgress(), 0);
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    EndProgress();
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    // A command without a dialog holds the input, too.
    pGTable->ShowProgress = 0;
    Begin(OPERATION_MOVE);
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    ExpectInputHeld();
    ExpectBoxAbove(Window());
    EndProgress();
    ClickRow("single");
    EXPECT_EQ(SelectedNames(), Names{"single"});
}

TEST_F(Messages, CancelIsHeardOnce)
{
    for (const DialogAct& cancel : {PressButton("Cancel"), DialogAct(SendClose)}) {
        Begin(OPERATION_COPY);
        EXPECT_EQ(UpdateProgress(), 0);
        cancel(pGTable->ProgressDlg);
        EXPECT_TRUE(KeepPainting());
        EXPECT_EQ(static_cast<unsigned>(UpdateProgress()), RESULT_CANCEL);
        EXPECT_EQ(pGTable->ProgressDlg, nullptr);
        EXPECT_EQ(UpdateProgress(), 0);
        EndProgress();
    }
}

}  // namespace
