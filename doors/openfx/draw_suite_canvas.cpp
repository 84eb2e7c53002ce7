// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/canvas.h"

namespace lx::openfx {
namespace {

constexpr float kLineWidth = 1.5F;

class DrawSuiteCanvas final : public Canvas {
 public:
  explicit DrawSuiteCanvas(ofx::DrawContext* context) : context_(context) {
    Check(HostSuites().drawing->setLineWidth(context_, kLineWidth));
  }

  void SetColour(const ofx::Colour& colour) override {
    Check(HostSuites().drawing->setColour(context_, &colour));
  }

  void SetDashed(bool dashed) override {
    Check(HostSuites().drawing->setLineStipple(context_,
                                               dashed ? ofx::kStippleDash : ofx::kStippleSolid));
  }

  void DrawLines(const std::vector<ofx::PointD>& points) override { Draw(ofx::kDrawLines, points); }

  void DrawLoop(const std::vector<ofx::PointD>& points) override {
    Draw(ofx::kDrawLineLoop, points);
  }

 private:
  void Draw(ofx::DrawPrimitive primitive, const std::vector<ofx::PointD>& points) {
    Check(HostSuites().drawing->draw(context_, primitive, points.data(),
                                     static_cast<int>(points.size())));
  }

  ofx::DrawContext* context_;
};

}  // namespace

std::unique_ptr<Canvas> MakeDrawSuiteCanvas(const Properties& in) {
  if (HostSuites().drawing == nullptr) {
    return nullptr;
  }
  void* context = in.PointerOr(ofx::kInteractPropDrawContext, nullptr);
  if (context == nullptr) {
    return nullptr;
  }
  return std::make_unique<DrawSuiteCanvas>(static_cast<ofx::DrawContext*>(context));
}

}  // namespace lx::openfx
