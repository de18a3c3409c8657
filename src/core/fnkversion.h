#pragma once
// What the program says about itself, on the command line and in its window.

/// Comes from the build, which has the number for its own purposes too.
constexpr const char* kVersion = FENNICK_VERSION;
constexpr const char* kVersionDate = "2001/07/27";
constexpr const char* kRights = "Copyright (C) 2026 The Fennick developers";
