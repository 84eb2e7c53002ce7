// SPDX-License-Identifier: BSD-3-Clause
// What the tracing stand-ins share; included by their sources alone.
#pragma once

#include <cstring>
#include <sstream>
#include <string>

#include "host/module/trace/trace.h"
#include "host/support/text.h"
#include "hostframe/interfaces/colour.h"
#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

// Holds the object that stands behind, and says calls under a name.
template <class Interface>
class TracedObject : public Interface, public quantel::cRefCount {
 public:
  TracedObject(const quantel::cPtr<Interface>& object, Trace* trace)
      : object_(object), trace_(trace) {}

 protected:
  Interface& Object() const { return *object_; }
  Trace* GetTrace() const { return trace_; }

  template <class... Parts>
  void Say(const Parts&... parts) const {
    trace_->FromModule(parts...);
  }

 private:
  quantel::cPtr<Interface> object_;
  Trace* trace_;
};

// A stand-in before the object; the object itself where it is null or nothing is traced.
template <class StandIn, class Interface>
quantel::cPtr<Interface> PutInFront(const quantel::cPtr<Interface>& object, Trace* trace) {
  if (!object || trace == nullptr) {
    return object;
  }
  return quantel::cPtr<Interface>(new StandIn(object, trace));
}

inline const char* YesOrNo(bool value) { return value ? "yes" : "no"; }

inline std::string Quoted(const quantel::wstring& text) { return '"' + ToUtf8(text) + '"'; }

inline std::string PointText(const quantel::cPoint2& point) {
  std::ostringstream out;
  out << '(' << point.x << ", " << point.y << ')';
  return out.str();
}

inline std::string RectText(const quantel::cRect4& rect) {
  std::ostringstream out;
  out << '(' << rect.first << ", " << rect.second << ", " << rect.third << ", " << rect.fourth
      << ')';
  return out.str();
}

inline std::string ColourText(const quantel::cColour& colour) {
  float parts[3];
  std::memcpy(parts, colour.toRGB().words, sizeof parts);
  std::ostringstream out;
  out << "rgb(" << parts[0] << ", " << parts[1] << ", " << parts[2] << ')';
  return out.str();
}

}  // namespace glimmerhost
