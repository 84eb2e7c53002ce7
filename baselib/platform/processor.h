// SPDX-License-Identifier: BSD-3-Clause
// The processor, as far as it decides how numbers are rounded by libraries and forms that take what
// they find.
#pragma once

namespace lx {

namespace native {

// Its family, and which of its vectors programs may use: "x86-64 with AVX and FMA", say, or
// "arm64". FMA stands for AVX2 and multiplications fused with additions together, as nobody asks
// for one alone. Two processors of one text round alike. Never null; lives as long as the process.
const char* ProcessorForm();

}  // namespace native

struct ProcessorOperations {
  decltype(native::ProcessorForm)* processorForm = native::ProcessorForm;
};

}  // namespace lx
