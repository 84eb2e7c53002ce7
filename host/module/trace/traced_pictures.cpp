// SPDX-License-Identifier: BSD-3-Clause
// Tracing of what a module calls for pictures: inputs, clips, frames, formats, targets.
#include "host/module/trace/traced_object.h"

namespace glimmerhost {
namespace {

std::string SizeText(const quantel::cSize2& size) {
  return std::to_string(size.first) + " x " + std::to_string(size.second);
}

class TracedFormat final : public TracedObject<qplugin::iQpluginFormat> {
 public:
  using TracedObject::TracedObject;

  quantel::cPtr<qplugin::iQpluginDescriptor> descriptor() override {
    Say("format.descriptor()");
    return Object().descriptor();
  }
  quantel::cSize2 pixelAspect() override {
    const quantel::cSize2 ratio = Object().pixelAspect();
    Say("format.pixelAspect() = ", ratio.first, ":", ratio.second);
    return ratio;
  }
  quantel::cSize2 pictureSize() override {
    const quantel::cSize2 size = Object().pictureSize();
    Say("format.pictureSize() = ", SizeText(size));
    return size;
  }
};

class TracedImage final : public TracedObject<qplugin::iQpluginImage> {
 public:
  using TracedObject::TracedObject;

  quantel::cSize2 size() override {
    const quantel::cSize2 size = Object().size();
    Say("frame.size() = ", SizeText(size));
    return size;
  }
  std::uint16_t* buffer() override {
    Say("frame.buffer()");
    return Object().buffer();
  }
};

class TracedSource final : public TracedObject<qplugin::iQpluginSource> {
 public:
  using TracedObject::TracedObject;

  quantel::cPtr<qplugin::iQpluginImage> frame(int frame,
                                              quantel::cPtr<qplugin::iQpluginDescriptor> descriptor,
                                              int three) override {
    Say("clip.frame(", frame, ", descriptor, ", three, ")");
    const auto image = Object().frame(frame, descriptor, three);
    descriptor.Reset();
    return PutInFront<TracedImage>(image, GetTrace());
  }
};

class TracedInputs final : public TracedObject<qplugin::iQpluginInputs> {
 public:
  using TracedObject::TracedObject;

  quantel::cPtr<qplugin::iQpluginSource> mainInput() override {
    Say("inputs.mainInput()");
    return PutInFront<TracedSource>(Object().mainInput(), GetTrace());
  }
  quantel::cPtr<qplugin::iQpluginSource> namedInput(const quantel::wstring& key) override {
    const auto source = Object().namedInput(key);
    Say("inputs.namedInput(", Quoted(key), ") = ", source ? "a clip" : "none");
    return PutInFront<TracedSource>(source, GetTrace());
  }
};

class TracedTarget final : public TracedObject<qplugin::iQpluginTarget> {
 public:
  using TracedObject::TracedObject;

  quantel::cPtr<qplugin::iQpluginImage> outputFrame(int three) override {
    Say("target.outputFrame(", three, ")");
    return PutInFront<TracedImage>(Object().outputFrame(three), GetTrace());
  }
  quantel::cPtr<qplugin::iQpluginFormat> format() override {
    Say("target.format()");
    return Traced(Object().format(), GetTrace());
  }
};

}  // namespace

quantel::cPtr<qplugin::iQpluginFormat> Traced(const quantel::cPtr<qplugin::iQpluginFormat>& object,
                                              Trace* trace) {
  return PutInFront<TracedFormat>(object, trace);
}

quantel::cPtr<qplugin::iQpluginInputs> Traced(const quantel::cPtr<qplugin::iQpluginInputs>& object,
                                              Trace* trace) {
  return PutInFront<TracedInputs>(object, trace);
}

quantel::cPtr<qplugin::iQpluginTarget> Traced(const quantel::cPtr<qplugin::iQpluginTarget>& object,
                                              Trace* trace) {
  return PutInFront<TracedTarget>(object, trace);
}

}  // namespace glimmerhost
