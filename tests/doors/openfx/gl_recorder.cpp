// SPDX-License-Identifier: BSD-3-Clause
// The functions of OpenGL that an overlay needs. They write down how they were called.
#include <cstdio>
#include <string>

#if defined(_WIN32)
#define LX_EXPORT extern "C" __declspec(dllexport)
#else
#define LX_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

std::string recorded;

template <class... Numbers>
void Note(const char* format, Numbers... numbers) {
  char text[128];
  std::snprintf(text, sizeof(text), format, numbers...);
  recorded += recorded.empty() ? "" : ", ";
  recorded += text;
}

}  // namespace

LX_EXPORT const char* RecordedText() { return recorded.c_str(); }

LX_EXPORT void glBegin(unsigned int primitive) { Note("begin %u", primitive); }
LX_EXPORT void glEnd() { Note("end%s", ""); }
LX_EXPORT void glVertex2d(double x, double y) { Note("vertex %g %g", x, y); }
LX_EXPORT void glColor4f(float r, float g, float b, float a) {
  Note("colour %g %g %g %g", static_cast<double>(r), static_cast<double>(g), static_cast<double>(b),
       static_cast<double>(a));
}
LX_EXPORT void glEnable(unsigned int what) { Note("enable %u", what); }
LX_EXPORT void glDisable(unsigned int what) { Note("disable %u", what); }
LX_EXPORT void glLineWidth(float width) { Note("width %g", static_cast<double>(width)); }
LX_EXPORT void glLineStipple(int factor, unsigned short pattern) {
  Note("stipple %d %d", factor, static_cast<int>(pattern));
}
LX_EXPORT void glPushAttrib(unsigned int groups) { Note("push %u", groups); }
LX_EXPORT void glPopAttrib() { Note("pop%s", ""); }
