// SPDX-License-Identifier: BSD-3-Clause
// A host that asks the system for nothing while a module calls it, so that every request is the
// module's own. It keeps the order of the calls. Its objects live as long as it does, and it can
// tell whether anybody still holds one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/plugin_render.h"
#include "tests/faults/refusals.h"

namespace faults {

// Names of calls: literals.
class CallList {
 public:
  void Add(const char* call) {
    if (count_ < calls_.size()) {
      calls_[count_] = call;
    }
    ++count_;
  }
  void Clear() { count_ = 0; }
  std::size_t Count() const { return count_; }

  // The same calls in the same order, as far as these go.
  bool Begins(const CallList& whole) const {
    bool begins = count_ <= whole.count_ && whole.count_ <= calls_.size();
    for (std::size_t i = 0; begins && i < count_; ++i) {
      begins = std::string_view(calls_[i]) == whole.calls_[i];
    }
    return begins;
  }

 private:
  std::array<const char*, 256> calls_{};
  std::size_t count_ = 0;
};

// Held by the host, so that no pointer to it is the last one.
template <class Interface>
class Held : public Interface, public quantel::cRefCount {
 public:
  explicit Held(CallList* calls) : calls_(calls) { Add(); }
  virtual ~Held() = default;

  bool IsHeldByHostAlone() const { return Count() == 1; }
  template <class Wanted = Interface>
  quantel::cPtr<Wanted> Pointer() {
    return quantel::cPtr<Wanted>(this);
  }

 protected:
  CallList* calls_;  // NOLINT(misc-non-private-member-variables-in-classes): of those derived
};

class QuietImage final : public Held<qplugin::iQpluginImage> {
 public:
  QuietImage(CallList* calls, int width, int height)
      : Held(calls),
        samples(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4),
        size_{width, height} {}
  quantel::cSize2 size() override {
    calls_->Add("size");
    return size_;
  }
  std::uint16_t* buffer() override {
    calls_->Add("buffer");
    return samples.data();
  }

  std::vector<std::uint16_t> samples;

 private:
  quantel::cSize2 size_;
};

class QuietFormat final : public Held<qplugin::iQpluginFormat> {
 public:
  explicit QuietFormat(CallList* calls) : Held(calls), given(calls) {}
  quantel::cPtr<qplugin::iQpluginDescriptor> descriptor() override {
    calls_->Add("descriptor");
    return given.Pointer();
  }
  quantel::cSize2 pixelAspect() override {
    calls_->Add("pixelAspect");
    return {1, 1};
  }
  quantel::cSize2 pictureSize() override {
    calls_->Add("pictureSize");
    return {0, 0};
  }

  Held<qplugin::iQpluginDescriptor> given;
};

class QuietSource final : public Held<qplugin::iQpluginSource> {
 public:
  QuietSource(CallList* calls, int width, int height) : Held(calls), image(calls, width, height) {}
  quantel::cPtr<qplugin::iQpluginImage> frame(int /*frame*/,
                                              quantel::cPtr<qplugin::iQpluginDescriptor> descriptor,
                                              int /*three*/) override {
    calls_->Add("frame");
    descriptor.Reset();
    return image.Pointer();
  }

  QuietImage image;
};

class QuietInputs final : public Held<qplugin::iQpluginInputs> {
 public:
  QuietInputs(CallList* calls, int width, int height)
      : Held(calls), main(calls, width, height), spread(calls, width, height) {}
  quantel::cPtr<qplugin::iQpluginSource> mainInput() override {
    calls_->Add("mainInput");
    return main.Pointer();
  }
  quantel::cPtr<qplugin::iQpluginSource> namedInput(const quantel::wstring& /*key*/) override {
    calls_->Add("namedInput");
    return hasSpread ? spread.Pointer() : nullptr;
  }

  QuietSource main;
  QuietSource spread;
  bool hasSpread = false;
};

class QuietTarget final : public Held<qplugin::iQpluginTarget> {
 public:
  QuietTarget(CallList* calls, int width, int height)
      : Held(calls), image(calls, width, height), given(calls) {}
  quantel::cPtr<qplugin::iQpluginImage> outputFrame(int /*three*/) override {
    calls_->Add("outputFrame");
    return image.Pointer();
  }
  quantel::cPtr<qplugin::iQpluginFormat> format() override {
    calls_->Add("format");
    return given.Pointer();
  }

  QuietImage image;
  QuietFormat given;
};

// Numbers under their keys; absent ones are 0.
class QuietParams final : public Held<qplugin::iQpluginParams> {
 public:
  using Numbers = std::map<quantel::wstring, double>;

