// SPDX-License-Identifier: BSD-3-Clause
#include "tests/doors/gegl/graph.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <stdexcept>

namespace lx_test {
namespace {

const Babl* PixelFormat() { return babl_format("RaGaBaA float"); }

}  // namespace

void StartGegl() {
  static const bool started = [] {
    setenv("GEGL_PATH", GEGL_FOLDERS, 1);
    // What a machine has of it would say more about the machine.
    setenv("GEGL_USE_OPENCL", "no", 1);
    gegl_init(nullptr, nullptr);
    std::atexit(gegl_exit);
    return true;
  }();
  (void)started;
}

Pixels MakeNoise(const GeglRectangle& bounds) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> any(0.0F, 1.0F);
  Pixels noise = {bounds, {}};
  for (int i = 0; i < bounds.width * bounds.height; ++i) {
    const float alpha = any(random) < 0.3F ? any(random) : 1.0F;
    const float light = any(random) < 0.02F ? 40.0F : 1.0F;
    for (int c = 0; c < 3; ++c) {
      noise.samples.push_back(any(random) * light * alpha);
    }
    noise.samples.push_back(alpha);
  }
  return noise;
}

Pixels RenderByLibrary(const Pixels& source, const glimmerblur_look& look) {
  glimmerblur* object = nullptr;
  if (glimmerblur_create(nullptr, &object) != GLIMMERBLUR_OK) {
    throw std::runtime_error("no object");
  }
  Pixels out = source;
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {0, 0, source.bounds.width, source.bounds.height};
  frame.data = out.samples.data();
  if (glimmerblur_set_look(object, &look) != GLIMMERBLUR_OK ||
      glimmerblur_render(object, &frame, &frame, nullptr) != GLIMMERBLUR_OK) {
    throw std::runtime_error(glimmerblur_message(object));
  }
  glimmerblur_destroy(object);
  return out;
}

double Distance(const Pixels& one, const Pixels& other) {
  if (one.samples.size() != other.samples.size()) {
    return std::numeric_limits<double>::infinity();
  }
  double largest = 0.0;
  for (std::size_t i = 0; i < one.samples.size(); ++i) {
    largest = std::max(largest, std::abs(static_cast<double>(one.samples[i]) - other.samples[i]));
  }
  return largest;
}

Graph::Graph() : graph_((StartGegl(), gegl_node_new())) {}

Graph::~Graph() { g_object_unref(graph_); }

GeglNode* Graph::AddBuffer(GeglBuffer* buffer) {
  GeglNode* node =
      gegl_node_new_child(graph_, "operation", "gegl:buffer-source", "buffer", buffer, nullptr);
  g_object_unref(buffer);
  return node;
}

GeglNode* Graph::AddSource(const Pixels& pixels) {
  GeglBuffer* buffer = gegl_buffer_new(&pixels.bounds, PixelFormat());
  gegl_buffer_set(buffer, &pixels.bounds, 0, PixelFormat(), pixels.samples.data(),
                  GEGL_AUTO_ROWSTRIDE);
  return AddBuffer(buffer);
}

GeglNode* Graph::AddSource8(const GeglRectangle& bounds, const std::vector<guchar>& samples) {
  const Babl* format = babl_format("R'G'B'A u8");
  GeglBuffer* buffer = gegl_buffer_new(&bounds, format);
  gegl_buffer_set(buffer, &bounds, 0, format, samples.data(), GEGL_AUTO_ROWSTRIDE);
  return AddBuffer(buffer);
}

GeglNode* Graph::AddOperation(const std::string& name, GeglNode* input,
                              const Properties& properties) {
  GeglNode* node = gegl_node_new_child(graph_, "operation", name.c_str(), nullptr);
  for (const auto& [property, value] : properties) {
    SetProperty(node, property, value);
  }
  if (input != nullptr) {
    gegl_node_link(input, node);
  }
  return node;
}

void SetProperty(GeglNode* node, const std::string& name, const std::string& value) {
  GParamSpec* spec = gegl_node_find_property(node, name.c_str());
  if (spec == nullptr) {
    throw std::runtime_error(name + ": no such property");
  }
  if (G_IS_PARAM_SPEC_ENUM(spec)) {
    const GEnumValue* found =
        g_enum_get_value_by_nick(G_PARAM_SPEC_ENUM(spec)->enum_class, value.c_str());
    if (found == nullptr) {
      throw std::runtime_error(value + ": no such value of " + name);
    }
    gegl_node_set(node, name.c_str(), found->value, nullptr);
  } else if (G_IS_PARAM_SPEC_BOOLEAN(spec)) {
    gegl_node_set(node, name.c_str(), value == "true" ? TRUE : FALSE, nullptr);
  } else if (G_IS_PARAM_SPEC_INT(spec)) {
    gegl_node_set(node, name.c_str(), std::stoi(value), nullptr);
  } else if (G_IS_PARAM_SPEC_DOUBLE(spec)) {
    gegl_node_set(node, name.c_str(), std::stod(value), nullptr);
  } else {
    gegl_node_set(node, name.c_str(), value.c_str(), nullptr);
  }
}

Pixels Show(GeglNode* node, const GeglRectangle& bounds, double scale) {
  Pixels shown = {bounds, {}};
  shown.samples.resize(static_cast<std::size_t>(bounds.width) * bounds.height * 4);
  gegl_node_blit(node, scale, &bounds, PixelFormat(), shown.samples.data(), GEGL_AUTO_ROWSTRIDE,
                 GEGL_BLIT_DEFAULT);
  return shown;
}

Pixels ShowAll(GeglNode* node) { return Show(node, gegl_node_get_bounding_box(node)); }

}  // namespace lx_test
