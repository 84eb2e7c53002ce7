// SPDX-License-Identifier: BSD-3-Clause
// Controls: values that mirror one parameter of the host each.
//
// The adapters read the host's value into the public members. Commit hands a value back,
// as a float where it is a number; it does nothing without a key, without a host pointer
// or while the host's store is empty. Controls own nothing and belong to the thread of
// their adapter.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/wide_text.h"

namespace lx {

class ControlLX {
 public:
  virtual void Commit() = 0;
  virtual bool SetHidden(bool value);    // stores the flag and gives it back
  virtual bool SetDisabled(bool value);  // stores the flag and gives it back
  virtual void Hook1() {}
  virtual void Hook2() {}

  const quantel::wstring* key = nullptr;                         // borrowed
  const quantel::cPtr<qplugin::iQpluginParams>* host = nullptr;  // borrowed
  bool hidden = false;
  bool disabled = false;

 protected:
  ControlLX() = default;
  ~ControlLX() = default;

  // The store to write to, or null.
  qplugin::iQpluginParams* Store() const;
};

class IntegerControlLX final : public ControlLX {
 public:
  void Commit() override;
  std::int32_t value = 0;
};

class CheckboxControlLX final : public ControlLX {
 public:
  void Commit() override;
  bool value = false;
};

// Counts from 1; the host counts from 0.
class ListControlLX final : public ControlLX {
 public:
  void Commit() override;
  std::int32_t value = 1;
};

class FloatControlLX final : public ControlLX {
 public:
  void Commit() override;
  double value = 0.0;
};

class SizeControlLX final : public ControlLX {
 public:
  void Commit() override;
  double value = 0.0;
};

// Two parameters: the key with "_X" and with "_Y" appended.
class PositionControlLX final : public ControlLX {
 public:
  void Commit() override;
  double x = 0.0;
  double y = 0.0;
};

// A control's value at a time. The time is not looked at: the host hands over the value
// of the frame. Callers give kNoTime.
inline constexpr double kNoTime = -1.0;
void GetIntegerValue(const IntegerControlLX& control, double time, std::int32_t* value);
void GetCheckboxValue(const CheckboxControlLX& control, double time, bool* value);

}  // namespace lx
