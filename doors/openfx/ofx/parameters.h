// SPDX-License-Identifier: BSD-3-Clause
// OpenFX: parameters.
#pragma once

#include "doors/openfx/ofx/core.h"

namespace ofx {

struct Parameter;
struct ParameterSet;

struct RangeD {
  double min, max;
};

extern "C" {

// Where arguments are open, values follow, or pointers to where values go: double, int, or two of
// either, by the parameter's type. A choice and a truth value are an int.
struct ParameterSuite {
  Status (*paramDefine)(ParameterSet*, const char* type, const char* name,
                        PropertySet** properties);
  Status (*paramGetHandle)(ParameterSet*, const char* name, Parameter** parameter,
                           PropertySet** properties);
  Status (*paramSetGetPropertySet)(ParameterSet*, PropertySet** properties);
  Status (*paramGetPropertySet)(Parameter*, PropertySet** properties);
  Status (*paramGetValue)(Parameter*, ...);
  Status (*paramGetValueAtTime)(Parameter*, Time time, ...);
  Status (*paramGetDerivative)(Parameter*, Time time, ...);
  Status (*paramGetIntegral)(Parameter*, Time from, Time to, ...);
  Status (*paramSetValue)(Parameter*, ...);
  Status (*paramSetValueAtTime)(Parameter*, Time time, ...);
  Status (*paramGetNumKeys)(Parameter*, unsigned int* count);
  Status (*paramGetKeyTime)(Parameter*, unsigned int key, Time* time);
  Status (*paramGetKeyIndex)(Parameter*, Time time, int direction, int* index);
  Status (*paramDeleteKey)(Parameter*, Time time);
  Status (*paramDeleteAllKeys)(Parameter*);
  Status (*paramCopy)(Parameter* to, Parameter* from, Time offset, const RangeD* frames);
  Status (*paramEditBegin)(ParameterSet*, const char* name);
  Status (*paramEditEnd)(ParameterSet*);
};

}  // extern "C"

inline constexpr char kParameterSuite[] = "OfxParameterSuite";

inline constexpr char kParamTypeInteger[] = "OfxParamTypeInteger";
inline constexpr char kParamTypeDouble[] = "OfxParamTypeDouble";
inline constexpr char kParamTypeBoolean[] = "OfxParamTypeBoolean";
inline constexpr char kParamTypeChoice[] = "OfxParamTypeChoice";
inline constexpr char kParamTypeDouble2D[] = "OfxParamTypeDouble2D";
inline constexpr char kParamTypeGroup[] = "OfxParamTypeGroup";
inline constexpr char kParamTypePage[] = "OfxParamTypePage";

inline constexpr char kParamPropHint[] = "OfxParamPropHint";
inline constexpr char kParamPropScriptName[] = "OfxParamPropScriptName";
inline constexpr char kParamPropParent[] = "OfxParamPropParent";
inline constexpr char kParamPropEnabled[] = "OfxParamPropEnabled";
inline constexpr char kParamPropDefault[] = "OfxParamPropDefault";
inline constexpr char kParamPropMin[] = "OfxParamPropMin";
inline constexpr char kParamPropMax[] = "OfxParamPropMax";
inline constexpr char kParamPropDisplayMin[] = "OfxParamPropDisplayMin";
inline constexpr char kParamPropDisplayMax[] = "OfxParamPropDisplayMax";
inline constexpr char kParamPropIncrement[] = "OfxParamPropIncrement";
inline constexpr char kParamPropDigits[] = "OfxParamPropDigits";
inline constexpr char kParamPropChoiceOption[] = "OfxParamPropChoiceOption";
inline constexpr char kParamPropPageChild[] = "OfxParamPropPageChild";
inline constexpr char kParamPropDoubleType[] = "OfxParamPropDoubleType";
inline constexpr char kParamDoubleTypePlain[] = "OfxParamDoubleTypePlain";
inline constexpr char kParamDoubleTypeAngle[] = "OfxParamDoubleTypeAngle";
inline constexpr char kParamDoubleTypeX[] = "OfxParamDoubleTypeX";
inline constexpr char kParamDoubleTypeY[] = "OfxParamDoubleTypeY";
inline constexpr char kParamDoubleTypeXY[] = "OfxParamDoubleTypeXY";

}  // namespace ofx
