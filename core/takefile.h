#pragma once
// Takes from outside: the raw values of a tool's channels over time, from a
// CSV file whose header is "time" and then channel names.

#include <string>

#include "core/instance.h"

namespace vuk::rgw::core {

// What an imported take does to the one the tool holds: takes its place on
// every channel, or adds its samples (replacing those of the same times).
enum class TakeImport { kReplace, kMerge };

// Puts the samples into the tool's recorded tracks. On failure nothing
// changes and `error` names the file, the line and the problem.
bool ImportTakeCsv(const std::string& path, Instance& instance, std::string* error = nullptr,
                   TakeImport mode = TakeImport::kReplace);

}  // namespace vuk::rgw::core
