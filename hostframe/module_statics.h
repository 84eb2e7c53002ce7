// SPDX-License-Identifier: BSD-3-Clause
// The objects that the module holds from load to unload.
//
// They are made by static initialisers in the order in which they stand here, before a
// host has called anything, and are destroyed in the reverse order at unload.
#pragma once

#include <vector>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/guid.h"
#include "hostframe/interfaces/wide_text.h"

namespace allplugins {

extern const quantel::cGuid uiInterfaceGuid;
extern const quantel::cGuid renderInterfaceGuid;
extern const quantel::cGuid utilityInterfaceGuid;  // read by nobody

extern const quantel::wstring developerName;
extern const quantel::wstring effectName;
extern const quantel::wstring classTail;  // how a class's text tells developer and effect

extern const quantel::cGuid uiClassGuid;
extern const quantel::cGuid renderClassGuid;

// The parameters' keys in the host's store.
extern const quantel::wstring keyShape;
extern const quantel::wstring keyMatch;
extern const quantel::wstring keyRadiusX;
extern const quantel::wstring keyRadiusY;
extern const quantel::wstring keySides;
extern const quantel::wstring keyRotation;
extern const quantel::wstring keyEmphasis;
extern const quantel::wstring keyEmphAlpha;
extern const quantel::wstring keyPrecision;
extern const quantel::wstring keyCenter;
extern const quantel::wstring keyCenterX;
extern const quantel::wstring keyCenterY;
extern const quantel::wstring keyRadiusPSF1;
extern const quantel::wstring keyRadiusPSF2;

// The key of the second input. A constant, so that it has no place among the statics.
inline constexpr const char16_t* keySpread = u"PRM_Spread";

// The module's classes in the host's factory, in the order of registration.
struct Registrations : std::vector<quantel::cPtr<quantel::cRegistration>> {
  ~Registrations();  // takes the classes out, front to back
};
extern Registrations registrations;

extern quantel::wstring savedModuleText;
extern quantel::wstring savedModuleText2;  // read by nobody

}  // namespace allplugins
