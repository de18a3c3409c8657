#pragma once
// Flushing changes to the disk. A thread calls sync(); changes in quick succession share a call.

/// Notes a change. sync() is called within 250 ms, or as soon as a call in progress returns.
void NoteChange();

/// Waits until all noted changes are on the disk, and calls KeepPainting meanwhile. Every file
/// operation ends with this call.
void FlushChanges();
