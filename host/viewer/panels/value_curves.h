// SPDX-License-Identifier: BSD-3-Clause
// How the values of one name run over a shot, for drawing.
#pragma once

#include <QPointF>
#include <QString>
#include <string>
#include <vector>

#include "host/viewer/look/shown_number.h"
#include "host/viewer/panels/frame_scale.h"
#include "host/viewer/panels/look_document.h"

namespace glimmerhost {

struct ValueCurves {
  std::vector<std::vector<QPointF>> lines;  // of frame and value; a point has two
  bool areSteps = false;                    // entries and switches: nothing lies between two
  double lowest = 0.0;
  double highest = 0.0;
  QString lowestText;
  QString highestText;
};

// The values that frames have, and no others.
//   most  so many samples at the most
ValueCurves CurvesOf(const LookDocument& document, const std::string& name,
                     const ShotFrames& frames, RadiusUnit unit, int most);

}  // namespace glimmerhost
