// SPDX-License-Identifier: BSD-3-Clause
#include "tests/doors/openfx/plugin_session.h"

#include <stdexcept>

#include "tests/support/shared_library.h"

namespace lx_test {
namespace {

template <class Function>
Function* FunctionNamed(void* library, const char* name) {
  return reinterpret_cast<Function*>(FunctionOf(library, name));
}

void CopyDefaults(const ofx::ParameterSet& from, ofx::ParameterSet* to) {
  for (const auto& described : from.parameters) {
    auto parameter = std::make_unique<ofx::Parameter>(*described);
    const auto found = parameter->properties.values.find("OfxParamPropDefault");
    if (found != parameter->properties.values.end()) {
      const auto number = [](const OfxValue& value) {
        const int* whole = std::get_if<int>(&value);
        return whole != nullptr ? *whole : std::get<double>(value);
      };
      const std::vector<OfxValue>& initial = found->second;
      parameter->keys[0.0] = {number(initial.front()), number(initial.back())};
    }
    to->parameters.push_back(std::move(parameter));
  }
}

}  // namespace

const char* PluginFile() { return OPENFX_PLUGIN_FILE; }
bool IsPluginResident() { return IsLibraryOpen(PluginFile()); }

PluginSession::PluginSession(MapHost* host)
    : host_(host), library_(OpenLibrary(PluginFile())), descriptor_(host, "descriptor") {
  if (library_ == nullptr) {
    throw std::runtime_error(LibraryError());
  }
  FunctionNamed<ofx::Status(const ofx::Host*)>(library_, "OfxSetHost")(host->Table());
  plugin_ = FunctionNamed<ofx::Plugin*(int)>(library_, "OfxGetPlugin")(0);
  plugin_->setHost(const_cast<ofx::Host*>(host->Table()));
}

PluginSession::~PluginSession() { Unload(); }

void PluginSession::Unload() {
  if (library_ == nullptr) {
    return;
  }
  if (loaded_) {
    Act(ofx::kActionUnload);
  }
  CloseLibrary(library_);
  library_ = nullptr;
}

ofx::Status PluginSession::Load() {
  ofx::Status status = Act(ofx::kActionLoad);
  loaded_ = status == ofx::kOk;
  return loaded_ ? Act(ofx::kActionDescribe, &descriptor_) : status;
}

ofx::Status PluginSession::DescribeInContext(const std::string& context,
                                             ofx::ImageEffect* described) const {
  ofx::PropertySet in = MakeProperties(host_, "in");
  in.Set("OfxImageEffectPropContext", {context});
  return Act(ofx::kImageEffectActionDescribeInContext, described, &in);
}

std::unique_ptr<ofx::ImageEffect> MakeInstance(const PluginSession& session,
                                               const std::string& context) {
  MapHost* host = session.Host();
  ofx::ImageEffect described(host, context);
  if (session.DescribeInContext(context, &described) != ofx::kOk) {
    throw std::runtime_error("the plug-in does not describe itself");
  }
  auto instance = std::make_unique<ofx::ImageEffect>(host, "instance");
  instance->properties.Set("OfxImageEffectPropContext", {context});
  CopyDefaults(described.parameters, &instance->parameters);
  for (const auto& clip : described.clips) {
    instance->clips.push_back(std::make_unique<ofx::ImageClip>(*clip));
    instance->clips.back()->properties.Set("test.effect", {static_cast<void*>(instance.get())});
    Connect(instance.get(), clip->name, nullptr);
  }
  return instance;
}

void Connect(ofx::ImageEffect* effect, const std::string& clip, OfxPicture* picture,
             double aspect) {
  ofx::ImageClip* connected = effect->Find(clip);
  connected->picture = picture;
  connected->properties.Set("OfxImageClipPropConnected", {picture != nullptr ? 1 : 0});
  connected->properties.Set("OfxImagePropPixelAspectRatio", {aspect});
  if (picture != nullptr) {
    const ofx::RectI& bounds = picture->Bounds();
    const double x = aspect / effect->renderScale.x;
    const double y = 1.0 / effect->renderScale.y;
    connected->region = {bounds.x1 * x, bounds.y1 * y, bounds.x2 * x, bounds.y2 * y};
    connected->properties.Set("OfxImageEffectPropComponents",
                              {std::string(picture->ComponentsName())});
    connected->properties.Set("OfxImageEffectPropPreMultiplication",
                              {std::string("OfxImageAlphaPremultiplied")});
  }
}

LiveInstance::LiveInstance(const PluginSession& session, const std::string& context,
                           OfxPicture* source, OfxPicture* output)
    : session_(session), effect_(MakeInstance(session, context)) {
  Connect(effect_.get(), "Source", source);
  Connect(effect_.get(), "Output", output);
  created_ = session.Act(ofx::kActionCreateInstance, effect_.get());
}

LiveInstance::~LiveInstance() {
  if (created_ == ofx::kOk) {
    session_.Act(ofx::kActionDestroyInstance, effect_.get());
  }
}

ofx::Status LiveInstance::Render(ofx::Time time) {
  return Render(time, effect_->Find("Output")->picture->Bounds());
}

ofx::Status LiveInstance::Render(ofx::Time time, const ofx::RectI& window) {
  ofx::PropertySet in = MakeProperties(session_.Host(), "in");
  in.Set("OfxPropTime", {time});
  in.Set("OfxImageEffectPropRenderWindow", {window.x1, window.y1, window.x2, window.y2});
  in.Set("OfxImageEffectPropRenderScale", {effect_->renderScale.x, effect_->renderScale.y});
  return session_.Act(ofx::kImageEffectActionRender, effect_.get(), &in);
}

ofx::Status LiveInstance::Ask(const char* action, ofx::PropertySet* out, ofx::Time time) {
  ofx::PropertySet in = MakeProperties(session_.Host(), "in");
  in.Set("OfxPropTime", {time});
  in.Set("OfxImageEffectPropRenderScale", {effect_->renderScale.x, effect_->renderScale.y});
  return session_.Act(action, effect_.get(), &in, out);
}

ofx::PropertySet MakeProperties(MapHost* host, const std::string& name) { return {host, name, {}}; }

}  // namespace lx_test
