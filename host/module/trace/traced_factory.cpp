// SPDX-License-Identifier: BSD-3-Clause
// Tracing of what a module calls on the host itself: factory, messages, its own description.
#include "host/module/trace/traced_object.h"

namespace glimmerhost {
namespace {

class TracedMessages final : public TracedObject<qplugin::iQplugin> {
 public:
  using TracedObject::TracedObject;

  void message(const quantel::wstring& text) override {
    Say("host.message(", Quoted(text), ")");
    Object().message(text);
  }
};

// Takes the class out by letting go of the registration that the host has made.
class TracedRegistrar final : public quantel::iRegistrar, public quantel::cRefCount {
 public:
  TracedRegistrar(const quantel::cPtr<quantel::cRegistration>& registration, Trace* trace)
      : registration_(registration), trace_(trace) {}

  void removeClass(quantel::cPtr<quantel::iFactory::iConstructor> constructor) override {
    trace_->FromModule("registrar.removeClass(a constructor)");
    registration_.Reset();
    constructor.Reset();
  }

 private:
  quantel::cPtr<quantel::cRegistration> registration_;
  Trace* trace_;
};

class TracedFactory final : public TracedObject<quantel::iFactory> {
 public:
  using TracedObject::TracedObject;

  quantel::cPtr<quantel::cRegistration> registerClass(
      quantel::cPtr<iConstructor> constructor) override {
    Say("factory.registerClass(", constructor ? "a constructor" : "none", ")");
    const quantel::cPtr<quantel::cRegistration> registration(
        new quantel::cRegistration(quantel::cPtr<quantel::iRegistrar>(new TracedRegistrar(
                                       Object().registerClass(constructor), GetTrace())),
                                   constructor));
    constructor.Reset();
    return registration;
  }
  quantel::cPtr<qplugin::iQplugin> findService(const quantel::cGuid& interfaceGuid) override {
    Say("factory.findService(", Quoted(interfaceGuid.text), ")");
    return PutInFront<TracedMessages>(Object().findService(interfaceGuid), GetTrace());
  }
  void instanceDestroyed(iInstance* instance) override {
    Say("factory.instanceDestroyed()");
    Object().instanceDestroyed(instance);
  }
};

class TracedModule final : public TracedObject<qplugin::iQpluginModule> {
 public:
  using TracedObject::TracedObject;

  quantel::wstring moduleText() override {
    quantel::wstring text = Object().moduleText();
    Say("module.moduleText() = ", Quoted(text));
    return text;
  }
  quantel::wstring moduleText2() override {
    quantel::wstring text = Object().moduleText2();
    Say("module.moduleText2() = ", Quoted(text));
    return text;
  }
};

}  // namespace

quantel::cPtr<quantel::iFactory> Traced(const quantel::cPtr<quantel::iFactory>& object,
                                        Trace* trace) {
  return PutInFront<TracedFactory>(object, trace);
}

quantel::cPtr<qplugin::iQpluginModule> Traced(const quantel::cPtr<qplugin::iQpluginModule>& object,
                                              Trace* trace) {
  return PutInFront<TracedModule>(object, trace);
}

}  // namespace glimmerhost
