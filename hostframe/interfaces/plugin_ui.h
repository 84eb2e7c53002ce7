// SPDX-License-Identifier: BSD-3-Clause
// What a host calls on the user-interface instance of an effect.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/geometry.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ui_result.h"

namespace qplugin {

// One call at a time on an instance. setInputs, setParams and setResult come before
// anything is drawn or pressed. Points count y downwards from the picture's top.
class QTL_BORDER iQpluginUI : public quantel::iFactory::iInstance {
 public:
  virtual quantel::cPtr<quantel::iFactory::iClassInfo> classInfo() = 0;
  virtual quantel::cGuid uiGuid() = 0;
  virtual quantel::cGuid renderGuid() = 0;  // the render class that goes with this one
  virtual quantel::wstring moduleText() = 0;
  virtual void setInputs(quantel::cPtr<iQpluginInputs> inputs) = 0;
  virtual void setParams(quantel::cPtr<iQpluginParams> params) = 0;
  virtual void setResult(quantel::cPtr<iQpluginUIResult> result) = 0;
  virtual void empty1() = 0;
  virtual void empty2() = 0;
  virtual void parameterChanged(const quantel::wstring& key) = 0;
  virtual void mouseDown(const quantel::cPoint2& point) = 0;
  virtual void mouseUp(const quantel::cPoint2& point) = 0;
  virtual void mouseMove(const quantel::cPoint2& point) = 0;
  virtual void empty3() = 0;
  virtual void drawOverlays() = 0;
  virtual void empty4() = 0;
};

// A second interface of the same instance. The words are not looked at.
class QTL_BORDER iQpluginUI4 {
 public:
  virtual ~iQpluginUI4() = default;
  virtual void colourRequest(std::uintptr_t word) = 0;
  virtual void empty1(std::uintptr_t word) = 0;
  virtual void empty2(std::uintptr_t word) = 0;
  virtual void empty3(std::uintptr_t word) = 0;
  virtual void empty4() = 0;
  virtual void empty5() = 0;
};

}  // namespace qplugin
