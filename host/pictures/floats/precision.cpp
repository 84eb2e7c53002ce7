// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/read_report.h"
#include "host/support/failure.h"

namespace glimmerhost {

Precision ParsePrecision(const std::string& name, const std::string& text) {
  for (const Precision one : {Precision::kByFile, Precision::kFloat, Precision::k16}) {
    if (text == PrecisionText(one)) {
      return one;
    }
  }
  throw MustBe(name, "auto, float or 16", text);
}

const char* PrecisionText(Precision precision) {
  return precision == Precision::kByFile ? "auto" : precision == Precision::kFloat ? "float" : "16";
}

}  // namespace glimmerhost
