// SPDX-License-Identifier: BSD-3-Clause
// Lists of frames, as people write them: "1-10,20-30", "1-100x5", "100-1", "-5-5".
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

// The frames in the order written, each once. A range may run backwards, x takes every so many
// of it, and a frame may be negative.
//   name  how the text's origin is called in an error
// Throws UsageError, which names the text and what is allowed.
std::vector<int> ParseFrames(const std::string& name, const std::string& text);

// The shortest text that reads back as these frames.
std::string ShowFrames(const std::vector<int>& frames);

}  // namespace glimmerhost
