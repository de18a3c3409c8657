#pragma once
// Creates and destroys the global records pGTable and pMainW.

/// Creates both records and loads the settings and associations. 0, or -65533 if the folder pictures
/// cannot be created; TerminateGlobalTable then writes no settings.
int InitGlobalTable();

/// Writes the settings file, including the window's geometry, and frees both records. Harmless when
/// called again. Later callbacks find null pointers.
void TerminateGlobalTable();
