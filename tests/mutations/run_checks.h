// SPDX-License-Identifier: BSD-3-Clause
// What holds for every run, whatever it was given.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/mutations/program_run.h"

namespace mutations {

// A line as a shell would take it, for the message of a failure.
std::string Show(const std::vector<std::string>& line);

// Fails the test unless the run ended with its work done or with plain lines, left nothing half
// written, and changed nothing that it was not told to replace.
//   what  stands before each message: the seed, and what it made of the input
void ExpectCleanEnd(const RunFolder& folder, const std::vector<std::string>& line,
                    const RunResult& run, const std::string& what);

// Calls it with each seed below the count: a tenth of them in a build with a sanitizer, in which
// everything takes some ten times as long. With MUTATION_SEED in the environment, with that alone.
void ForSeeds(unsigned count, const std::function<void(unsigned seed)>& run);

}  // namespace mutations
