// SPDX-License-Identifier: BSD-3-Clause
// The plug-in's file, loaded and used as a host does.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/doors/openfx/map_host.h"

namespace lx_test {

// Unloads it at the end of the scope, and tells it so before if it was loaded by the action.
class PluginSession {
 public:
  explicit PluginSession(MapHost* host);
  ~PluginSession();
  PluginSession(const PluginSession&) = delete;
  PluginSession& operator=(const PluginSession&) = delete;

  const ofx::Plugin& Plugin() const { return *plugin_; }
  MapHost* Host() const { return host_; }

  ofx::Status Act(const char* action, const void* handle = nullptr, ofx::PropertySet* in = nullptr,
                  ofx::PropertySet* out = nullptr) const {
    return plugin_->mainEntry(action, handle, in, out);
  }

  // All that a host does before it makes an instance. The first status that is not kOk ends it.
  ofx::Status Load();
  ofx::Status DescribeInContext(const std::string& context, ofx::ImageEffect* described) const;

  ofx::ImageEffect& Descriptor() { return descriptor_; }

  // Unloads the file. The session is over.
  void Unload();

 private:
  MapHost* host_;
  void* library_;
  ofx::Plugin* plugin_ = nullptr;
  ofx::ImageEffect descriptor_;
  bool loaded_ = false;
};

// The file's path, and whether it is in the process.
const char* PluginFile();
bool IsPluginResident();

// An instance of the effect: parameters with their defaults, clips with nothing connected. It was
// not created yet as far as the plug-in knows.
std::unique_ptr<ofx::ImageEffect> MakeInstance(const PluginSession& session,
                                               const std::string& context);

// The same, created, with pictures connected; destroyed at the end of the scope.
class LiveInstance {
 public:
  LiveInstance(const PluginSession& session, const std::string& context, OfxPicture* source,
               OfxPicture* output);
  ~LiveInstance();
  LiveInstance(const LiveInstance&) = delete;
  LiveInstance& operator=(const LiveInstance&) = delete;

  ofx::ImageEffect& Effect() { return *effect_; }
  ofx::Status Created() const { return created_; }

  // Does not have it destroyed.
  void Forget() { created_ = ofx::kFailed; }

  ofx::Status Render(ofx::Time time = 0.0);
  ofx::Status Render(ofx::Time time, const ofx::RectI& window);

  // The output's properties are those that the action was given.
  ofx::Status Ask(const char* action, ofx::PropertySet* out, ofx::Time time = 0.0);

 private:
  const PluginSession& session_;
  std::unique_ptr<ofx::ImageEffect> effect_;
  ofx::Status created_;
};

// Connects a picture to a clip of an instance; null takes it away.
//   aspect  of its pixels
void Connect(ofx::ImageEffect* effect, const std::string& clip, OfxPicture* picture,
             double aspect = 1.0);

ofx::PropertySet MakeProperties(MapHost* host, const std::string& name);

}  // namespace lx_test
