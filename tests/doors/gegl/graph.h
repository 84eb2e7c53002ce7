// SPDX-License-Identifier: BSD-3-Clause
// GEGL in the test's own process, with the plug-in among its own.
#pragma once

#include <gegl.h>

#include <string>
#include <utility>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace lx_test {

// Starts GEGL once, and ends it with the program.
void StartGegl();

// RGBA floats, premultiplied, row by row.
struct Pixels {
  GeglRectangle bounds = {0, 0, 0, 0};
  std::vector<float> samples;
};

// Noise, in part transparent, with a few samples far above 1.
Pixels MakeNoise(const GeglRectangle& bounds);

// The frame by the library's own interface.
Pixels RenderByLibrary(const Pixels& source, const glimmerblur_look& look);

// The largest difference of two samples at one place; infinite where sizes differ.
double Distance(const Pixels& one, const Pixels& other);

// A graph and the nodes in it, gone with it.
class Graph {
 public:
  Graph();
  ~Graph();
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  // A node that has these pixels on its output.
  GeglNode* AddSource(const Pixels& pixels);
  // The same of 8-bit samples, red, green, blue and alpha.
  GeglNode* AddSource8(const GeglRectangle& bounds, const std::vector<guchar>& samples);
  // An operation with its properties as the command takes them, fed by a node if there is one.
  using Properties = std::vector<std::pair<std::string, std::string>>;
  GeglNode* AddOperation(const std::string& name, GeglNode* input,
                         const Properties& properties = {});

 private:
  GeglNode* AddBuffer(GeglBuffer* buffer);

  GeglNode* graph_;
};

void SetProperty(GeglNode* node, const std::string& name, const std::string& value);

// What a node shows of a rectangle.
Pixels Show(GeglNode* node, const GeglRectangle& bounds, double scale = 1.0);
Pixels ShowAll(GeglNode* node);

}  // namespace lx_test
