// SPDX-License-Identifier: BSD-3-Clause
// How an action of the host ends in a status.
#pragma once

#include <new>

#include "doors/openfx/host.h"
#include "doors/openfx/instance.h"
#include "doors/openfx/registry.h"

namespace lx::openfx {

// By the handles of the host.
Registry<Instance>& Instances();

// Throws for a handle that the host has not had created.
Instance& InstanceOf(const void* handle);

// Runs an action to its status. Nothing that is thrown leaves it, and a text is shown beside the
// instance, if there is one.
template <class Action>
ofx::Status RunAction(const void* handle, const Action& action) noexcept {
  try {
    try {
      return action();
    } catch (const Failure& failure) {
      Instance* instance = Instances().Find(handle);
      if (instance != nullptr && !failure.text.empty()) {
        instance->Tell(failure.text);
      }
      return failure.status;
    } catch (const std::bad_alloc&) {
      return ofx::kErrMemory;
    }
  } catch (...) {
    return ofx::kFailed;
  }
}

}  // namespace lx::openfx
