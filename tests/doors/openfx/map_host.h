// SPDX-License-Identifier: BSD-3-Clause
// An OpenFX host over maps: it offers the suites, keeps what a plug-in tells it, and can have any
// call fail.
//
// Handles are the objects below. Instances may be used on several threads at once.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "doors/openfx/ofx/core.h"
#include "doors/openfx/ofx/image_effect.h"
#include "doors/openfx/ofx/interact.h"
#include "doors/openfx/ofx/messages.h"
#include "doors/openfx/ofx/parameters.h"
#include "tests/doors/openfx/ofx_picture.h"

namespace lx_test {

class MapHost;

using Log = std::vector<std::string>;
using OfxValue = std::variant<int, double, std::string, void*>;

}  // namespace lx_test

// What the plug-in holds without knowing.
namespace ofx {

struct PropertySet {
  lx_test::MapHost* host;
  std::string name;  // as the log has it
  std::map<std::string, std::vector<lx_test::OfxValue>> values;

  // One line for each property, in alphabetical order.
  std::string Text() const;
  void Set(const std::string& property, std::vector<lx_test::OfxValue> given) {
    values[property] = std::move(given);
  }
};

struct Parameter {
  lx_test::MapHost* host;
  std::string name;
  std::string type;
  PropertySet properties;
  std::map<double, PointD> keys;  // between two the value is on the line
};

struct ParameterSet {
  lx_test::MapHost* host;
  PropertySet properties;
  std::vector<std::unique_ptr<Parameter>> parameters;  // in the order of their definition

  Parameter* Find(const std::string& name) const;
};

struct ImageClip {
  lx_test::MapHost* host;
  std::string name;
  PropertySet properties;
  RectD region{};
  lx_test::OfxPicture* picture = nullptr;  // none: not connected
};

struct ImageEffect {
  lx_test::MapHost* host;
  PropertySet properties;
  ParameterSet parameters;
  std::vector<std::unique_ptr<ImageClip>> clips;
  PointD renderScale{1.0, 1.0};
  std::vector<std::unique_ptr<PropertySet>> lent;  // images that were not given back
  int polls = 0;                                   // how often it was asked whether to give up
  std::string message;                             // that stands beside it

  explicit ImageEffect(lx_test::MapHost* owner, std::string label);
  ImageClip* Find(const std::string& name) const;
  Parameter& operator[](const std::string& name) { return *parameters.Find(name); }
  void SetValue(const std::string& name, double value, double second = 0.0) {
    parameters.Find(name)->keys = {{0.0, {value, second}}};
  }
};

struct Interact {
  lx_test::MapHost* host;
  PropertySet properties;
};

struct DrawContext {
  lx_test::MapHost* host;
};

}  // namespace ofx

namespace lx_test {

class MapHost {
 public:
  MapHost();
  MapHost(const MapHost&) = delete;
  MapHost& operator=(const MapHost&) = delete;

  const ofx::Host* Table() const { return &table_; }

  // Suites that it does not have, such as "OfxMessageSuite 2".
  std::set<std::string> missingSuites;
  // Properties that it does not know.
  std::set<std::string> unknownProperties;

  // The n-th call from now on, counted from 1, of any function that answers a status fails with it.
  // A question whether to give up is answered by yes.
  void FailCall(int n, ofx::Status status);
  int Calls() const { return calls_; }  // since FailCall, or from the beginning
  std::string FailedCall() const;       // empty where none has failed

  int abortAt = 0;  // which question whether to give up is the first to be answered by yes; 0: none

  int leftOpen = 0;  // changes that began and have not ended
  int canvases = 0;

  void Note(const std::string& line);
  Log TakeLog();

  // Those of suites: see map_host_suites.cpp.
  bool Fails(const char* function, ofx::Status* status);

 private:
  ofx::PropertySet properties_;
  ofx::Host table_;
  mutable std::mutex mutex_;
  Log log_;
  std::atomic<int> calls_ = 0;
  int failAt_ = 0;
  ofx::Status failWith_ = ofx::kOk;
  std::string failed_;
};

// Null for one that the host does not have.
const void* SuiteOf(const MapHost& host, const std::string& name, int version);

// Numbers as the log has them.
std::string Text(double number);

}  // namespace lx_test
