// SPDX-License-Identifier: BSD-3-Clause
// A host that records every call on its interfaces, and answers what a test gives it.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/ui_result.h"

namespace lx_test {

using quantel::cPtr;
using quantel::cSize2;
using quantel::wstring;

inline std::string Narrow(const wstring& text) {
  std::string out;
  for (const char16_t c : text) {
    out.push_back(static_cast<char>(c));
  }
  return out;
}

// "1 0.5 0" for what toRGB answers.
inline std::string ColourText(const quantel::cColour& colour) {
  float rgb[3];
  std::memcpy(rgb, colour.toRGB().words, sizeof rgb);
  std::ostringstream out;
  out << rgb[0] << ' ' << rgb[1] << ' ' << rgb[2];
  return out.str();
}

// Calls in their order. A call that a test has named in throwAt throws a HostFault.
struct HostFault {
  std::string call;
};

// Instances on several threads may share one.
struct CallLog {
  std::vector<std::string> calls;
  std::string throwAt;
  std::mutex mutex;

  void Note(const std::string& call) {
    const std::scoped_lock hold(mutex);
    calls.push_back(call);
  }

  void Add(const std::string& call) {
    Note(call);
    if (call == throwAt) {
      throw HostFault{call};
    }
  }
};

class FakeImage final : public qplugin::iQpluginImage, public quantel::cRefCount {
 public:
  FakeImage(CallLog* log, std::string name, int width, int height)
      : samples(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4),
        log_(log),
        name_(std::move(name)),
        size_{width, height} {}
  ~FakeImage() override { log_->Note("~" + name_); }

  cSize2 size() override {
    log_->Add(name_ + ".size");
    return size_;
  }
  void reserved1() override { log_->Add(name_ + ".reserved1"); }
  std::uint16_t* buffer() override {
    log_->Add(name_ + ".buffer");
    return samples.data();
  }

  std::vector<std::uint16_t> samples;

 private:
  CallLog* log_;
  std::string name_;
  cSize2 size_;
};

class FakeDescriptor final : public qplugin::iQpluginDescriptor, public quantel::cRefCount {
 public:
  explicit FakeDescriptor(CallLog* log) : log_(log) {}
  ~FakeDescriptor() override { log_->Note("~descriptor"); }

 private:
  CallLog* log_;
};

class FakeFormat final : public qplugin::iQpluginFormat, public quantel::cRefCount {
 public:
  FakeFormat(CallLog* log, cSize2 pixelRatio, cSize2 pictureSize = {0, 0})
      : aspect(pixelRatio), size(pictureSize), log_(log) {}
  ~FakeFormat() override {
    if (notesItsEnd) {
      log_->Note("~format");
    }
  }

  cPtr<qplugin::iQpluginDescriptor> descriptor() override {
    log_->Add("format.descriptor");
    return cPtr<qplugin::iQpluginDescriptor>(new FakeDescriptor(log_));
  }
  cSize2 pixelAspect() override {
    log_->Add("format.pixelAspect");
    return aspect;
  }
  cSize2 pictureSize() override {
    log_->Add("format.pictureSize");
    return size;
  }

  cSize2 aspect;
  cSize2 size;
  bool notesItsEnd = false;

 private:
  CallLog* log_;
};

class FakeSource final : public qplugin::iQpluginSource, public quantel::cRefCount {
 public:
  FakeSource(CallLog* log, std::string name) : log_(log), name_(std::move(name)) {}
  ~FakeSource() override { log_->Note("~" + name_); }

  void reserved1() override { log_->Add(name_ + ".reserved1"); }
  cPtr<qplugin::iQpluginImage> frame(int frame, cPtr<qplugin::iQpluginDescriptor> descriptor,
                                     int three) override {
    log_->Add(name_ + ".frame(" + std::to_string(frame) + "," + (descriptor ? "d" : "null") + "," +
              std::to_string(three) + ")");
    descriptor.Reset();
    return image;
  }

  cPtr<FakeImage> image;

