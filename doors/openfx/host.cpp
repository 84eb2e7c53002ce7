// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/host.h"

namespace lx::openfx {
namespace {

Suites suites;

template <class Suite>
const Suite* Fetch(const ofx::Host* host, const char* name, int version) {
  return static_cast<const Suite*>(host->fetchSuite(host->host, name, version));
}

template <class Suite>
const Suite* Need(const ofx::Host* host, const char* name) {
  const auto* suite = Fetch<Suite>(host, name, 1);
  if (suite == nullptr) {
    throw Failure{ofx::kErrMissingHostFeature, {}};
  }
  return suite;
}

// False where the host does not know what it was asked for.
bool IsKnown(ofx::Status status) {
  if (status == ofx::kErrUnknown || status == ofx::kErrUnsupported) {
    return false;
  }
  Check(status);
  return true;
}

}  // namespace

const Suites& HostSuites() { return suites; }

void FetchSuites(const ofx::Host* host) {
  if (host == nullptr || host->fetchSuite == nullptr) {
    throw Failure{ofx::kErrMissingHostFeature, {}};
  }
  Suites fetched;
  fetched.properties = Need<ofx::PropertySuite>(host, ofx::kPropertySuite);
  fetched.effects = Need<ofx::ImageEffectSuite>(host, ofx::kImageEffectSuite);
  fetched.parameters = Need<ofx::ParameterSuite>(host, ofx::kParameterSuite);
  fetched.interacts = Fetch<ofx::InteractSuite>(host, ofx::kInteractSuite, 1);
  fetched.drawing = Fetch<ofx::DrawSuite>(host, ofx::kDrawSuite, 1);
  fetched.messages = Fetch<ofx::MessageSuite>(host, ofx::kMessageSuite, 2);
  fetched.messagesStay = fetched.messages != nullptr;
  if (fetched.messages == nullptr) {
    fetched.messages = Fetch<ofx::MessageSuite>(host, ofx::kMessageSuite, 1);
  }
  suites = fetched;
}

void DropSuites() { suites = {}; }

void Check(ofx::Status status) {
  if (status != ofx::kOk) {
    throw Failure{status == ofx::kErrMemory ? ofx::kErrMemory : ofx::kFailed, {}};
  }
}

int Properties::Int(const char* name, int index) const {
  int value = 0;
  Check(suites.properties->getInt(set_, name, index, &value));
  return value;
}

double Properties::Double(const char* name, int index) const {
  double value = 0.0;
  Check(suites.properties->getDouble(set_, name, index, &value));
  return value;
}

std::string Properties::String(const char* name) const {
  char* value = nullptr;
  Check(suites.properties->getString(set_, name, 0, &value));
  return value != nullptr ? value : "";
}

void* Properties::Pointer(const char* name) const {
  void* value = nullptr;
  Check(suites.properties->getPointer(set_, name, 0, &value));
  return value;
}

ofx::RectI Properties::RectI(const char* name) const {
  return {Int(name, 0), Int(name, 1), Int(name, 2), Int(name, 3)};
}

ofx::RectD Properties::RectD(const char* name) const {
  return {Double(name, 0), Double(name, 1), Double(name, 2), Double(name, 3)};
}

ofx::PointD Properties::Point(const char* name) const { return {Double(name, 0), Double(name, 1)}; }

int Properties::IntOr(const char* name, int otherwise) const {
  int value = 0;
  return IsKnown(suites.properties->getInt(set_, name, 0, &value)) ? value : otherwise;
}

double Properties::DoubleOr(const char* name, int index, double otherwise) const {
  double value = 0.0;
  return IsKnown(suites.properties->getDouble(set_, name, index, &value)) ? value : otherwise;
}

std::string Properties::StringOr(const char* name, const char* otherwise) const {
  char* value = nullptr;
  const bool known = IsKnown(suites.properties->getString(set_, name, 0, &value));
  return known && value != nullptr ? value : otherwise;
}

void* Properties::PointerOr(const char* name, void* otherwise) const {
  void* value = nullptr;
  return IsKnown(suites.properties->getPointer(set_, name, 0, &value)) ? value : otherwise;
}

void Properties::Set(const char* name, int value, int index) const {
  Check(suites.properties->setInt(set_, name, index, value));
}

void Properties::Set(const char* name, double value, int index) const {
  Check(suites.properties->setDouble(set_, name, index, value));
}

void Properties::Set(const char* name, const char* value, int index) const {
  Check(suites.properties->setString(set_, name, index, value));
}

void Properties::Set(const char* name, const ofx::RectD& value) const {
  Set(name, value.x1, 0);
  Set(name, value.y1, 1);
  Set(name, value.x2, 2);
  Set(name, value.y2, 3);
}

bool Properties::Offer(const char* name, int value, int index) const {
  return IsKnown(suites.properties->setInt(set_, name, index, value));
}

bool Properties::Offer(const char* name, double value, int index) const {
  return IsKnown(suites.properties->setDouble(set_, name, index, value));
}

bool Properties::Offer(const char* name, const char* value, int index) const {
  return IsKnown(suites.properties->setString(set_, name, index, value));
}

bool Properties::Offer(const char* name, void* value) const {
  return IsKnown(suites.properties->setPointer(set_, name, 0, value));
}

Properties PropertiesOf(ofx::ImageEffect* effect) {
  ofx::PropertySet* properties = nullptr;
  Check(suites.effects->getPropertySet(effect, &properties));
  return Properties(properties);
}

void ShowMessage(ofx::ImageEffect* effect, const std::string& text) {
  if (suites.messages == nullptr) {
    return;
  }
  const auto show =
      suites.messagesStay ? suites.messages->setPersistentMessage : suites.messages->message;
  show(effect, ofx::kMessageError, "", "%s", text.c_str());
}

void HideMessage(ofx::ImageEffect* effect) {
  if (suites.messagesStay) {
    suites.messages->clearPersistentMessage(effect);
  }
}

}  // namespace lx::openfx
