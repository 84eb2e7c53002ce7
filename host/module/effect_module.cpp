// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/effect_module.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <utility>

#include "host/support/failure.h"
#include "host/support/text.h"
#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/recoverable.h"

namespace glimmerhost {
namespace {

// What this host says of itself when a module asks.
class ModuleTexts final : public qplugin::iQpluginModule, public quantel::cRefCount {
 public:
  quantel::wstring moduleText() override { return u"glimmerhost"; }
  quantel::wstring moduleText2() override { return {}; }
};

std::string GuidText(const quantel::cGuid& guid) {
  std::array<char, 40> text{};
  const auto& t = guid.tail;
  std::snprintf(text.data(), text.size(), "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                guid.group1, guid.group2, guid.group3, t[0], t[1], t[2], t[3], t[4], t[5], t[6],
                t[7]);
  return text.data();
}

}  // namespace

void RethrowModuleFault() {
  try {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (const quantel::cRecoverable& fault) {
    throw Failure("the module failed: " + ToUtf8(fault.message()) + " (" + ToUtf8(fault.file()) +
                  ", line " + std::to_string(fault.line()) + ")");
  } catch (const std::bad_alloc&) {
    throw Failure("the module ran out of memory");
  } catch (const std::exception& fault) {
    throw Failure(std::string("the module failed: ") + fault.what());
  }
}

EffectModule::EffectModule(ModuleChoice choice, Trace* trace)
    : choice_(std::move(choice)), trace_(trace), factory_(new Factory), file_(choice_.file) {
  quantel::gFactory = Traced(quantel::cPtr<quantel::iFactory>(factory_), trace);
  try {
    TraceToModule(trace, "moduleInit()");
    file_.Init(Traced(quantel::cPtr<qplugin::iQpluginModule>(new ModuleTexts), trace));
  } catch (...) {
    RethrowModuleFault();
  }
}

// The library goes after this, while the factory is still there for its classes to leave.
EffectModule::~EffectModule() {
  TraceToModule(trace_, "moduleCleanUp()");
  file_.CleanUp();
}

std::vector<EffectModule::ClassText> EffectModule::Classes() const {
  std::vector<ClassText> texts;
  for (const auto& constructor : factory_->Classes()) {
    const auto info = constructor->classInfo();
    ClassText text{GuidText(info->guid()), ToUtf8(info->name()), ""};
    for (const auto& base : info->bases()) {
      text.base = ToUtf8(base->name());
    }
    texts.push_back(text);
  }
  return texts;
}

// A class tells what it is by its base. One that tells nothing has to be tried.
template <class Interface>
bool EffectModule::MayMake(quantel::iFactory::iConstructor* constructor) const {
  TraceToModule(trace_, "constructor.classInfo()");
  const auto info = constructor->classInfo();
  if (!info) {
    return true;
  }
  TraceToModule(trace_, "classInfo.bases()");
  const auto bases = info->bases();
  return std::any_of(bases.begin(), bases.end(), [this](const auto& base) {
    TraceToModule(trace_, "base.guid()");
    return base && SameIdentity(base->guid(), quantel::cClassInfo<Interface>().guid());
  });
}

template <class Interface>
quantel::cPtr<Interface> EffectModule::Make(const char* kind) const {
  for (const auto& constructor : factory_->Classes()) {
    if (MayMake<Interface>(constructor.Object())) {
      TraceToModule(trace_, kind, " = constructor.create()");
      if (auto instance = constructor->create().template Dynamic<Interface>()) {
        return instance;
      }
    }
  }
  throw Failure(choice_.file.string() + ": the module has no class for a " + kind);
}

quantel::cPtr<qplugin::iQpluginRender> EffectModule::MakeRender() const {
  return Make<qplugin::iQpluginRender>("render");
}

quantel::cPtr<qplugin::iQpluginUI> EffectModule::MakeUi() const {
  return Make<qplugin::iQpluginUI>("ui");
}

}  // namespace glimmerhost
