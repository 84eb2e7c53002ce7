// SPDX-License-Identifier: BSD-3-Clause
// What a module exports, and what it is handed when it is loaded.
#pragma once

#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace qplugin {

class QTL_BORDER iQpluginModule {
 public:
  virtual ~iQpluginModule() = default;
  virtual quantel::wstring moduleText() = 0;  // given back by iQpluginUI::moduleText
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual quantel::wstring moduleText2() = 0;
};

// The two exported functions of a module, by their types. A module is called on the
// thread that loads it, and no instance may exist when it is unloaded.
using ModuleInit = void(quantel::cPtr<iQpluginModule> module);
using ModuleCleanUp = void();

}  // namespace qplugin
