#pragma once
// Putting changes on the disk: every one is followed by sync(), which the changes of a command
// share. It runs in a thread of its own, so that waiting for a slow disk freezes no window.

/// Something changed on the disk; it is there for good at most 250 ms and one sync() later.
void NoteChange();

/// Returns when all that was noted is on the disk; calls KeepPainting while it waits. The last
/// thing a command does.
void FlushChanges();
