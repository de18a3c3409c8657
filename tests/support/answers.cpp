#include "answers.h"

Answers answers;

namespace {

Result NextAnswer(std::vector<Result>& script)
{
    if (script.empty() || answers.is_left) {
        return RESULT_CANCEL;
    }
    const Result answer = script.front();
    if (script.size() > 1) {
        script.erase(script.begin());
    }
    return answer;
}

Result MessageBox(const char* title, const std::string& message, unsigned style)
{
    answers.asked.push_back(std::string(title) + ": " + message + (style == STYLE_SKIP ? " [Skip]" : ""));
    return NextAnswer(answers.to_messages);
}

Result DeleteMessageBox(const std::string& name)
{
    answers.asked.push_back("Delete - " + name);
    return NextAnswer(answers.to_deletes);
}

int UpdateProgress()
{
    ++answers.steps;
    if (answers.at_step) {
        answers.at_step();
    }
    return answers.steps == answers.cancel_at_step ? static_cast<int>(RESULT_CANCEL) : 0;
}

// Before any test runs.
[[maybe_unused]] const bool kIsConnected = [] {
    OnEngine = {.MessageBox = MessageBox,
                .DeleteMessageBox = DeleteMessageBox,
                .UpdateProgress = UpdateProgress,
                .IsCancelled = [] { return answers.is_cancelled || answers.is_left; },
                .IsLeft = [] { return answers.is_left; }};
    return true;
}();

}  // namespace
