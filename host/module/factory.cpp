// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/factory.h"

#include <algorithm>
#include <iostream>

#include "host/support/text.h"
#include "hostframe/interfaces/class_info.h"

namespace glimmerhost {
namespace {

// What a module has to say to the user goes where this program's own lines go.
class MessageSink final : public qplugin::iQplugin, public quantel::cRefCount {
 public:
  void message(const quantel::wstring& text) override {
    std::cerr << "glimmerhost: the module says: " << ToUtf8(text) << '\n';
  }
};

}  // namespace

bool SameIdentity(const quantel::cGuid& a, const quantel::cGuid& b) {
  return a.group1 == b.group1 && a.group2 == b.group2 && a.group3 == b.group3 && a.tail == b.tail;
}

// Outlives the factory if a registration does.
class Factory::Registrar final : public quantel::iRegistrar, public quantel::cRefCount {
 public:
  void removeClass(quantel::cPtr<iConstructor> constructor) override {
    const auto found =
        std::find_if(classes.begin(), classes.end(), [&](const quantel::cPtr<iConstructor>& have) {
          return have.Object() == constructor.Object();
        });
    if (found != classes.end()) {
      classes.erase(found);
    }
    constructor.Reset();
  }

  std::vector<quantel::cPtr<iConstructor>> classes;
};

Factory::Factory() : registrar_(new Registrar), messages_(new MessageSink) {}

Factory::~Factory() = default;

const std::vector<quantel::cPtr<quantel::iFactory::iConstructor>>& Factory::Classes() const {
  return registrar_->classes;
}

// A module without memory for a constructor hands over null; there is nothing to list then.
quantel::cPtr<quantel::cRegistration> Factory::registerClass(
    quantel::cPtr<iConstructor> constructor) {
  // All that takes memory before the class is listed: one that nobody takes off again would be
  // there when its module is gone.
  auto& classes = registrar_->classes;
  classes.reserve(classes.size() + 1);
  const quantel::cPtr<quantel::cRegistration> registration(
      new quantel::cRegistration(registrar_, constructor));
  if (constructor) {
    classes.push_back(constructor);
  }
  constructor.Reset();
  return registration;
}

quantel::cPtr<qplugin::iQplugin> Factory::findService(const quantel::cGuid& interfaceGuid) {
  if (SameIdentity(interfaceGuid, quantel::cClassInfo<qplugin::iQplugin>().guid())) {
    return messages_;
  }
  return {};
}

void Factory::instanceDestroyed(iInstance* /*instance*/) {}

}  // namespace glimmerhost
