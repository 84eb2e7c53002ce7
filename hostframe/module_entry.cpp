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
  const quantel::cPtr<quantel::iFactory::iConstructor> ctor(new (std::nothrow) Ctor);
  allplugins::registrations.push_back(quantel::gFactory->registerClass(ctor));
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
