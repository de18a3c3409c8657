#pragma once
// The version, for the command line and the about box.

/// Defined by the build.
constexpr const char* kVersion = FENNICK_VERSION;
constexpr const char* kVersionDate = "2001/07/27";
constexpr const char* kRights = "Copyright (C) 2026 The Fennick developers";
