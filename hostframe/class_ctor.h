// SPDX-License-Identifier: BSD-3-Clause
// cClassCtor: what the factory holds of a class, to make its instances.
#pragma once

#include <new>

#include "hostframe/interfaces/class_info.h"
#include "hostframe/interfaces/factory.h"

namespace allplugins {

// The adapter's ClassDescription also gives kName and kCreateWithLine.
template <class Adapter>
class cClassCtor final : public quantel::iFactory::iConstructor, public quantel::cRefCount {
 public:
  using Description = quantel::ClassDescription<Adapter>;

  quantel::cPtr<quantel::iFactory::iInstance> create() override {
    return quantel::cPtr<quantel::iFactory::iInstance>(new (std::nothrow) Adapter);
  }

  // Intended: the class name is single-byte text under a wide %s, so that its bytes come
  // out in pairs.
  [[noreturn]] quantel::cPtr<quantel::iFactory::iInstance> createWith() override {
    throw quantel::cNotSupported("_QTLGlimmerBlur", Description::kCreateWithLine,
                                 u"No parameterised \"%s\" ctor",
                                 quantel::BytePairs{Description::kName});
  }

  quantel::cPtr<quantel::iFactory::iClassInfo> classInfo() override {
    return quantel::cClassInfo<Adapter>::Make();
  }
};

}  // namespace allplugins
