// SPDX-License-Identifier: BSD-3-Clause
// Factory: where modules register their classes, and what hands out this host's services.
#pragma once

#include <vector>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// Whether two are the same, whatever texts they carry.
bool SameIdentity(const quantel::cGuid& a, const quantel::cGuid& b);

class Factory final : public quantel::iFactory, public quantel::cRefCount {
 public:
  Factory();
  ~Factory() override;

  // The constructors registered at the moment, in the order of registration.
  const std::vector<quantel::cPtr<iConstructor>>& Classes() const;

  quantel::cPtr<quantel::cRegistration> registerClass(
      quantel::cPtr<iConstructor> constructor) override;
  quantel::cPtr<qplugin::iQplugin> findService(const quantel::cGuid& interfaceGuid) override;
  void instanceDestroyed(iInstance* instance) override;

 private:
  class Registrar;

  quantel::cPtr<Registrar> registrar_;
  quantel::cPtr<qplugin::iQplugin> messages_;
};

}  // namespace glimmerhost
