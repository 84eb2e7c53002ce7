// SPDX-License-Identifier: BSD-3-Clause
// Trace: the calls that cross the border, line by line.
//
// Traced() puts an object of the host's between it and the module that says each call with
// its arguments and its result and passes it on. Without a trace it gives back the object
// itself.
#pragma once

#include <mutex>
#include <ostream>
#include <sstream>
#include <string>

#include "hostframe/interfaces/factory.h"
#include "hostframe/interfaces/iqplugin.h"
#include "hostframe/interfaces/module.h"
#include "hostframe/interfaces/params.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/ui_result.h"

namespace glimmerhost {

// Must outlive every object that it traces. Any thread may call: lines stay whole.
class Trace {
 public:
  explicit Trace(std::ostream& out) : out_(out) {}

  // What a person did; the calls of it follow.
  void Step(const std::string& what) { Line("", what); }

  // A call of the host on the module: "  ui.mouseDown(3, 4)".
  template <class... Parts>
  void ToModule(const Parts&... parts) {
    Line("  ", parts...);
  }

  // A call of the module on the host, with its result: "    dialog.isWidgetVisible(...) = no".
  template <class... Parts>
  void FromModule(const Parts&... parts) {
    Line("    ", parts...);
  }

 private:
  template <class... Parts>
  void Line(const Parts&... parts) {
    const std::lock_guard lock(mutex_);
    (out_ << ... << parts) << '\n';
  }

  std::mutex mutex_;
  std::ostream& out_;
};

// The host's calls are noted where they are made, which may be without a trace.
template <class... Parts>
void TraceToModule(Trace* trace, const Parts&... parts) {
  if (trace != nullptr) {
    trace->ToModule(parts...);
  }
}

quantel::cPtr<quantel::iFactory> Traced(const quantel::cPtr<quantel::iFactory>& object,
                                        Trace* trace);
quantel::cPtr<qplugin::iQpluginModule> Traced(const quantel::cPtr<qplugin::iQpluginModule>& object,
                                              Trace* trace);
quantel::cPtr<qplugin::iQpluginParams> Traced(const quantel::cPtr<qplugin::iQpluginParams>& object,
                                              Trace* trace);
quantel::cPtr<qplugin::iQpluginInputs> Traced(const quantel::cPtr<qplugin::iQpluginInputs>& object,
                                              Trace* trace);
quantel::cPtr<qplugin::iQpluginTarget> Traced(const quantel::cPtr<qplugin::iQpluginTarget>& object,
                                              Trace* trace);
quantel::cPtr<qplugin::iQpluginFormat> Traced(const quantel::cPtr<qplugin::iQpluginFormat>& object,
                                              Trace* trace);

// Every result of this host is of the second kind.
quantel::cPtr<qplugin::iQpluginUIResult2> Traced(
    const quantel::cPtr<qplugin::iQpluginUIResult2>& object, Trace* trace);

}  // namespace glimmerhost
