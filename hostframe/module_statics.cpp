// SPDX-License-Identifier: BSD-3-Clause
// One source for all of them: across sources the language gives no order of making.
#include "hostframe/module_statics.h"

#include "hostframe/interfaces/class_info.h"

namespace allplugins {

const quantel::cGuid uiInterfaceGuid(quantel::ClassDescription<qplugin::iQpluginUI>::kText);
const quantel::cGuid renderInterfaceGuid(quantel::ClassDescription<qplugin::iQpluginRender>::kText);
const quantel::cGuid utilityInterfaceGuid(
    u"{CE283CB6-2762-4977-B2A4-C1CEA0B9FC84} // Maitosgi GUI Interface");

const quantel::wstring developerName(u"LXTorvane Q-S");
const quantel::wstring effectName(u"GlimmerBlur");
const quantel::wstring classTail(u" //DeveloperName:<" + developerName + u"> EffectName:<" +
                                 effectName + u">");

const quantel::cGuid uiClassGuid(u"{2FD3AFEC-CDAB-453d-9E3A-F3E6DDA03F08}" + classTail);
const quantel::cGuid renderClassGuid(u"{1FD3AFEC-CDAB-453d-9E3A-F3E6DDA03F08}" + classTail);

const quantel::wstring keyShape(u"PRM_Shape");
const quantel::wstring keyMatch(u"PRM_Match");
const quantel::wstring keyRadiusX(u"PRM_RadiusX");
const quantel::wstring keyRadiusY(u"PRM_RadiusY");
const quantel::wstring keySides(u"PRM_Sides");
const quantel::wstring keyRotation(u"PRM_Rotation");
const quantel::wstring keyEmphasis(u"PRM_Emphasis");
const quantel::wstring keyEmphAlpha(u"PRM_EmphAlpha");
const quantel::wstring keyPrecision(u"PRM_Precision");
const quantel::wstring keyCenter(u"PRM_Center");
const quantel::wstring keyCenterX(u"PRM_Center_X");
const quantel::wstring keyCenterY(u"PRM_Center_Y");
const quantel::wstring keyRadiusPSF1(u"PRM_RadiusPSF1");
const quantel::wstring keyRadiusPSF2(u"PRM_RadiusPSF2");

Registrations registrations;

quantel::wstring savedModuleText;
quantel::wstring savedModuleText2;

// A vector's own destructor promises no order.
Registrations::~Registrations() {
  for (quantel::cPtr<quantel::cRegistration>& registration : *this) {
    registration.Reset();
  }
}

}  // namespace allplugins
