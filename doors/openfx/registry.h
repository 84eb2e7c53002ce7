// SPDX-License-Identifier: BSD-3-Clause
// What we keep for the handles of the host. A host could keep it for us, in a property; but then a
// host whose properties fail would never see it go.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace lx::openfx {

// Any thread may call. What Find answers lives until the host has that handle's thing destroyed,
// which no host does while it asks it for something.
template <class Kept>
class Registry {
 public:
  // In the place of one that stood there before.
  void Add(const void* handle, std::unique_ptr<Kept> kept) {
    const std::lock_guard lock(mutex_);
    kept_[handle].swap(kept);
  }

  // Null where there is none.
  Kept* Find(const void* handle) {
    const std::lock_guard lock(mutex_);
    const auto found = kept_.find(handle);
    return found != kept_.end() ? found->second.get() : nullptr;
  }

  // Null where there is none.
  std::unique_ptr<Kept> Take(const void* handle) {
    const std::lock_guard lock(mutex_);
    const auto found = kept_.find(handle);
    if (found == kept_.end()) {
      return nullptr;
    }
    std::unique_ptr<Kept> taken = std::move(found->second);
    kept_.erase(found);
    return taken;
  }

  void Clear() {
    std::map<const void*, std::unique_ptr<Kept>> gone;
    const std::lock_guard lock(mutex_);
    gone.swap(kept_);
  }

 private:
  std::mutex mutex_;
  std::map<const void*, std::unique_ptr<Kept>> kept_;
};

// A thing that is there from its first use until the file is unloaded, and is not destroyed then:
// at the end of a program that has unloaded nothing, threads that it would wait for may be gone
// already.
template <class Thing>
Thing& Lasting() {
  alignas(Thing) static unsigned char storage[sizeof(Thing)];
  static Thing* const thing = new (storage) Thing;
  return *thing;
}

}  // namespace lx::openfx
