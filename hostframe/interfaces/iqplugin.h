// SPDX-License-Identifier: BSD-3-Clause
// iQplugin: where a module's texts for the user go.
#pragma once

#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace qplugin {

class QTL_BORDER iQplugin {
 public:
  virtual ~iQplugin() = default;
  virtual void reserved1() {}
  virtual void reserved2() {}

  // Shows or logs a text for the user.
  virtual void message(const quantel::wstring& text) = 0;
};

}  // namespace qplugin
