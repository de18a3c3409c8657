#pragma once
// The program's texts in the languages it was built with, in a test that speaks English otherwise.

#include <libintl.h>

#include "tabletest.h"

/// Takes the texts from a catalogue while it lives; "en" has none. The locale must be a UTF-8 one, but
/// not C.UTF-8.
class ScopedLanguage {
public:
    explicit ScopedLanguage(const char* name, const char* catalogues = FENNICK_CATALOGUES) : variable_("LANGUAGE", name)
    {
        bindtextdomain("fennick", catalogues);
        bind_textdomain_codeset("fennick", "UTF-8");
        textdomain("fennick");
    }
    ~ScopedLanguage() { textdomain("messages"); }

private:
    ScopedVariable variable_;
};
