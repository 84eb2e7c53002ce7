#include "host/glimmerhost/effect_module.h"

#include <array>
#include <cstdio>
#include <exception>

#include "host/glimmerhost/failure.h"
#include "host/glimmerhost/text.h"
#include "hostframe/interfaces/recoverable.h"

namespace glimmerhost {
namespace {

// What this host says of itself when a module asks.
class ModuleTexts final : public qplugin::iQpluginModule, public quantel::cRefCount {
 public:
  quantel::wstring moduleText() override { return u"glimmerhost"; }
  void reserved1() override {}
  void reserved2() override {}
  void reserved3() override {}
  void reserved4() override {}
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

std::filesystem::path DefaultModuleFile() {
  return (ProgramFolder() / GLIMMERHOST_MODULE_FOLDER / "LXTorvane_GlimmerBlur.so")
      .lexically_normal();
}

EffectModule::EffectModule(const std::filesystem::path& file)
    : path_(file), factory_(new Factory), file_(file) {
  quantel::gFactory = factory_;
  try {
    file_.Init(quantel::cPtr<qplugin::iQpluginModule>(new ModuleTexts));
  } catch (...) {
    RethrowModuleFault();
  }
}

// The library goes after this, while the factory is still there for its classes to leave.
EffectModule::~EffectModule() { file_.CleanUp(); }

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

quantel::cPtr<qplugin::iQpluginRender> EffectModule::MakeRender() const {
  for (const auto& constructor : factory_->Classes()) {
    if (auto render = constructor->create().Dynamic<qplugin::iQpluginRender>()) {
      return render;
    }
  }
  throw Failure(path_.string() + ": the module has no class that renders");
}

}  // namespace glimmerhost
