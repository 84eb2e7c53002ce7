// SPDX-License-Identifier: BSD-3-Clause
// The suites of MapHost. What a plug-in of ours never calls is left null.
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

#include "tests/doors/openfx/map_host.h"

namespace lx_test {
namespace {

using ofx::Status;

// What a function of a suite answers: the failure that a test wants of it, or what it does.
template <class Function>
Status Answer(MapHost* host, const char* name, const Function& function) {
  Status status = ofx::kOk;
  return host->Fails(name, &status) ? status : function();
}

// ---- properties ----

template <class Value>
Status SetValue(ofx::PropertySet* set, const char* name, int index, Value value) {
  return Answer(set->host, "propSet", [&]() -> Status {
    if (set->host->unknownProperties.contains(name)) {
      return ofx::kErrUnknown;
    }
    auto& values = set->values[name];
    if (index < 0) {
      return ofx::kErrBadIndex;
    }
    if (values.size() <= static_cast<std::size_t>(index)) {
      values.resize(static_cast<std::size_t>(index) + 1);
    }
    values[static_cast<std::size_t>(index)] = value;
    return ofx::kOk;
  });
}

template <class Held, class Value>
Status GetValue(ofx::PropertySet* set, const char* name, int index, Value* value) {
  return Answer(set->host, "propGet", [&]() -> Status {
    const auto found = set->values.find(name);
    if (found == set->values.end() || set->host->unknownProperties.contains(name)) {
      return ofx::kErrUnknown;
    }
    if (index < 0 || static_cast<std::size_t>(index) >= found->second.size()) {
      return ofx::kErrBadIndex;
    }
    Held* held = std::get_if<Held>(&found->second[static_cast<std::size_t>(index)]);
    if (held == nullptr) {
      return ofx::kErrValue;
    }
    if constexpr (std::is_same_v<Held, std::string>) {
      *value = held->data();
    } else {
      *value = *held;
    }
    return ofx::kOk;
  });
}

Status SetPointer(ofx::PropertySet* set, const char* name, int index, void* value) {
  return SetValue(set, name, index, value);
}
Status SetString(ofx::PropertySet* set, const char* name, int index, const char* value) {
  return SetValue(set, name, index, std::string(value));
}
Status SetDouble(ofx::PropertySet* set, const char* name, int index, double value) {
  return SetValue(set, name, index, value);
}
Status SetInt(ofx::PropertySet* set, const char* name, int index, int value) {
  return SetValue(set, name, index, value);
}
Status GetPointer(ofx::PropertySet* set, const char* name, int index, void** value) {
  return GetValue<void*>(set, name, index, value);
}
Status GetString(ofx::PropertySet* set, const char* name, int index, char** value) {
  return GetValue<std::string>(set, name, index, value);
}
Status GetDouble(ofx::PropertySet* set, const char* name, int index, double* value) {
  return GetValue<double>(set, name, index, value);
}
Status GetInt(ofx::PropertySet* set, const char* name, int index, int* value) {
  return GetValue<int>(set, name, index, value);
}

constexpr ofx::PropertySuite kProperties{
    SetPointer, SetString, SetDouble, SetInt,  nullptr, nullptr, nullptr, nullptr, GetPointer,
    GetString,  GetDouble, GetInt,    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};

// ---- effects, clips and images ----

Status GetEffectProperties(ofx::ImageEffect* effect, ofx::PropertySet** properties) {
  return Answer(effect->host, "getPropertySet", [&] {
    *properties = &effect->properties;
    return ofx::kOk;
  });
}

Status GetParameterSet(ofx::ImageEffect* effect, ofx::ParameterSet** parameters) {
  return Answer(effect->host, "getParamSet", [&] {
    *parameters = &effect->parameters;
    return ofx::kOk;
  });
}

Status DefineClip(ofx::ImageEffect* effect, const char* name, ofx::PropertySet** properties) {
  return Answer(effect->host, "clipDefine", [&] {
    auto clip = std::make_unique<ofx::ImageClip>();
    clip->host = effect->host;
    clip->name = name;
    clip->properties = {effect->host, name, {}};
    *properties = &clip->properties;
    effect->clips.push_back(std::move(clip));
    return ofx::kOk;
  });
}

Status GetClip(ofx::ImageEffect* effect, const char* name, ofx::ImageClip** clip,
               ofx::PropertySet** properties) {
  return Answer(effect->host, "clipGetHandle", [&] {
    *clip = effect->Find(name);
    if (*clip != nullptr && properties != nullptr) {
      *properties = &(*clip)->properties;
    }
    return *clip != nullptr ? ofx::kOk : ofx::kErrBadHandle;
  });
}

Status GetClipProperties(ofx::ImageClip* clip, ofx::PropertySet** properties) {
  return Answer(clip->host, "clipGetPropertySet", [&] {
    *properties = &clip->properties;
    return ofx::kOk;
  });
}

ofx::ImageEffect* EffectOf(const ofx::ImageClip* clip) {
  return static_cast<ofx::ImageEffect*>(
      std::get<void*>(clip->properties.values.at("test.effect")[0]));
}

Status LendImage(ofx::ImageClip* clip, ofx::Time time, const ofx::RectD* /*region*/,
                 ofx::PropertySet** image) {
  return Answer(clip->host, "clipGetImage", [&] {
    clip->host->Note("get " + clip->name + " at " + Text(time));
    OfxPicture* picture = clip->picture;
    if (picture == nullptr) {
      return ofx::kFailed;
    }
    ofx::ImageEffect* effect = EffectOf(clip);
    auto lent = std::make_unique<ofx::PropertySet>();
    lent->host = clip->host;
    lent->name = clip->name;
    const ofx::RectI& bounds = picture->Bounds();
    lent->Set("OfxImagePropBounds", {bounds.x1, bounds.y1, bounds.x2, bounds.y2});
    lent->Set("OfxImagePropRowBytes", {picture->RowBytes()});
    lent->Set("OfxImagePropData", {picture->LowerLeft()});
    lent->Set("OfxImageEffectPropPixelDepth", {std::string(picture->DepthName())});
    lent->Set("OfxImageEffectPropComponents", {std::string(picture->ComponentsName())});
    lent->Set("OfxImageEffectPropRenderScale", {effect->renderScale.x, effect->renderScale.y});
    lent->Set("test.effect", {static_cast<void*>(effect)});
    *image = lent.get();
    effect->lent.push_back(std::move(lent));
    return ofx::kOk;
  });
}

// One that fails has the image all the same: the plug-in has done what it could.
Status TakeImageBack(ofx::PropertySet* image) {
  MapHost* host = image->host;
  auto* effect = static_cast<ofx::ImageEffect*>(std::get<void*>(image->values["test.effect"][0]));
  host->Note("release " + image->name);
  std::erase_if(effect->lent, [&](const auto& lent) { return lent.get() == image; });
  return Answer(host, "clipReleaseImage", [] { return ofx::kOk; });
}

Status GetRegion(ofx::ImageClip* clip, ofx::Time /*time*/, ofx::RectD* bounds) {
  return Answer(clip->host, "clipGetRegionOfDefinition", [&] {
    *bounds = clip->region;
    return clip->picture != nullptr ? ofx::kOk : ofx::kFailed;
  });
}

int AskWhetherToAbort(ofx::ImageEffect* effect) {
  Status status = ofx::kOk;
  ++effect->polls;
  const bool wanted = effect->host->abortAt != 0 && effect->polls >= effect->host->abortAt;
  return effect->host->Fails("abort", &status) || wanted ? 1 : 0;
}

constexpr ofx::ImageEffectSuite kEffects{GetEffectProperties,
                                         GetParameterSet,
                                         DefineClip,
                                         GetClip,
                                         GetClipProperties,
                                         LendImage,
                                         TakeImageBack,
                                         GetRegion,
                                         AskWhetherToAbort,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr};

// ---- parameters ----

Status DefineParameter(ofx::ParameterSet* set, const char* type, const char* name,
                       ofx::PropertySet** properties) {
  return Answer(set->host, "paramDefine", [&] {
    auto parameter = std::make_unique<ofx::Parameter>();
    parameter->host = set->host;
    parameter->name = name;
    parameter->type = type;
    parameter->properties = {set->host, name, {}};
    *properties = &parameter->properties;
    set->parameters.push_back(std::move(parameter));
    return ofx::kOk;
  });
}

Status GetParameter(ofx::ParameterSet* set, const char* name, ofx::Parameter** parameter,
                    ofx::PropertySet** properties) {
  return Answer(set->host, "paramGetHandle", [&] {
    *parameter = set->Find(name);
    if (*parameter != nullptr && properties != nullptr) {
      *properties = &(*parameter)->properties;
    }
    return *parameter != nullptr ? ofx::kOk : ofx::kErrUnknown;
  });
}

Status GetParameterProperties(ofx::Parameter* parameter, ofx::PropertySet** properties) {
  return Answer(parameter->host, "paramGetPropertySet", [&] {
    *properties = &parameter->properties;
    return ofx::kOk;
  });
}

ofx::PointD ValueAt(const ofx::Parameter& parameter, ofx::Time time) {
  const auto above = parameter.keys.lower_bound(time);
  if (above == parameter.keys.begin()) {
    return above->second;
  }
  const auto below = std::prev(above);
  if (above == parameter.keys.end()) {
    return below->second;
  }
  const double part = (time - below->first) / (above->first - below->first);
  const auto between = [part](double a, double b) { return a + part * (b - a); };
  return {between(below->second.x, above->second.x), between(below->second.y, above->second.y)};
}

Status GetValueAtTime(ofx::Parameter* parameter, ofx::Time time, ...) {
  va_list arguments;
  va_start(arguments, time);
  const Status status = Answer(parameter->host, "paramGetValueAtTime", [&] {
    const ofx::PointD value = ValueAt(*parameter, time);
    if (parameter->type == ofx::kParamTypeDouble) {
      *va_arg(arguments, double*) = value.x;
    } else if (parameter->type == ofx::kParamTypeDouble2D) {
      *va_arg(arguments, double*) = value.x;
      *va_arg(arguments, double*) = value.y;
    } else {
      *va_arg(arguments, int*) = static_cast<int>(value.x);
    }
    return ofx::kOk;
  });
  va_end(arguments);
  return status;
}

Status SetParameter(ofx::Parameter* parameter, ...) {
  va_list arguments;
  va_start(arguments, parameter);
  const Status status = Answer(parameter->host, "paramSetValue", [&] {
    ofx::PointD value{va_arg(arguments, double), 0.0};
    std::string line = "set " + parameter->name + ' ' + Text(value.x);
    if (parameter->type == ofx::kParamTypeDouble2D) {
      value.y = va_arg(arguments, double);
      line += ' ' + Text(value.y);
    }
    parameter->host->Note(line);
    parameter->keys = {{0.0, value}};
    return ofx::kOk;
  });
  va_end(arguments);
  return status;
}

Status BeginEdit(ofx::ParameterSet* set, const char* name) {
  return Answer(set->host, "paramEditBegin", [&] {
    set->host->Note(std::string("begin ") + name);
    ++set->host->leftOpen;
    return ofx::kOk;
  });
}

// As with images: one that fails has ended it all the same.
Status EndEdit(ofx::ParameterSet* set) {
  set->host->Note("end");
  --set->host->leftOpen;
  return Answer(set->host, "paramEditEnd", [] { return ofx::kOk; });
}

constexpr ofx::ParameterSuite kParameters{
    DefineParameter, GetParameter,   nullptr, GetParameterProperties,
    nullptr,         GetValueAtTime, nullptr, nullptr,
    SetParameter,    nullptr,        nullptr, nullptr,
    nullptr,         nullptr,        nullptr, nullptr,
    BeginEdit,       EndEdit};

// ---- interacts and drawing ----

Status Redraw(ofx::Interact* interact) {
  return Answer(interact->host, "interactRedraw", [&] {
    interact->host->Note("redraw");
    return ofx::kOk;
  });
}

Status GetInteractProperties(ofx::Interact* interact, ofx::PropertySet** properties) {
  return Answer(interact->host, "interactGetPropertySet", [&] {
    *properties = &interact->properties;
    return ofx::kOk;
  });
}

constexpr ofx::InteractSuite kInteracts{nullptr, Redraw, GetInteractProperties};

Status SetColour(ofx::DrawContext* context, const ofx::Colour* colour) {
  return Answer(context->host, "setColour", [&] {
    context->host->Note("colour " + Text(colour->red) + ' ' + Text(colour->green) + ' ' +
                        Text(colour->blue) + ' ' + Text(colour->alpha));
    return ofx::kOk;
  });
}

Status SetLineWidth(ofx::DrawContext* context, float width) {
  return Answer(context->host, "setLineWidth", [&] {
    context->host->Note("width " + Text(width));
    return ofx::kOk;
  });
}

Status SetLineStipple(ofx::DrawContext* context, ofx::LineStipple stipple) {
  return Answer(context->host, "setLineStipple", [&] {
    context->host->Note(stipple == ofx::kStippleSolid ? "solid" : "dashed");
    return ofx::kOk;
  });
}

Status DrawPoints(ofx::DrawContext* context, ofx::DrawPrimitive primitive,
                  const ofx::PointD* points, int count) {
  return Answer(context->host, "draw", [&] {
    constexpr int kShown = 12;
    std::string line = primitive == ofx::kDrawLines ? "lines" : "loop";
    line += " of " + std::to_string(count);
    for (int i = 0; i < std::min(count, kShown); ++i) {
      // Without a sign before a zero that is not quite one.
      const auto rounded = [](double value) { return std::lround(value * 100.0) / 100.0 + 0.0; };
      line += " (" + Text(rounded(points[i].x)) + ' ' + Text(rounded(points[i].y)) + ')';
    }
    context->host->Note(line);
    return ofx::kOk;
  });
}

constexpr ofx::DrawSuite kDrawing{nullptr,        SetColour,  SetLineWidth,
                                  SetLineStipple, DrawPoints, nullptr};

// ---- messages ----

std::string Formatted(const char* format, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof(text), format, arguments);
  return text;
}

Status ShowMessage(void* effect, const char* type, const char* /*id*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string text = Formatted(format, arguments);
  va_end(arguments);
  MapHost* host = static_cast<ofx::ImageEffect*>(effect)->host;
  return Answer(host, "message", [&] {
    host->Note(std::string("message ") + type + ": " + text);
    return ofx::kOk;
  });
}

Status SetMessage(void* effect, const char* type, const char* /*id*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string text = Formatted(format, arguments);
  va_end(arguments);
  auto* shown = static_cast<ofx::ImageEffect*>(effect);
  return Answer(shown->host, "setPersistentMessage", [&] {
    shown->host->Note(std::string("set message ") + type + ": " + text);
    shown->message = text;
    return ofx::kOk;
  });
}

Status ClearMessage(void* effect) {
  auto* shown = static_cast<ofx::ImageEffect*>(effect);
  return Answer(shown->host, "clearPersistentMessage", [&] {
    shown->host->Note("clear message");
    shown->message.clear();
    return ofx::kOk;
  });
}

constexpr ofx::MessageSuite kMessages{ShowMessage, SetMessage, ClearMessage};

struct OfferedSuite {
  const char* name;
  int version;
  const void* suite;
};

constexpr OfferedSuite kSuites[] = {
    {"OfxPropertySuite", 1, &kProperties},  {"OfxImageEffectSuite", 1, &kEffects},
    {"OfxParameterSuite", 1, &kParameters}, {"OfxInteractSuite", 1, &kInteracts},
    {"OfxDrawSuite", 1, &kDrawing},         {"OfxMessageSuite", 1, &kMessages},
    {"OfxMessageSuite", 2, &kMessages},
};

}  // namespace

const void* SuiteOf(const MapHost& host, const std::string& name, int version) {
  if (host.missingSuites.contains(name + ' ' + std::to_string(version))) {
    return nullptr;
  }
  const auto* found = std::find_if(std::begin(kSuites), std::end(kSuites), [&](const auto& suite) {
    return suite.name == name && suite.version == version;
  });
  return found != std::end(kSuites) ? found->suite : nullptr;
}

}  // namespace lx_test
