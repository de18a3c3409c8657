// Message boxes and the progress dialog: what each answer means, and what cannot be touched
// meanwhile.

#include <future>

#include "acts.h"
#include "engine/fnkmessage.h"
#include "engine/fnkprogress-count.h"
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
    /// Runs a command of five steps. Before each, look is called in the window's thread.
    RunEnd Run(OperationKind kind, const std::function<void(int step)>& look)
    {
        return RunCommand({files.At("tree/"), files.At("single")}, kind, [look] {
            for (int step = 0; step < 5; ++step) {
                InWindow([look, step] { look(step); });
                results.push_back(OnEngine.UpdateProgress());
            }
        });
    }
    /// Has the window's thread act, and waits for it.
    static void InWindow(const std::function<void()>& act)
    {
        std::promise<void> done;
        std::pair task(&act, &done);
        const auto run = [](gpointer data) -> gboolean {
            const auto& [wanted, is_done] = *static_cast<decltype(task)*>(data);
            (*wanted)();
            is_done->set_value();
            return G_SOURCE_REMOVE;
        };
        g_idle_add(run, &task);
        done.get_future().wait();
    }
    static inline std::vector<int> results;
    /// Does so once a dialog of that name says that.
    static void OnceItSays(const std::string& text, const std::function<void()>& act)
    {
        static std::string awaited;
        static std::function<void()> wanted;
        awaited = text;
        wanted = act;
        const auto look = [](gpointer) -> gboolean {
            if (pGTable->ProgressDlg == nullptr || FindByText(pGTable->ProgressDlg, awaited) == nullptr) {
                return G_SOURCE_CONTINUE;
            }
            const std::function<void()> now = wanted;  // It may await another text.
            now();
            return G_SOURCE_REMOVE;
        };
        g_timeout_add(5, look, nullptr);
    }
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

TEST_F(Messages, TheProgressDialogCountsWhatIsNoDirectory)
{
    const auto look = [this](int step) {
        ASSERT_NE(pGTable->ProgressDlg, nullptr);
        EXPECT_NE(FindByText(pGTable->ProgressDlg, "File deleting..."), nullptr);
        EXPECT_TRUE(Await(
            [step] { return gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(pGTable->ProgressBar)) == step / 5.0; }));
        EXPECT_EQ(pGTable->ProgressTotal, 5);
        EXPECT_EQ(RunQuietly("", [] { ADD_FAILURE() << "a second run"; }), RUN_LEFT);
        ExpectInputHeld();
        ExpectBoxAbove(GTK_WINDOW(pGTable->ProgressDlg));
    };
    EXPECT_EQ(Run(OPERATION_DELETE, look), RUN_DONE);
    EXPECT_EQ(std::exchange(results, {}), std::vector<int>(5));
    EXPECT_EQ(pGTable->ProgressDlg, nullptr);
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    // A command without a dialog holds the input, too.
    pGTable->ShowProgress = 0;
    const auto look_again = [this](int) {
        EXPECT_EQ(pGTable->ProgressDlg, nullptr);
        ExpectInputHeld();
        ExpectBoxAbove(Window());
    };
    EXPECT_EQ(Run(OPERATION_MOVE, look_again), RUN_DONE);
    ClickRow("single");
    EXPECT_EQ(SelectedNames(), Names{"single"});
}

TEST_F(Messages, CancelIsHeardOnce)
{
    for (const DialogAct& cancel : {PressButton("Cancel"), DialogAct(SendClose)}) {
        results.clear();
        const auto press = [cancel](int step) {
            if (step == 1) {
                cancel(pGTable->ProgressDlg);
            }
        };
        EXPECT_EQ(Run(OPERATION_COPY, press), RUN_DONE);
        EXPECT_EQ(results, (std::vector<int>{0, static_cast<int>(RESULT_CANCEL), 0, 0, 0}));
    }
}

TEST_F(Messages, WorkThatHangsIsLeft)
{
    const auto gate = std::make_shared<std::promise<void>>();
    const auto answer = std::make_shared<std::promise<bool>>();
    const auto cancel = [] { PressButton("Cancel")(pGTable->ProgressDlg); };
    // A command is asked to stop first.
    OnceItSays("File copying...", [&] {
        OnceItSays("Waiting for the disk. Cancel leaves the command; its last step may still take effect.", cancel);
        cancel();
    });
    const std::vector<std::string> items = {files.At("single")};
    EXPECT_EQ(RunCommand(items, OPERATION_COPY,
                         [gate, answer] {
                             gate->get_future().wait();
                             const bool is_silent =
                                 OnEngine.MessageBox("Error", "too late", STYLE_ERROR) == RESULT_CANCEL;
                             answer->set_value(OnEngine.IsLeft() && is_silent);
                         }),
              RUN_LEFT);
    EXPECT_EQ(gtk_grab_get_current(), nullptr);
    ExpectConsistent();
    EXPECT_FALSE(StopRuns());
    OnceItSays("Waiting for " + files.Path() + "...", [] { SendKey(pGTable->ProgressDlg, GDK_KEY_Escape); });
    LetRead(0);
    EXPECT_EQ(WaitFor(files.Path(), [path = files.Path()] { return CountOperationFile(path); }), std::nullopt);
    LetRead(G_MAXINT);
    gate->set_value();
    EXPECT_TRUE(answer->get_future().get());
    EXPECT_TRUE(StopRuns());
    EXPECT_EQ(WaitFor("", [] { return 1; }), 1);
    DuringDialogs([] { EXPECT_EQ(RunQuietly("", [] { throw std::bad_alloc(); }), RUN_LEFT); },
                  {ReadBox(g_strerror(ENOMEM))});
}

}  // namespace
