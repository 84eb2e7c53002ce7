// SPDX-License-Identifier: BSD-3-Clause
// The three functions that the plug-in exports, and the actions that reach the effect by them.
#include <cstring>
#include <iterator>
#include <memory>

#include "doors/openfx/actions.h"
#include "doors/openfx/description.h"
#include "doors/openfx/overlay.h"

#if defined(_WIN32)
#define LX_OPENFX_EXPORT __declspec(dllexport)
#else
#define LX_OPENFX_EXPORT __attribute__((visibility("default")))
#endif

namespace lx::openfx {
namespace {

const ofx::Host* host = nullptr;

// What an action is about, and with what.
struct Call {
  const void* handle;
  ofx::PropertySet* in;
  ofx::PropertySet* out;

  // Handles are const for those that only look at them; what they stand for is the host's.
  ofx::ImageEffect* Effect() const {
    return static_cast<ofx::ImageEffect*>(const_cast<void*>(handle));
  }
  Instance& Subject() const { return InstanceOf(handle); }
};

ofx::Status Load(const Call& /*call*/) {
  FetchSuites(host);
  return ofx::kOk;
}

ofx::Status Unload(const Call& /*call*/) {
  DropOverlays();
  Instances().Clear();
  DropSuites();
  return ofx::kOk;
}

ofx::Status DescribeEffect(const Call& call) {
  Describe(call.Effect());
  return ofx::kOk;
}

ofx::Status DescribeEffectInContext(const Call& call) {
  DescribeInContext(call.Effect(), Properties(call.in).String(ofx::kImageEffectPropContext));
  return ofx::kOk;
}

ofx::Status CreateInstance(const Call& call) {
  Instances().Add(call.handle, std::make_unique<Instance>(call.Effect()));
  return ofx::kOk;
}

ofx::Status DestroyInstance(const Call& call) {
  return Instances().Take(call.handle) != nullptr ? ofx::kOk : ofx::kErrBadHandle;
}

ofx::Status ChangeInstance(const Call& call) {
  call.Subject().HearOfChange(Properties(call.in));
  return ofx::kOk;
}

ofx::Status PurgeCaches(const Call& call) {
  call.Subject().PurgeCaches();
  return ofx::kOk;
}

ofx::Status GiveRegionOfDefinition(const Call& call) {
  return call.Subject().GiveRegionOfDefinition(Properties(call.in), Properties(call.out))
             ? ofx::kOk
             : ofx::kReplyDefault;
}

ofx::Status GiveRegionsOfInterest(const Call& call) {
  return call.Subject().GiveRegionsOfInterest(Properties(call.in), Properties(call.out))
             ? ofx::kOk
             : ofx::kReplyDefault;
}

ofx::Status GiveClipPreferences(const Call& call) {
  return call.Subject().GiveClipPreferences(Properties(call.out)) ? ofx::kOk : ofx::kReplyDefault;
}

ofx::Status IsIdentity(const Call& call) {
  return call.Subject().IsIdentity(Properties(call.in), Properties(call.out)) ? ofx::kOk
                                                                              : ofx::kReplyDefault;
}

ofx::Status Render(const Call& call) {
  call.Subject().Render(Properties(call.in));
  return ofx::kOk;
}

struct NamedAction {
  const char* name;
  ofx::Status (*run)(const Call& call);
};

constexpr NamedAction kActions[] = {
    {ofx::kActionLoad, Load},
    {ofx::kActionUnload, Unload},
    {ofx::kActionDescribe, DescribeEffect},
    {ofx::kImageEffectActionDescribeInContext, DescribeEffectInContext},
    {ofx::kActionCreateInstance, CreateInstance},
    {ofx::kActionDestroyInstance, DestroyInstance},
    {ofx::kActionInstanceChanged, ChangeInstance},
    {ofx::kActionPurgeCaches, PurgeCaches},
    {ofx::kImageEffectActionGetRegionOfDefinition, GiveRegionOfDefinition},
    {ofx::kImageEffectActionGetRegionsOfInterest, GiveRegionsOfInterest},
    {ofx::kImageEffectActionGetClipPreferences, GiveClipPreferences},
    {ofx::kImageEffectActionIsIdentity, IsIdentity},
    {ofx::kImageEffectActionRender, Render},
};

extern "C" {

ofx::Status MainEntry(const char* action, const void* handle, ofx::PropertySet* in,
                      ofx::PropertySet* out) {
  if (action == nullptr) {
    return ofx::kFailed;
  }
  for (const NamedAction& known : kActions) {
    if (std::strcmp(known.name, action) == 0) {
      return RunAction(handle, [&] { return known.run({handle, in, out}); });
    }
  }
  return ofx::kReplyDefault;
}

void SetHost(ofx::Host* given) { host = given; }

}  // extern "C"

ofx::Plugin plugin{ofx::kImageEffectPluginApi,
                   ofx::kImageEffectPluginApiVersion,
                   "example.vantrell.glimmerblur",
                   1,
                   0,
                   SetHost,
                   MainEntry};

}  // namespace

Registry<Instance>& Instances() { return Lasting<Registry<Instance>>(); }

Instance& InstanceOf(const void* handle) {
  Instance* instance = Instances().Find(handle);
  if (instance == nullptr) {
    throw Failure{ofx::kErrBadHandle, {}};
  }
  return *instance;
}

}  // namespace lx::openfx

extern "C" {

LX_OPENFX_EXPORT int OfxGetNumberOfPlugins() { return 1; }

// The host looks at it only, but C has no const there.
LX_OPENFX_EXPORT ofx::Plugin* OfxGetPlugin(int index) {
  return index == 0 ? &lx::openfx::plugin : nullptr;
}

// Hosts that have it call it before the two others.
LX_OPENFX_EXPORT ofx::Status OfxSetHost(const ofx::Host* host) {
  lx::openfx::host = host;
  return host != nullptr ? ofx::kOk : ofx::kFailed;
}
}
