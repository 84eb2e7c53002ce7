// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/module_entry.h"

#include <new>

#include "hostframe/class_ctor.h"
#include "hostframe/module_statics.h"
#include "hostframe/render_adapter.h"
#include "hostframe/ui_adapter.h"

namespace {

// Without memory the factory gets a null constructor, and what it answers is kept.
template <class Adapter>
void RegisterClass() {
  using Ctor = allplugins::cClassCtor<Adapter>;
  // The constructor goes straight into the argument, so that the factory meets a count of 1.
  allplugins::registrations.push_back(quantel::gFactory->registerClass(
      quantel::cPtr<quantel::iFactory::iConstructor>(new (std::nothrow) Ctor)));
}

}  // namespace

void moduleInit(quantel::cPtr<qplugin::iQpluginModule> module) {
  allplugins::savedModuleText = module->moduleText();
  allplugins::savedModuleText2 = module->moduleText2();
  RegisterClass<allplugins::cGlimmerBlurUI>();
  RegisterClass<allplugins::cGlimmerBlurRender>();
  module.Reset();
}

void moduleCleanUp() {}
