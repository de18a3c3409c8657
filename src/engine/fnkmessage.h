#pragma once
// Messages and questions of the file engine. The engine has no windows; the layers above it set
// OnEngine.

#include <sys/types.h>

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

/// Callbacks of the engine, set once at start and called in the thread of the command. The defaults
/// answer every question with "Cancel".
struct EngineEvents {
    /// Shows a translated UTF-8 message and waits for the answer. style is a MessageStyle.
    Result (*MessageBox)(const char* title, const std::string& message,
                         unsigned style) = [](const char*, const std::string&, unsigned) { return RESULT_CANCEL; };
    /// Asks whether to delete a directory that is not empty: RESULT_OK, RESULT_YES_ALL,
    /// RESULT_CANCEL ("No") or RESULT_ABORT.
    Result (*DeleteMessageBox)(const std::string& name) = [](const std::string&) { return RESULT_ABORT; };
    /// Reports one step done. RESULT_CANCEL if the user has pressed Cancel, but only once; else 0.
    int (*UpdateProgress)() = [] { return 0; };
    /// Tells how many bytes of a long file are copied.
    void (*ShowBytes)(off_t done, off_t size) = [](off_t, off_t) {};
    /// Whether the user has pressed Cancel. Cheap, because the engine asks for every object.
    bool (*IsCancelled)() = [] { return false; };
    /// Whether the user no longer waits for the command. It must change nothing more then.
    bool (*IsLeft)() = [] { return false; };
};
extern EngineEvents OnEngine;

/// Formats a message. The first %s is the path; an ellipsis replaces the middle of a long one. The
/// second %s, if there is one, is the text of the errno error, uncut; empty for 0.
std::string FormatPathMessage(const char* format, const std::string& path, int error = 0);
