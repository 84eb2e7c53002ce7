// SPDX-License-Identifier: BSD-3-Clause
// What a host calls on the render instance of an effect.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/pictures.h"

namespace qplugin {

// One call at a time on an instance; instances may render on threads of their own.
// setTarget, setInputs and setParams come before renderFrame, in any order.
class QTL_BORDER iQpluginRender : public quantel::iFactory::iInstance {
 public:
  virtual quantel::cPtr<quantel::iFactory::iClassInfo> classInfo() = 0;
  virtual quantel::cGuid renderGuid() = 0;
  virtual void setTarget(quantel::cPtr<iQpluginTarget> target) = 0;
  virtual void setInputs(quantel::cPtr<iQpluginInputs> inputs) = 0;
  virtual void setParams(quantel::cPtr<iQpluginParams> params) = 0;

  // Writes one frame to the target. The two words are not looked at.
  virtual void renderFrame(int frame, std::uintptr_t word1, std::uintptr_t word2) = 0;
};

// A second interface of the same instance; its operation does nothing.
class QTL_BORDER iQpluginPreRender {
 public:
  virtual ~iQpluginPreRender() = default;
  virtual void preRender(std::uintptr_t word1, std::uintptr_t word2) = 0;
};

}  // namespace qplugin
