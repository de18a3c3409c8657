#pragma once
// Messages and questions of the file engine. The engine has no windows; its user sets OnEngine.

#include <string>

/// Answers to questions, and results of engine calls.
enum Result : unsigned {
    RESULT_DONE = 0,                  ///< From the engine: success.
    RESULT_CANCEL = 0xF0000000,       ///< "No" or "Cancel". From the engine: stop the command.
    RESULT_OK = 0xF0000001,           ///< "Yes", "OK" or "Skip". From the engine: the item was skipped.
    RESULT_YES_ALL = 0xF0000002,      ///< "Yes" to this question and all later ones.
    RESULT_ABORT = 0xF0000003,        ///< "Cancel" in a box that also has "No".
    RESULT_NO_ARGUMENT = 0xFFFFFFFF,  ///< An argument is empty or null.
};

/// Low 16 bits: the icon; high 16 bits: the buttons. The last button is the default.
enum MessageStyle : unsigned {
    STYLE_ERROR = 0x20004,           ///< Stop icon, "OK".
    STYLE_SKIP = 0x50004,            ///< Stop icon, "Skip" and "Cancel".
    STYLE_QUESTION = 0x30002,        ///< Question icon, "Yes" and "No".
    STYLE_DELETE_QUESTION = 0x30005  ///< Delete icon, "Yes" and "No".
};

enum OperationKind { OPERATION_COPY = 2, OPERATION_MOVE = 3, OPERATION_DELETE = 4 };

/// Callbacks of the engine, set once at start. By default every question is answered "Cancel".
struct EngineEvents {
    /// Shows a translated UTF-8 message and waits for the answer. style is a MessageStyle.
    Result (*MessageBox)(const char* title, const std::string& message,
                         unsigned style) = [](const char*, const std::string&, unsigned) { return RESULT_CANCEL; };
    /// Asks whether to delete a directory that is not empty: RESULT_OK, RESULT_YES_ALL,
    /// RESULT_CANCEL ("No") or RESULT_ABORT.
    Result (*DeleteMessageBox)(const std::string& name) = [](const std::string&) { return RESULT_ABORT; };
    /// Reports one step done. RESULT_CANCEL once after the user pressed Cancel, else 0.
    int (*UpdateProgress)() = [] { return 0; };
    /// Lets the windows repaint. Called at least every 50 ms, so it must be cheap. True if the user
    /// pressed Cancel.
    bool (*KeepPainting)() = [] { return false; };
};
extern EngineEvents OnEngine;

/// Formats a message with a path (the first %s) and the text of error, an errno (the second %s; empty
/// for 0). The middle of a long path is replaced by an ellipsis; the reason is never cut.
std::string FormatPathMessage(const char* format, const std::string& path, int error = 0);
