// SPDX-License-Identifier: BSD-3-Clause
// The host that has loaded us: its suites, and its answers as values and exceptions.
//
// Nothing that is thrown here leaves the plug-in: see plugin.cpp.
#pragma once

#include <string>

#include "doors/openfx/ofx/core.h"
#include "doors/openfx/ofx/image_effect.h"
#include "doors/openfx/ofx/interact.h"
#include "doors/openfx/ofx/messages.h"
#include "doors/openfx/ofx/parameters.h"

namespace lx::openfx {

// What an action ends with that cannot be done.
struct Failure {
  ofx::Status status;
  std::string text;  // for the person who waits for it; may be empty
};

struct Suites {
  const ofx::PropertySuite* properties = nullptr;
  const ofx::ImageEffectSuite* effects = nullptr;
  const ofx::ParameterSuite* parameters = nullptr;

  // Null where the host has none.
  const ofx::InteractSuite* interacts = nullptr;
  const ofx::DrawSuite* drawing = nullptr;
  const ofx::MessageSuite* messages = nullptr;
  bool messagesStay = false;  // whether messages may stand beside an effect
};

// Between FetchSuites and DropSuites. Actions read them on any thread.
const Suites& HostSuites();

// Throws kErrMissingHostFeature where a suite is missing that nothing can be done without.
void FetchSuites(const ofx::Host* host);
void DropSuites();

// Throws for every other status than kOk. What a host says of its own call is not passed on as it
// is: kErrFatal of a property would end the program.
void Check(ofx::Status status);

// Properties of the host. A host answers kErrUnknown for one that it does not know; the optional
// ones are then as if they were not asked for. Every other answer but kOk throws.
class Properties {
 public:
  explicit Properties(ofx::PropertySet* set) : set_(set) {}

  int Int(const char* name, int index = 0) const;
  double Double(const char* name, int index = 0) const;
  std::string String(const char* name) const;
  void* Pointer(const char* name) const;
  ofx::RectI RectI(const char* name) const;
  ofx::RectD RectD(const char* name) const;
  ofx::PointD Point(const char* name) const;

  int IntOr(const char* name, int otherwise) const;
  double DoubleOr(const char* name, int index, double otherwise) const;
  std::string StringOr(const char* name, const char* otherwise) const;
  void* PointerOr(const char* name, void* otherwise) const;

  void Set(const char* name, int value, int index = 0) const;
  void Set(const char* name, double value, int index = 0) const;
  void Set(const char* name, const char* value, int index = 0) const;
  void Set(const char* name, const ofx::RectD& value) const;

  // A host may do without it. False where it does.
  bool Offer(const char* name, int value, int index = 0) const;
  bool Offer(const char* name, double value, int index = 0) const;
  bool Offer(const char* name, const char* value, int index = 0) const;
  bool Offer(const char* name, void* value) const;

 private:
  ofx::PropertySet* set_;
};

Properties PropertiesOf(ofx::ImageEffect* effect);

// Shows a text beside the effect, or in a window where the host cannot. Asks for no answer: it is
// called where something has failed already.
void ShowMessage(ofx::ImageEffect* effect, const std::string& text);

// Takes away what ShowMessage has left.
void HideMessage(ofx::ImageEffect* effect);

}  // namespace lx::openfx
