#pragma once
// Stands in for the windows that the file engine asks and reports to.

#include <functional>
#include <string>
#include <vector>

#include "engine/fnkmessage.h"

/// What the engine asked and how it is answered.
struct Answers {
    std::vector<std::string> asked;   ///< Every question and report, in order.
    std::vector<Result> to_messages;  ///< Answers to MessageBox; the last one goes on.
    std::vector<Result> to_deletes;   ///< Answers to DeleteMessageBox, likewise.
    int steps = 0;
    int cancel_at_step = -1;
    bool is_cancelled = false;
    bool is_left = false;
    std::function<void()> at_step;  ///< Runs at every step, if there is one.
};
extern Answers answers;