 private:
  CallLog* log_;
  std::string name_;
};

class FakeInputs final : public qplugin::iQpluginInputs, public quantel::cRefCount {
 public:
  explicit FakeInputs(CallLog* log) : log_(log) {}
  ~FakeInputs() override {
    if (notesItsEnd) {
      log_->Note("~inputs");
    }
  }

  cPtr<qplugin::iQpluginSource> mainInput() override {
    log_->Add("inputs.mainInput");
    return main;
  }
  cPtr<qplugin::iQpluginSource> namedInput(const wstring& key) override {
    log_->Add("inputs.namedInput(" + Narrow(key) + ")");
    return spread;
  }

  cPtr<FakeSource> main;
  cPtr<FakeSource> spread;
  bool notesItsEnd = false;

 private:
  CallLog* log_;
};

class FakeTarget final : public qplugin::iQpluginTarget, public quantel::cRefCount {
 public:
  explicit FakeTarget(CallLog* log) : log_(log) {}
  ~FakeTarget() override { log_->Note("~target"); }

  void reserved1() override { log_->Add("target.reserved1"); }
  cPtr<qplugin::iQpluginImage> outputFrame(int three) override {
    log_->Add("target.outputFrame(" + std::to_string(three) + ")");
    return image;
  }
  cPtr<qplugin::iQpluginFormat> format() override {
    log_->Add("target.format");
    if (!hasFormat) {
      return {};
    }
    return cPtr<qplugin::iQpluginFormat>(new FakeFormat(log_, aspect));
  }

  cPtr<FakeImage> image;
  cSize2 aspect{1, 1};
  bool hasFormat = true;

 private:
  CallLog* log_;
};

// Numbers, switches and entries under their keys, as they were set or written; absent ones
// are 0.
class FakeParams final : public qplugin::iQpluginParams, public quantel::cRefCount {
 public:
  explicit FakeParams(CallLog* log) : log_(log) {}
  ~FakeParams() override { log_->Note("~params"); }

  double getFloat(const wstring& key, int zero) override {
    log_->Add("getFloat(" + Narrow(key) + "," + std::to_string(zero) + ")");
    return numbers[Narrow(key)];
  }
  void setFloat(const wstring& key, const float& value) override {
    log_->Add("setFloat(" + Narrow(key) + "," + std::to_string(value) + ")");
    numbers[Narrow(key)] = static_cast<double>(value);
    lastFloat = value;
  }
  bool getBool(const wstring& key, int zero) override {
    log_->Add("getBool(" + Narrow(key) + "," + std::to_string(zero) + ")");
    return numbers[Narrow(key)] != 0.0;
  }
  void setBool(const wstring& key, bool value) override {
    log_->Add("setBool(" + Narrow(key) + "," + std::to_string(value) + ")");
    numbers[Narrow(key)] = value ? 1.0 : 0.0;
  }
  quantel::cColour getColour(const wstring& key, quantel::cColour defaultColour) override {
    log_->Add("getColour(" + Narrow(key) + "," + ColourText(defaultColour) + ")");
    defaultColour.words[3] = colourMark;
    return defaultColour;
  }
  int getList(const wstring& key) override {
    log_->Add("getList(" + Narrow(key) + ")");
    return static_cast<int>(numbers[Narrow(key)]);
  }
  void setList(const wstring& key, int entry) override {
    log_->Add("setList(" + Narrow(key) + "," + std::to_string(entry) + ")");
    numbers[Narrow(key)] = entry;
  }

  std::map<std::string, double> numbers;
  float lastFloat = 0;
  std::uint32_t colourMark = 0;  // the fourth word of every colour that is answered

 private:
  CallLog* log_;
};

class FakeModule final : public qplugin::iQpluginModule, public quantel::cRefCount {
 public:
  explicit FakeModule(CallLog* log) : log_(log) {}
  ~FakeModule() override { log_->Note("~module"); }

  wstring moduleText() override {
    log_->Add("module.moduleText");
    return u"first text";
  }
  wstring moduleText2() override {
    log_->Add("module.moduleText2");
    return u"second text";
  }

