#pragma once
// Flushing changes to the disk. A thread calls sync(); changes shortly after each other share a
// call.

/// Notes a change. sync() starts at most 250 ms later, or when one that is running returns.
void NoteChange();

/// Waits until all noted changes are on the disk, and calls KeepPainting meanwhile. Every command
/// ends with it.
void FlushChanges();
