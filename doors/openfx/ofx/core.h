// SPDX-License-Identifier: BSD-3-Clause
// OpenFX: plug-ins, hosts, statuses and properties.
//
// Orders, widths and texts here are facts of an open standard that hosts were compiled with: none
// may change. What the effect has no use for is left out, except in suites, whose every place
// counts.
//
// A suite is a table of C functions that the host hands over by name and version. Handles are the
// host's own: what they point at, only the host knows.
#pragma once

namespace ofx {

using Status = int;

inline constexpr Status kOk = 0;
inline constexpr Status kFailed = 1;
inline constexpr Status kErrFatal = 2;
inline constexpr Status kErrUnknown = 3;
inline constexpr Status kErrMissingHostFeature = 4;
inline constexpr Status kErrUnsupported = 5;
inline constexpr Status kErrMemory = 8;
inline constexpr Status kErrBadHandle = 9;
inline constexpr Status kErrBadIndex = 10;
inline constexpr Status kErrValue = 11;
inline constexpr Status kReplyDefault = 14;
inline constexpr Status kErrImageFormat = 1000;

using Time = double;

struct PointD {
  double x, y;
};

// From the first corner up to the second, which is outside.
struct RectI {
  int x1, y1, x2, y2;
};
struct RectD {
  double x1, y1, x2, y2;
};

struct PropertySet;

extern "C" {

// handle is of what the action is about: an effect, its descriptor, an interact.
using EntryPoint = Status(const char* action, const void* handle, PropertySet* in,
                          PropertySet* out);

struct Host {
  PropertySet* host;
  const void* (*fetchSuite)(PropertySet* host, const char* name, int version);
};

struct Plugin {
  const char* api;
  int apiVersion;
  const char* identifier;
  unsigned int majorVersion;
  unsigned int minorVersion;
  void (*setHost)(Host* host);
  EntryPoint* mainEntry;
};

// The host owns the strings that it answers, until the next call.
struct PropertySuite {
  Status (*setPointer)(PropertySet*, const char* name, int index, void* value);
  Status (*setString)(PropertySet*, const char* name, int index, const char* value);
  Status (*setDouble)(PropertySet*, const char* name, int index, double value);
  Status (*setInt)(PropertySet*, const char* name, int index, int value);
  Status (*setPointerN)(PropertySet*, const char* name, int count, void* const* values);
  Status (*setStringN)(PropertySet*, const char* name, int count, const char* const* values);
  Status (*setDoubleN)(PropertySet*, const char* name, int count, const double* values);
  Status (*setIntN)(PropertySet*, const char* name, int count, const int* values);
  Status (*getPointer)(PropertySet*, const char* name, int index, void** value);
  Status (*getString)(PropertySet*, const char* name, int index, char** value);
  Status (*getDouble)(PropertySet*, const char* name, int index, double* value);
  Status (*getInt)(PropertySet*, const char* name, int index, int* value);
  Status (*getPointerN)(PropertySet*, const char* name, int count, void** values);
  Status (*getStringN)(PropertySet*, const char* name, int count, char** values);
  Status (*getDoubleN)(PropertySet*, const char* name, int count, double* values);
  Status (*getIntN)(PropertySet*, const char* name, int count, int* values);
  Status (*reset)(PropertySet*, const char* name);
  Status (*getDimension)(PropertySet*, const char* name, int* count);
};

}  // extern "C"

inline constexpr char kPropertySuite[] = "OfxPropertySuite";

inline constexpr char kActionLoad[] = "OfxActionLoad";
inline constexpr char kActionUnload[] = "OfxActionUnload";
inline constexpr char kActionDescribe[] = "OfxActionDescribe";
inline constexpr char kActionCreateInstance[] = "OfxActionCreateInstance";
inline constexpr char kActionDestroyInstance[] = "OfxActionDestroyInstance";
inline constexpr char kActionInstanceChanged[] = "OfxActionInstanceChanged";
inline constexpr char kActionPurgeCaches[] = "OfxActionPurgeCaches";

inline constexpr char kPropName[] = "OfxPropName";
inline constexpr char kPropTime[] = "OfxPropTime";
inline constexpr char kPropLabel[] = "OfxPropLabel";
inline constexpr char kPropShortLabel[] = "OfxPropShortLabel";
inline constexpr char kPropLongLabel[] = "OfxPropLongLabel";
inline constexpr char kPropPluginDescription[] = "OfxPropPluginDescription";
inline constexpr char kPropEffectInstance[] = "OfxPropEffectInstance";

inline constexpr char kBitDepthByte[] = "OfxBitDepthByte";
inline constexpr char kBitDepthShort[] = "OfxBitDepthShort";
inline constexpr char kBitDepthFloat[] = "OfxBitDepthFloat";

}  // namespace ofx
