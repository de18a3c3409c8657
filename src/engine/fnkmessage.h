#pragma once
// What the file engine asks and reports. It knows no window: whoever runs it sets OnEngine.

#include <string>

/// Answers to questions, and results of the engine.
enum Result : unsigned {
    RESULT_DONE = 0,              ///< From the engine.
    RESULT_CANCEL = 0xF0000000,   ///< "No" or "Cancel"; from the engine: the whole command stops.
    RESULT_OK = 0xF0000001,       ///< "Yes", "OK" or "Skip"; from the engine: the item was skipped.
    RESULT_YES_ALL = 0xF0000002,  ///< "Yes" to this question and those that follow.
    RESULT_ABORT = 0xF0000003,    ///< "Cancel" where "No" is another answer.
    RESULT_NO_ARGUMENT = 0xFFFFFFFF,
};

/// Icon in the low half, buttons in the high half; the last button is the default.
enum MessageStyle : unsigned {
    STYLE_ERROR = 0x20004,           ///< Stop icon, "OK".
    STYLE_SKIP = 0x50004,            ///< Stop icon, "Skip" and "Cancel".
    STYLE_QUESTION = 0x30002,        ///< Question icon, "Yes" and "No".
    STYLE_DELETE_QUESTION = 0x30005  ///< Delete icon, "Yes" and "No".
};

enum OperationKind { OPERATION_COPY = 2, OPERATION_MOVE = 3, OPERATION_DELETE = 4 };

/// Set once at start. Until then nobody is there to ask: every question is answered with "Cancel".
struct EngineEvents {
    /// Shows a message, UTF-8 and translated, and waits for the answer.
    Result (*MessageBox)(const char* title, const std::string& message,
                         unsigned style) = [](const char*, const std::string&, unsigned) { return RESULT_CANCEL; };
    /// Asks whether a directory that is not empty may be deleted: RESULT_OK, RESULT_YES_ALL,
    /// RESULT_CANCEL for "No" or RESULT_ABORT.
    Result (*DeleteMessageBox)(const std::string& name) = [](const std::string&) { return RESULT_ABORT; };
    /// Reports one step done. RESULT_CANCEL, once, when the user pressed Cancel, else 0.
    int (*UpdateProgress)() = [] { return 0; };
    /// Lets the windows paint; the engine calls it at least every 50 ms, so it has to be cheap. True
    /// when the user pressed Cancel.
    bool (*KeepPainting)() = [] { return false; };
};
extern EngineEvents OnEngine;

/// Inserts a path (%s) into a message and, unless error is 0, the reason of a failure (an errno). A
/// path too long for the screen loses its middle; the reason is always whole.
std::string FormatPathMessage(const char* format, const std::string& path, int error = 0);
