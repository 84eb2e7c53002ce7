// SPDX-License-Identifier: BSD-3-Clause
// The host's side of one user-interface instance: page, overlay surface, timeline.
#pragma once

#include "hostframe/interfaces/colour.h"
#include "hostframe/interfaces/geometry.h"
#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"
#include "hostframe/interfaces/visibility.h"
#include "hostframe/interfaces/wide_text.h"

namespace qplugin {

class QTL_BORDER iQpluginTimeline {
 public:
  virtual ~iQpluginTimeline() = default;
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}
  virtual void reserved6() {}
  virtual void reserved7() {}
  virtual void reserved8() {}
  virtual void reserved9() {}
  virtual void reserved10() {}
  virtual int frameCount() = 0;
};

// The effect's panel.
class QTL_BORDER iQpluginDialog {
 public:
  virtual ~iQpluginDialog() = default;
  virtual void reserved1() {}
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void reserved4() {}
  virtual void reserved5() {}
  virtual void addColourBox(const quantel::wstring& widget, const quantel::wstring& key,
                            quantel::cRect4 cell, const quantel::cColour& startColour) = 0;
  virtual void reserved6() {}
  virtual void reserved7() {}
  virtual void setWidgetVisible(const quantel::wstring& widget, bool visible) = 0;
  virtual bool isWidgetVisible(const quantel::wstring& widget) = 0;
  virtual void reserved8() {}

  // A press of the button arrives as parameterChanged with the key.
  virtual void addButton(const quantel::wstring& widget, const quantel::wstring& key,
                         quantel::cRect4 cell, const quantel::wstring& label) = 0;
};

// Nothing of it is called; a host may offer it on its dialog.
class QTL_BORDER iQpluginDialog2 {
 public:
  virtual ~iQpluginDialog2() = default;
};

// Where overlays are drawn. y runs downwards, in picture pixels.
class QTL_BORDER iQpluginOverlaySurface {
 public:
  virtual ~iQpluginOverlaySurface() = default;
  virtual void beginDraw(bool alwaysTrue, int alwaysOne) = 0;
  virtual void endDraw() = 0;
  virtual void reserved1() {}
  virtual void drawLine(quantel::cPoint2 from, quantel::cPoint2 to, quantel::cColour colour) = 0;
  virtual void reserved2() {}
  virtual void reserved3() {}
  virtual void fillRect(quantel::cRect4 rect, quantel::cColour colour,
                        quantel::cColour sameColour) = 0;
  virtual void frameRect(quantel::cRect4 rect, quantel::cColour colour) = 0;
};

class QTL_BORDER iQpluginUIResult {
 public:
  virtual ~iQpluginUIResult() = default;
  virtual void update() = 0;  // something must be shown or rendered again
  virtual quantel::cPtr<iQpluginOverlaySurface> overlaySurface() = 0;
  virtual quantel::cPtr<iQpluginDialog> dialog() = 0;  // may be null
  virtual quantel::cPtr<iQpluginFormat> format() = 0;
};

// Every iQpluginUIResult that a host hands over must be one of these.
class QTL_BORDER iQpluginUIResult2 : public iQpluginUIResult {
 public:
  virtual quantel::cPtr<iQpluginTimeline> timeline() = 0;
};

}  // namespace qplugin
