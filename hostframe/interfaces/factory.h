// SPDX-License-Identifier: BSD-3-Clause
// The host's factory: classes go in as constructor objects, instances come out.
//
// Operations named reserved… are the host's own, here and in the other interfaces: they hold
// their place in the order of virtual operations, and a module never calls them. They do
// nothing where a host has no use for them.
#pragma once

#include <vector>

#include "hostframe/interfaces/guid.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace qplugin {
class iQplugin;
}

namespace quantel {

class cRegistration;

// Anything that is deleted through this interface.
class QTL_BORDER iGuarded {
 public:
  iGuarded() = default;
  iGuarded(const iGuarded&) = delete;
  iGuarded& operator=(const iGuarded&) = delete;
  virtual ~iGuarded() = default;
};

class QTL_BORDER iFactory {
 public:
  // What the factory makes. The last step of its destruction tells the factory.
  class QTL_BORDER iInstance : public iGuarded {
   public:
    ~iInstance() override;
  };

  // What a class says of itself.
  class QTL_BORDER iClassInfo {
   public:
    virtual ~iClassInfo() = default;
    virtual cGuid guid() const = 0;
    virtual wstring name() const = 0;                         // the text of guid()
    virtual std::vector<cPtr<iClassInfo>> bases() const = 0;  // of the direct base; new objects
    virtual cPtr<iClassInfo> classInfo() const = 0;           // a new object of the same class
  };

  // What makes instances of one class.
  class QTL_BORDER iConstructor : public iGuarded {
   public:
    virtual cPtr<iInstance> create() = 0;                   // null if there is no memory
    [[noreturn]] virtual cPtr<iInstance> createWith() = 0;  // throws cNotSupported
    virtual cPtr<iClassInfo> classInfo() = 0;
  };

  virtual ~iFactory() = default;

  // Adds a class. It stays in the factory as long as the result is held.
  virtual cPtr<cRegistration> registerClass(cPtr<iConstructor> constructor) = 0;
  virtual void reserved1() {}

  // The host's single instance of the interface with that identity, or null.
  virtual cPtr<qplugin::iQplugin> findService(const cGuid& interfaceGuid) = 0;
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}
  virtual void reserved6() {}
  virtual void reserved7() {}
  virtual void reserved8() {}
  virtual void reserved9() {}
  virtual void reserved10() {}
  virtual void reserved11() {}

  // An instance has come to the end of its destruction.
  //   instance  its address, and no more: the object is gone
  virtual void instanceDestroyed(iInstance* instance) = 0;
};

// The host's factory, exported by the library KernelExec. Only its object word is
// read; nobody takes a copy of this cPtr. It must be set before a module's
// moduleInit is called and until the module is unloaded.
extern QTL_KERNELEXEC cPtr<iFactory> gFactory;

inline iFactory::iInstance::~iInstance() { gFactory->instanceDestroyed(this); }

// Takes classes out of the factory again.
class QTL_BORDER iRegistrar {
 public:
  virtual ~iRegistrar() = default;
  virtual void removeClass(cPtr<iFactory::iConstructor> constructor) = 0;
};

// One class in the factory: whoever offers registerClass makes it with new, and its
// end takes the class out. It has no virtual operations, so every library that lets
// go of the last reference runs this same destructor.
class QTL_BORDER cRegistration : public cRefCount {
 public:
  cRegistration(const cPtr<iRegistrar>& registrar, const cPtr<iFactory::iConstructor>& constructor)
      : registrar_(registrar), constructor_(constructor) {}

  ~cRegistration() { registrar_->removeClass(constructor_); }

 private:
  cPtr<iRegistrar> registrar_;
  cPtr<iFactory::iConstructor> constructor_;
};

}  // namespace quantel
