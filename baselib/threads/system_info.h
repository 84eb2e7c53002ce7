// SPDX-License-Identifier: BSD-3-Clause
// What the machine offers this process.
#pragma once

#include <cstdint>

namespace lx {

// Processors that this process may run on, at least 1. Asked anew at each call.
std::uint32_t get_processor_count();

// The system's page size in bytes, at least 512. Asked once. The default alignment of blocks.
std::int32_t get_page_size();

}  // namespace lx
