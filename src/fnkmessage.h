#pragma once
// Questions and error reports. The file engine asks through these declarations, which know no
// toolkit; the windows answer them with modal boxes, the engine's tests with a script.

#include <string>

/// Answers of the boxes, and results of the engine.
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

/// Shows the message, UTF-8 and translated, and waits for an answer; closing the box presses its
/// last button.
Result MessageBox(const char* title, const std::string& message, unsigned style);

/// Asks whether the directory called name, not empty, is to be deleted with all that is in it:
/// RESULT_OK, RESULT_YES_ALL, RESULT_CANCEL for "No" or RESULT_ABORT.
Result DeleteMessageBox(const std::string& name);

/// A message with a path in it (%s), and with the reason of a failure if error, an errno, is not
/// 0. A path too long for the screen loses its middle, the reason never anything.
std::string FormatPathMessage(const char* format, const std::string& path, int error = 0);
