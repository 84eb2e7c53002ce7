// SPDX-License-Identifier: BSD-3-Clause
// OpenGL as old as overlays are: a host that has no draw suite promises nothing newer. Its
// functions are looked up in the library that the host has loaded, so that the plug-in loads
// without.
#include "doors/openfx/canvas.h"
#include "doors/openfx/gl_library.h"

namespace lx::openfx {
namespace {

constexpr unsigned int kLines = 0x0001;
constexpr unsigned int kLineLoop = 0x0002;
constexpr unsigned int kLineStipple = 0x0B24;
constexpr unsigned int kCurrentLineAndEnableBits = 0x0001 | 0x0004 | 0x2000;
constexpr int kStippleFactor = 2;
constexpr unsigned short kDashes = 0x00FF;
constexpr float kLineWidth = 1.5F;

struct GlFunctions {
  void (*begin)(unsigned int);
  void (*end)();
  void (*vertex2d)(double, double);
  void (*color4f)(float, float, float, float);
  void (*enable)(unsigned int);
  void (*disable)(unsigned int);
  void (*lineWidth)(float);
  void (*lineStipple)(int, unsigned short);
  void (*pushAttrib)(unsigned int);
  void (*popAttrib)();
};

template <class Function>
bool Find(const char* name, Function* function) {
  *function = reinterpret_cast<Function>(FindGlFunction(name));
  return *function != nullptr;
}

bool FindAll(GlFunctions* gl) {
  return Find("glBegin", &gl->begin) && Find("glEnd", &gl->end) &&
         Find("glVertex2d", &gl->vertex2d) && Find("glColor4f", &gl->color4f) &&
         Find("glEnable", &gl->enable) && Find("glDisable", &gl->disable) &&
         Find("glLineWidth", &gl->lineWidth) && Find("glLineStipple", &gl->lineStipple) &&
         Find("glPushAttrib", &gl->pushAttrib) && Find("glPopAttrib", &gl->popAttrib);
}

class GlCanvas final : public Canvas {
 public:
  explicit GlCanvas(const GlFunctions& gl) : gl_(gl) {
    gl_.pushAttrib(kCurrentLineAndEnableBits);
    gl_.lineWidth(kLineWidth);
    gl_.lineStipple(kStippleFactor, kDashes);
  }
  ~GlCanvas() override { gl_.popAttrib(); }

  void SetColour(const ofx::Colour& colour) override {
    gl_.color4f(colour.red, colour.green, colour.blue, colour.alpha);
  }

  void SetDashed(bool dashed) override {
    const auto change = dashed ? gl_.enable : gl_.disable;
    change(kLineStipple);
  }

  void DrawLines(const std::vector<ofx::PointD>& points) override { Draw(kLines, points); }
  void DrawLoop(const std::vector<ofx::PointD>& points) override { Draw(kLineLoop, points); }

 private:
  void Draw(unsigned int primitive, const std::vector<ofx::PointD>& points) {
    gl_.begin(primitive);
    for (const ofx::PointD& point : points) {
      gl_.vertex2d(point.x, point.y);
    }
    gl_.end();
  }

  GlFunctions gl_;
};

}  // namespace

std::unique_ptr<Canvas> MakeGlCanvas() {
  GlFunctions gl{};
  return FindAll(&gl) ? std::make_unique<GlCanvas>(gl) : nullptr;
}

}  // namespace lx::openfx
