// SPDX-License-Identifier: BSD-3-Clause
// The least that a host offers a module to render a still: a start for authors of hosts.
//
// Each class answers one interface of the border. Whoever writes a real host replaces them one by
// one: cFactory first, where it has services to offer; cParameters, where values are animated;
// cStill, where frames come from files.
//
//   factory                gFactory, set before moduleInit and until the module is unloaded
//     make<...>()          an instance, of the classes that the module has registered
//       setTarget          cTarget, over the cFrame that receives the result
//       setInputs          cStill, over the cFrame that is blurred
//       setParams          cParameters
//       renderFrame
//
// Objects are counted: each is made with new and goes straight into a cPtr. A cPtr that is passed
// by value belongs to who is called, so each operation here resets it before it returns. One thread
// at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <map>
#include <vector>

#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/interfaces/ptr.h"

namespace minimal_host {

using quantel::cPtr;

// What a module says to the user goes to stderr; characters beyond ASCII become question marks.
class cMessages final : public qplugin::iQplugin, public quantel::cRefCount {
 public:
  void message(const quantel::wstring& text) override {
    for (const char16_t c : text) {
      std::cerr << (c < 0x80 ? static_cast<char>(c) : '?');
    }
    std::cerr << '\n';
  }
};

// Where the module's classes go in and its instances come out. It outlives the module.
class cFactory final : public quantel::iFactory, public quantel::cRefCount {
 public:
  // An instance of the first class that offers the interface; null if none does.
  template <class Interface>
  cPtr<Interface> make() const {
    for (const cPtr<iConstructor>& constructor : registrar_->classes) {
      if (cPtr<Interface> instance = constructor->create().template Dynamic<Interface>()) {
        return instance;
      }
    }
    return {};
  }

  cPtr<quantel::cRegistration> registerClass(cPtr<iConstructor> constructor) override {
    const cPtr<quantel::cRegistration> registration(
        new quantel::cRegistration(registrar_, constructor));
    registrar_->classes.push_back(constructor);
    constructor.Reset();
    return registration;
  }

  cPtr<qplugin::iQplugin> findService(const quantel::cGuid& interfaceGuid) override {
    const quantel::cGuid messages = quantel::cClassInfo<qplugin::iQplugin>().guid();
    const bool same =
        interfaceGuid.group1 == messages.group1 && interfaceGuid.group2 == messages.group2 &&
        interfaceGuid.group3 == messages.group3 && interfaceGuid.tail == messages.tail;
    return same ? messages_ : cPtr<qplugin::iQplugin>();
  }

  void instanceDestroyed(iInstance* /*instance*/) override {}

 private:
  // Registrations hold it, and the module holds these: it may outlive the factory.
  class cRegistrar final : public quantel::iRegistrar, public quantel::cRefCount {
   public:
    void removeClass(cPtr<iConstructor> constructor) override {
      std::erase_if(classes, [&](const cPtr<iConstructor>& each) {
        return each.Object() == constructor.Object();
      });
      constructor.Reset();
    }

    std::vector<cPtr<iConstructor>> classes;
  };

  cPtr<cRegistrar> registrar_{new cRegistrar};
  cPtr<qplugin::iQplugin> messages_{cPtr<cMessages>(new cMessages)};
};

// What a module may ask about its host; both texts may be empty.
class cModuleTexts final : public qplugin::iQpluginModule, public quantel::cRefCount {
 public:
  quantel::wstring moduleText() override { return u"minimal host"; }
  quantel::wstring moduleText2() override { return {}; }
};

// A frame in memory: blue, green, red and alpha of 16 bits, the top row first. It is black at
// first.
class cFrame final : public qplugin::iQpluginImage, public quantel::cRefCount {
 public:
  cFrame(int width, int height)
      : samples(std::size_t{4} * static_cast<std::size_t>(width) *
                static_cast<std::size_t>(height)),
        size_{width, height} {}

  quantel::cSize2 size() override { return size_; }
  std::uint16_t* buffer() override { return samples.data(); }

  std::vector<std::uint16_t> samples;

 private:
  quantel::cSize2 size_;
};

// One frame as the only clip, the same at every frame number.
class cStill final : public qplugin::iQpluginInputs, public quantel::cRefCount {
 public:
  explicit cStill(const cPtr<cFrame>& frame) : source_(cPtr<cSource>(new cSource(frame))) {}

  cPtr<qplugin::iQpluginSource> mainInput() override { return source_; }
  // The image shape takes its aperture from the main clip then.
  cPtr<qplugin::iQpluginSource> namedInput(const quantel::wstring& /*key*/) override { return {}; }

 private:
  class cSource final : public qplugin::iQpluginSource, public quantel::cRefCount {
   public:
    explicit cSource(const cPtr<cFrame>& frame) : frame_(frame) {}
    cPtr<qplugin::iQpluginImage> frame(int /*frame*/, cPtr<qplugin::iQpluginDescriptor> descriptor,
                                       int /*three*/) override {
      descriptor.Reset();
      return frame_;
    }

   private:
    cPtr<cFrame> frame_;
  };

  cPtr<qplugin::iQpluginSource> source_;
};

// Where the result goes: a frame as large as that of the clip, of square pixels.
class cTarget final : public qplugin::iQpluginTarget, public quantel::cRefCount {
 public:
  explicit cTarget(const cPtr<cFrame>& output) : output_(output) {}

  cPtr<qplugin::iQpluginImage> outputFrame(int /*three*/) override { return output_; }
  cPtr<qplugin::iQpluginFormat> format() override {
    return cPtr<cFormat>(new cFormat(output_->size()));
  }

 private:
  class cDescriptor final : public qplugin::iQpluginDescriptor, public quantel::cRefCount {};

  class cFormat final : public qplugin::iQpluginFormat, public quantel::cRefCount {
   public:
    explicit cFormat(quantel::cSize2 pictureSize) : pictureSize_(pictureSize) {}
    cPtr<qplugin::iQpluginDescriptor> descriptor() override {
      return cPtr<cDescriptor>(new cDescriptor);
    }
    quantel::cSize2 pixelAspect() override { return {1, 1}; }
    quantel::cSize2 pictureSize() override { return pictureSize_; }

   private:
    quantel::cSize2 pictureSize_;
  };

  cPtr<cFrame> output_;
};

// Values under their keys. One that was not set is 0, false or the first entry, whatever the
// effect's page offers as its default: a host sets all that it cares for.
class cParameters final : public qplugin::iQpluginParams, public quantel::cRefCount {
 public:
  double getFloat(const quantel::wstring& key, int /*zero*/) override { return values[key]; }
  void setFloat(const quantel::wstring& key, const float& value) override {
    values[key] = static_cast<double>(value);
  }
  bool getBool(const quantel::wstring& key, int /*zero*/) override { return values[key] != 0; }
  void setBool(const quantel::wstring& key, bool value) override { values[key] = value ? 1 : 0; }
  quantel::cColour getColour(const quantel::wstring& /*key*/,
                             quantel::cColour defaultColour) override {
    return defaultColour;
  }
  int getList(const quantel::wstring& key) override { return static_cast<int>(values[key]); }
  void setList(const quantel::wstring& key, int entry) override { values[key] = entry; }

  std::map<quantel::wstring, double> values;
};

}  // namespace minimal_host
