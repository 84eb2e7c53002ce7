// SPDX-License-Identifier: BSD-3-Clause
// A module of one class, for what the host does with others than the effect's. Include it once, in
// the source of a module that names its class: using ModuleClass = ...;
#pragma once

#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/plugin_render.h"

namespace one_class_module {

using quantel::cPtr;

// A render class that does nothing yet.
class Render : public qplugin::iQpluginRender, public quantel::cRefCount {
 public:
  cPtr<quantel::iFactory::iClassInfo> classInfo() override { return {}; }
  quantel::cGuid renderGuid() override { return quantel::cGuid(u"{0}"); }
  void setTarget(cPtr<qplugin::iQpluginTarget> target) override { target_ = target; }
  void setInputs(cPtr<qplugin::iQpluginInputs> inputs) override { clip_ = inputs->mainInput(); }
  void setParams(cPtr<qplugin::iQpluginParams> /*params*/) override {}

 protected:
  cPtr<qplugin::iQpluginTarget> target_;
  cPtr<qplugin::iQpluginSource> clip_;
};

template <class Class>
class Ctor final : public quantel::iFactory::iConstructor, public quantel::cRefCount {
 public:
  cPtr<quantel::iFactory::iInstance> create() override {
    return cPtr<quantel::iFactory::iInstance>(new Class);
  }
  [[noreturn]] cPtr<quantel::iFactory::iInstance> createWith() override {
    throw quantel::cNotSupported("one_class_module", 1, u"no");
  }
  cPtr<quantel::iFactory::iClassInfo> classInfo() override { return {}; }
};

// What the module's moduleInit does. The class leaves the factory with the module.
template <class Class>
void Init(cPtr<qplugin::iQpluginModule> module) {
  static cPtr<quantel::cRegistration> registration;
  registration =
      quantel::gFactory->registerClass(cPtr<quantel::iFactory::iConstructor>(new Ctor<Class>));
  module.Reset();
}

}  // namespace one_class_module

extern "C" QTL_EXPORT void moduleInit(quantel::cPtr<qplugin::iQpluginModule> module);
extern "C" QTL_EXPORT void moduleCleanUp();
