#pragma once
// Birth and death of the two global records.

/// Allocates both records and loads the settings and associations. 0, or -65533 when the folder pictures cannot be
/// made; nothing is written then.
int InitGlobalTable();

/// Writes the settings file, with the geometry of the live window, and frees both records. May be
/// called again; callbacks that come after it find null pointers.
void TerminateGlobalTable();
