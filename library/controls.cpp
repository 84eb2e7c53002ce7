// SPDX-License-Identifier: BSD-3-Clause
#include "library/controls.h"

#include "baselib/utils/convert.h"

namespace lx {

bool ControlLX::SetHidden(bool value) {
  hidden = value;
  return hidden;
}

bool ControlLX::SetDisabled(bool value) {
  disabled = value;
  return disabled;
}

qplugin::iQpluginParams* ControlLX::Store() const {
  return key != nullptr && host != nullptr ? host->Object() : nullptr;
}

void IntegerControlLX::Commit() {
  if (qplugin::iQpluginParams* store = Store()) {
    store->setFloat(*key, static_cast<float>(value));
  }
}

void CheckboxControlLX::Commit() {
  if (qplugin::iQpluginParams* store = Store()) {
    store->setBool(*key, value);
  }
}

void ListControlLX::Commit() {
  if (qplugin::iQpluginParams* store = Store()) {
    // Unsigned, so that the smallest number has a result too.
    store->setList(*key, static_cast<std::int32_t>(static_cast<std::uint32_t>(value) - 1U));
  }
}

void FloatControlLX::Commit() {
  if (qplugin::iQpluginParams* store = Store()) {
    store->setFloat(*key, NarrowToFloat(value));
  }
}

void SizeControlLX::Commit() {
  if (qplugin::iQpluginParams* store = Store()) {
    store->setFloat(*key, NarrowToFloat(value));
  }
}

void PositionControlLX::Commit() {
  if (qplugin::iQpluginParams* store = Store()) {
    store->setFloat(*key + u"_X", NarrowToFloat(x));
    store->setFloat(*key + u"_Y", NarrowToFloat(y));
  }
}

void GetIntegerValue(const IntegerControlLX& control, double /*time*/, std::int32_t* value) {
  *value = control.value;
}

void GetCheckboxValue(const CheckboxControlLX& control, double /*time*/, bool* value) {
  *value = control.value;
}

}  // namespace lx
