#pragma once
// What a sequence can be put through. Each mode makes the tree and the commands of a seed in the
// empty directory root_path, and tells what is wrong; nothing when nothing is.

#include <cstdint>
#include <string>

#include "core/fnktable.h"
#include "core/fnkutil.h"
#include "generate.h"

std::string RunAgainstModel(std::uint64_t seed, const std::string& root_path);
/// One command with each of its calls failing, in each way that is plausible.
std::string RunWithFaults(std::uint64_t seed, const std::string& root_path);
/// With all room gone from each of its calls on.
std::string RunOnFullDisk(std::uint64_t seed, const std::string& root_path);
/// With the process killed at each of its calls; and the writing of the settings likewise.
std::string RunKilledEverywhere(std::uint64_t seed, const std::string& root_path);
std::string RunSettingsKilled(std::uint64_t seed, const std::string& root_path);
/// Many commands beside another process that changes the same tree; seed only says what is
/// tried, not when.
std::string RunBesideNeighbour(std::uint64_t seed, const std::string& root_path);
