// A module with one class, whose render throws what a module may throw.
#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/plugin_render.h"

namespace {

using quantel::cPtr;

class BrokenRender final : public qplugin::iQpluginRender, public quantel::cRefCount {
 public:
  cPtr<quantel::iFactory::iClassInfo> classInfo() override { return {}; }
  quantel::cGuid renderGuid() override { return quantel::cGuid(u"{0}"); }
  void setTarget(cPtr<qplugin::iQpluginTarget> /*target*/) override {}
  void setInputs(cPtr<qplugin::iQpluginInputs> /*inputs*/) override {}
  void setParams(cPtr<qplugin::iQpluginParams> /*params*/) override {}
  void renderFrame(int /*frame*/, std::uintptr_t /*word1*/, std::uintptr_t /*word2*/) override {
    throw quantel::cNotSupported("broken_module", 12, u"it is \"%s\"", u"broken");
  }
};

class Ctor final : public quantel::iFactory::iConstructor, public quantel::cRefCount {
 public:
  cPtr<quantel::iFactory::iInstance> create() override {
    return cPtr<quantel::iFactory::iInstance>(new BrokenRender);
  }
  [[noreturn]] cPtr<quantel::iFactory::iInstance> createWith() override {
    throw quantel::cNotSupported("broken_module", 1, u"no");
  }
  cPtr<quantel::iFactory::iClassInfo> classInfo() override { return {}; }
};

cPtr<quantel::cRegistration> registration;

}  // namespace

extern "C" QTL_EXPORT void moduleInit(cPtr<qplugin::iQpluginModule> module);
extern "C" QTL_EXPORT void moduleCleanUp();

void moduleInit(cPtr<qplugin::iQpluginModule> module) {
  registration = quantel::gFactory->registerClass(cPtr<quantel::iFactory::iConstructor>(new Ctor));
  module.Reset();
}

void moduleCleanUp() {}
