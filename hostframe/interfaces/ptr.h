// SPDX-License-Identifier: BSD-3-Clause
// cPtr: the counted pointer of the host's border.
//
// Two words: the object, and the count inside the same object. They travel
// together because an interface has no way to find the count: cRefCount is a later
// base of the class behind it. A null cPtr has both words null.
//
// A cPtr passed by value belongs to the callee, which lets go of it before it
// returns. Compilers of this system destroy by-value arguments in the caller, after
// the return, so a callee resets its argument itself at the step where the
// reference must be gone; the caller's destruction then meets two null words.
// A returned cPtr is already counted and belongs to the caller.
//
// Counts may change on any thread; one cPtr variable belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <type_traits>

#include "hostframe/interfaces/ref_count.h"

namespace quantel {

template <class T>
class cPtr {
 public:
  cPtr() = default;
  cPtr(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): null is a cPtr like any other

  // Takes the first reference to a counted object, or another one.
  //   object  null gives a null cPtr
  template <class U>
  requires(std::is_base_of_v<cRefCount, U>&& std::is_convertible_v<U*, T*>) explicit cPtr(U* object)
      : object_(object), count_(object) {
    Retain();
  }

  cPtr(const cPtr& other) : object_(other.object_), count_(other.count_) { Retain(); }

  // To a base interface: the object word is adjusted, the count word carried over.
  template <class U>
  requires(!std::is_same_v<U, T> && std::is_convertible_v<U*, T*>)
      cPtr(const cPtr<U>& other)  // NOLINT(google-explicit-constructor): as plain pointers do
      : object_(other.Object()), count_(other.RefCount()) {
    Retain();
  }

  ~cPtr() { Release(); }

  // Intended: the old content is released before the new is copied, so an object
  // may die here; other must not live inside it. A reader would expect the new
  // reference to be taken first. Assigning a variable to itself does nothing.
  cPtr& operator=(const cPtr& other) {
    if (this != &other) {
      Release();
      object_ = other.object_;
      count_ = other.count_;
      Retain();
    }
    return *this;
  }

  // Lets go of the object, if any, and leaves both words null.
  void Reset() { Release(); }

  // NOLINTBEGIN(clang-analyzer-cplusplus.NewDelete): it does not follow the count
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

  T* Object() const { return object_; }
  // NOLINTEND(clang-analyzer-cplusplus.NewDelete)
  cRefCount* RefCount() const { return count_; }

  // To an interface that the object may offer. One that it does not offer gives a
  // null cPtr, and no count moves.
  template <class U>
  cPtr<U> Dynamic() const {
    cPtr<U> result;
    if (U* object = dynamic_cast<U*>(object_)) {
      result.Adopt(object, count_);
    }
    return result;
  }

 private:
  template <class U>
  friend class cPtr;

  void Adopt(T* object, cRefCount* count) {
    object_ = object;
    count_ = count;
    Retain();
  }

  void Retain() {
    if (count_ != nullptr) {
      count_->Add();
    }
  }

  // The two words are null before the count drops: whatever the object's destructor
  // does with this variable, it meets an empty one.
  void Release() {
    T* object = object_;
    cRefCount* count = count_;
    object_ = nullptr;
    count_ = nullptr;
    // NOLINTBEGIN(clang-analyzer-cplusplus.NewDelete): it does not follow the count
    if (count != nullptr && count->Subtract() == 1 && object != nullptr) {
      delete object;
    }
    // NOLINTEND(clang-analyzer-cplusplus.NewDelete)
  }

  T* object_ = nullptr;
  cRefCount* count_ = nullptr;
};

}  // namespace quantel