  using Held::Held;
  double getFloat(const quantel::wstring& key, int /*zero*/) override {
    calls_->Add("getFloat");
    return Number(key);
  }
  bool getBool(const quantel::wstring& key, int /*zero*/) override {
    calls_->Add("getBool");
    return Number(key) != 0.0;
  }
  int getList(const quantel::wstring& key) override {
    calls_->Add("getList");
    return static_cast<int>(Number(key));
  }
  void setFloat(const quantel::wstring& /*key*/, const float& /*value*/) override {
    calls_->Add("setFloat");
  }
  void setBool(const quantel::wstring& /*key*/, bool /*value*/) override { calls_->Add("setBool"); }
  void setList(const quantel::wstring& /*key*/, int /*entry*/) override { calls_->Add("setList"); }
  quantel::cColour getColour(const quantel::wstring& /*key*/, quantel::cColour given) override {
    calls_->Add("getColour");
    return given;
  }

  Numbers numbers;

 private:
  double Number(const quantel::wstring& key) const {
    const auto found = numbers.find(key);
    return found == numbers.end() ? 0.0 : found->second;
  }
};

class QuietModule final : public Held<qplugin::iQpluginModule> {
 public:
  using Held::Held;
  // The text is the module's own as it comes back, and short enough to stand in itself.
  quantel::wstring moduleText() override {
    calls_->Add("moduleText");
    return u"first";
  }
  quantel::wstring moduleText2() override {
    calls_->Add("moduleText2");
    return u"second";
  }
};

class QuietSink final : public Held<qplugin::iQplugin> {
 public:
  using Held::Held;
  void message(const quantel::wstring& /*text*/) override { calls_->Add("message"); }
};

// Sets itself as the host's factory for as long as it lives.
class QuietFactory final : public Held<quantel::iFactory> {
 public:
  explicit QuietFactory(CallList* calls) : Held(calls), registrar_(this), sink_(calls) {
    quantel::gFactory = Pointer();
  }
  ~QuietFactory() override { quantel::gFactory.Reset(); }
  QuietFactory(const QuietFactory&) = delete;
  QuietFactory& operator=(const QuietFactory&) = delete;

  quantel::cPtr<quantel::cRegistration> registerClass(
      quantel::cPtr<iConstructor> constructor) override {
    const Granted own;
    calls_->Add("registerClass");
    classes.push_back(constructor);
    const quantel::cPtr<quantel::cRegistration> registration(
        new quantel::cRegistration(registrar_.Pointer(), constructor));
    constructor.Reset();
    return registration;
  }
  quantel::cPtr<qplugin::iQplugin> findService(const quantel::cGuid& /*guid*/) override {
    calls_->Add("findService");
    return sink_.Pointer();
  }
  void instanceDestroyed(iInstance* /*instance*/) override { calls_->Add("instanceDestroyed"); }

  // Those that are registered; a module that could not make one has given null.
  std::vector<quantel::cPtr<iConstructor>> classes;

 private:
  class Registrar final : public Held<quantel::iRegistrar> {
   public:
    explicit Registrar(QuietFactory* factory) : Held(nullptr), factory_(factory) {}
    void removeClass(quantel::cPtr<iConstructor> constructor) override {
      const Granted own;
      std::erase_if(factory_->classes, [&](const quantel::cPtr<iConstructor>& have) {
        return have.Object() == constructor.Object();
      });
      constructor.Reset();
    }

   private:
    QuietFactory* factory_;
  };

  Registrar registrar_;
  QuietSink sink_;
};

// All of it.
struct QuietHost {
  QuietHost(int width, int height)
      : factory(&calls),
        module(&calls),
        inputs(&calls, width, height),
        target(&calls, width, height),
        params(&calls) {}

  void Connect(const quantel::cPtr<qplugin::iQpluginRender>& render) {
    render->setTarget(target.Pointer<qplugin::iQpluginTarget>());
    render->setInputs(inputs.Pointer<qplugin::iQpluginInputs>());
    render->setParams(params.Pointer<qplugin::iQpluginParams>());
  }

  // That no module holds anything of it; its factory aside, which each module may ask for good.
  bool HoldsAllAlone() const {
    return module.IsHeldByHostAlone() && inputs.IsHeldByHostAlone() &&
           inputs.main.IsHeldByHostAlone() && inputs.main.image.IsHeldByHostAlone() &&
           inputs.spread.IsHeldByHostAlone() && inputs.spread.image.IsHeldByHostAlone() &&
           target.IsHeldByHostAlone() && target.image.IsHeldByHostAlone() &&
           target.given.IsHeldByHostAlone() && target.given.given.IsHeldByHostAlone() &&
           params.IsHeldByHostAlone();
  }

  CallList calls;
  QuietFactory factory;
  QuietModule module;
  QuietInputs inputs;
  QuietTarget target;
  QuietParams params;
};

}  // namespace faults
