// SPDX-License-Identifier: BSD-3-Clause
// The functions that a program calls, over whichever plug-in the file holds. They are C: nothing is
// thrown out of them.
#include <new>

#include "doors/frei0r/frei0r_api.h"
#include "doors/frei0r/plugin.h"

using glimmerblur_frei0r::Instance;
using glimmerblur_frei0r::kPlugin;
using glimmerblur_frei0r::Parameter;

namespace {

void Update(f0r_instance_t handle, const std::uint32_t* in, const std::uint32_t* second,
            std::uint32_t* out) {
  auto* instance = static_cast<Instance*>(handle);
  try {
    kPlugin.update(instance, in, second, out);
  } catch (const std::bad_alloc&) {
    instance->Leave(in, out);
  }
}

}  // namespace

extern "C" {

int f0r_init(void) { return 1; }

void f0r_deinit(void) {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  info->name = kPlugin.name;
  info->author = "the GlimmerBlur authors";
  info->plugin_type = kPlugin.type;
  info->color_model = F0R_COLOR_MODEL_RGBA8888;
  info->frei0r_version = FREI0R_MAJOR_VERSION;
  info->major_version = VERSION_MAJOR;
  info->minor_version = VERSION_MINOR;
  info->num_params = static_cast<int>(kPlugin.parameters.size());
  info->explanation = kPlugin.explanation;
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= kPlugin.parameters.size()) {
    return;
  }
  const Parameter& parameter = kPlugin.parameters[static_cast<std::size_t>(index)];
  info->name = parameter.name;
  info->type = parameter.isSwitch ? F0R_PARAM_BOOL : F0R_PARAM_DOUBLE;
  info->explanation = parameter.explanation;
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
  try {
    return Instance::Make(width, height, kPlugin.parameters).release();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void f0r_destruct(f0r_instance_t instance) { delete static_cast<Instance*>(instance); }

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  static_cast<Instance*>(instance)->Set(index, *static_cast<const double*>(value));
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  *static_cast<double*>(value) = static_cast<Instance*>(instance)->Get(index);
}

void f0r_update(f0r_instance_t instance, double /*time*/, const std::uint32_t* in,
                std::uint32_t* out) {
  Update(instance, in, nullptr, out);
}

void f0r_update2(f0r_instance_t instance, double /*time*/, const std::uint32_t* in,
                 const std::uint32_t* second, const std::uint32_t* /*third*/, std::uint32_t* out) {
  Update(instance, in, second, out);
}
}