 private:
  CallLog* log_;
};

// A module keeps the first sink that it gets for as long as it is loaded, so all hosts of a
// process hand out this one, which writes into the log of the newest host there is.
class FakeSink final : public qplugin::iQplugin, public quantel::cRefCount {
 public:
  static const cPtr<FakeSink>& OfTheProcess() {
    static const cPtr<FakeSink> sink(new FakeSink);
    return sink;
  }

  void message(const wstring& text) override {
    last = text;
    if (log != nullptr) {
      log->Add("message(" + Narrow(text) + ")");
    }
  }

  wstring last;
  CallLog* log = nullptr;
};

// Sets itself as the host's factory for the length of a scope.
class FakeFactory final : public quantel::iFactory, public quantel::cRefCount {
 public:
  explicit FakeFactory(CallLog* log) : log_(log) {}

  cPtr<quantel::cRegistration> registerClass(cPtr<iConstructor> constructor) override;
  cPtr<qplugin::iQplugin> findService(const quantel::cGuid& interfaceGuid) override {
    log_->Add("findService(" + Narrow(interfaceGuid.text) + ")");
    return IsSinks(interfaceGuid) ? cPtr<qplugin::iQplugin>(sink) : nullptr;
  }
  void instanceDestroyed(iInstance* instance) override {
    log_->Add("instanceDestroyed");
    lastDestroyed = instance;
  }

  // Constructors in the factory at the moment, in the order of registration.
  std::vector<cPtr<iConstructor>> classes;
  std::vector<int> countsAtRegistration;  // of each constructor as it came
  cPtr<FakeSink> sink;
  std::atomic<const void*> lastDestroyed{nullptr};
  std::function<void(const cPtr<iConstructor>&)> onRemove;

 private:
  class Registrar;

  // {2838A6F4-9B0E-4477-A32E-737EAD42D167}; what it is called is not looked at.
  static bool IsSinks(const quantel::cGuid& guid) {
    constexpr std::array<std::uint8_t, 8> kTail{0xA3, 0x2E, 0x73, 0x7E, 0xAD, 0x42, 0xD1, 0x67};
    return guid.group1 == 0x2838A6F4 && guid.group2 == 0x9B0E && guid.group3 == 0x4477 &&
           guid.tail == kTail;
  }

  CallLog* log_;
};

class FakeFactory::Registrar final : public quantel::iRegistrar, public quantel::cRefCount {
 public:
  explicit Registrar(FakeFactory* factory) : factory_(factory) {}
  void removeClass(cPtr<iConstructor> constructor) override {
    factory_->log_->Note("removeClass");
    if (factory_->onRemove) {
      factory_->onRemove(constructor);
    }
    auto& classes = factory_->classes;
    classes.erase(std::remove_if(classes.begin(), classes.end(),
                                 [&](const cPtr<iConstructor>& have) {
                                   return have.Object() == constructor.Object();
                                 }),
                  classes.end());
    constructor.Reset();
  }

 private:
  FakeFactory* factory_;
};

inline cPtr<quantel::cRegistration> FakeFactory::registerClass(cPtr<iConstructor> constructor) {
  log_->Add(constructor ? "registerClass" : "registerClass(null)");
  if (constructor) {
    countsAtRegistration.push_back(constructor.RefCount()->Count());
  }
  classes.push_back(constructor);
  const cPtr<quantel::cRegistration> registration(
      new quantel::cRegistration(cPtr<quantel::iRegistrar>(new Registrar(this)), constructor));
  constructor.Reset();
  return registration;
}

// A log, and a factory that is the host's for the length of a scope.
struct FakeHost {
  FakeHost() : factory(new FakeFactory(&log)) {
    factory->sink = FakeSink::OfTheProcess();
    factory->sink->log = &log;
    quantel::gFactory = factory;
  }
  ~FakeHost() {
    factory->sink->log = nullptr;
    quantel::gFactory.Reset();
  }
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  CallLog log;
  cPtr<FakeFactory> factory;
};

}  // namespace lx_test
