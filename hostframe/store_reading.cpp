// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/store_reading.h"

#include "baselib/utils/convert.h"
#include "hostframe/module_statics.h"

namespace allplugins {
namespace {

using Info = lx::GlimmerBlurInfo;

// What getFloat and getBool ask for.
constexpr int kValueForm = 0;

// One parameter under its key, read into a control.
class Reading {
 public:
  Reading(qplugin::iQpluginParams* store, const quantel::wstring& key) : store_(store), key_(key) {}

  double Number() const { return store_->getFloat(key_, kValueForm); }
  bool Flag() const { return store_->getBool(key_, kValueForm); }

 private:
  qplugin::iQpluginParams* store_;
  const quantel::wstring& key_;
};

struct SingleParameter {
  const quantel::wstring& key;
  void (*read)(const Reading& from, Info* effect);
};

constexpr SingleParameter kSingleParameters[] = {
    {keyRadiusX, [](const Reading& from, Info* to) { to->radiusX.value = from.Number(); }},
    {keyRadiusY, [](const Reading& from, Info* to) { to->radiusY.value = from.Number(); }},
    {keySides,
     [](const Reading& from, Info* to) { to->sides.value = lx::TruncateToInt32(from.Number()); }},
    {keyRotation, [](const Reading& from, Info* to) { to->rotation.value = from.Number(); }},
    {keyEmphasis, [](const Reading& from, Info* to) { to->emphasis.value = from.Number(); }},
    {keyEmphAlpha, [](const Reading& from, Info* to) { to->emphAlpha.value = from.Flag(); }},
    {keyPrecision, [](const Reading& from, Info* to) { to->precision.value = from.Flag(); }},
    {keyCenterX, [](const Reading& from, Info* to) { to->center.x = from.Number(); }},
    {keyCenterY, [](const Reading& from, Info* to) { to->center.y = from.Number(); }},
    {keyRadiusPSF1, [](const Reading& from, Info* to) { to->radiusPSF1.value = from.Number(); }},
    {keyRadiusPSF2, [](const Reading& from, Info* to) { to->radiusPSF2.value = from.Number(); }},
};

}  // namespace

// Unsigned, so that every answer has a sum.
std::int32_t ReadShape(qplugin::iQpluginParams* store) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(store->getList(keyShape)) + 1U);
}

bool ReadMatch(qplugin::iQpluginParams* store) { return store->getBool(keyMatch, kValueForm); }

void ReadSingleParameters(qplugin::iQpluginParams* store, lx::GlimmerBlurInfo* effect) {
  for (const SingleParameter& parameter : kSingleParameters) {
    parameter.read(Reading(store, parameter.key), effect);
  }
}

void ReadSingleParameter(const quantel::wstring& key, qplugin::iQpluginParams* store,
                         lx::GlimmerBlurInfo* effect) {
  for (const SingleParameter& parameter : kSingleParameters) {
    if (parameter.key == key) {
      parameter.read(Reading(store, key), effect);
      return;
    }
  }
}

}  // namespace allplugins
