// SPDX-License-Identifier: BSD-3-Clause
// cClassInfo: what a class of the border says of itself, and the descriptions of the
// interfaces that host and modules share.
#pragma once

#include <new>
#include <type_traits>
#include <vector>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/plugin_render.h"
#include "hostframe/interfaces/plugin_ui.h"

namespace quantel {

// What cClassInfo needs to know of a class: a function Guid() and the type Base of its
// direct base, void for none. A class that is described specialises this.
template <class Described>
struct ClassDescription;

// Holds its count and nothing else. The identity is made anew at each question, from
// the description: it is asked rarely, and also while statics are being destroyed.
template <class Described>
class cClassInfo final : public iFactory::iClassInfo, public cRefCount {
 public:
  using Description = ClassDescription<Described>;

  // A new, counted object; null if there is no memory.
  static cPtr<iFactory::iClassInfo> Make() {
    return cPtr<iFactory::iClassInfo>(new (std::nothrow) cClassInfo);
  }

  cGuid guid() const override { return Description::Guid(); }
  wstring name() const override { return guid().text; }
  std::vector<cPtr<iFactory::iClassInfo>> bases() const override {
    if constexpr (std::is_void_v<typename Description::Base>) {
      return {};
    } else {
      return {cClassInfo<typename Description::Base>::Make()};
    }
  }
  cPtr<iFactory::iClassInfo> classInfo() const override { return Make(); }
};

template <>
struct ClassDescription<iFactory::iInstance> {
  using Base = void;
  // Intended: seven digits in the first group.
  static cGuid Guid() { return cGuid(u"{8218E69-D1F2-4B4B-87C4-20F2D01F9C08} // iInstance"); }
};

template <>
struct ClassDescription<qplugin::iQpluginUI> {
  using Base = iFactory::iInstance;
  static constexpr const char16_t* kText =
      u"{260FF26F-E1F4-4EA4-AB7A-F90E7B6D3FB4} // Qplugin GUI Interface";
  static cGuid Guid() { return cGuid(kText); }
};

template <>
struct ClassDescription<qplugin::iQpluginRender> {
  using Base = iFactory::iInstance;
  static constexpr const char16_t* kText =
      u"{80B61315-269F-4AC2-9CF6-CF5477ED5CD8} // Qplugin Render Interface";
  static cGuid Guid() { return cGuid(kText); }
};

template <>
struct ClassDescription<qplugin::iQplugin> {
  using Base = iFactory::iInstance;
  static cGuid Guid() { return cGuid(u"{2838A6F4-9B0E-4477-A32E-737EAD42D167} // iQplugin"); }
};

}  // namespace quantel
