// SPDX-License-Identifier: BSD-3-Clause
// A host for the module: it renders one point of light and looks at the disc that comes out.
//
//   minimal_host MODULE
//
// What a host must offer stands in minimal_host.h; this is the order in which it is used.
#include <dlfcn.h>
#include <hostframe/interfaces/recoverable.h>
#include <hostframe/minimal_host/minimal_host.h>

using namespace minimal_host;

// True if the light of the middle pixel has spread, and none of it is lost.
bool RenderAPoint(const cFactory& factory) {
  const cPtr<cFrame> source(new cFrame(64, 48));
  const cPtr<cFrame> output(new cFrame(64, 48));
  const std::size_t middle = (24 * 64 + 32) * 4;
  source->samples[middle + 2] = 65535;  // red

  // Keys, and what they mean, are those that `glimmerhost info` lists.
  const cPtr<cParameters> parameters(new cParameters);
  parameters->setList(u"PRM_Shape", 0);          // a circle
  parameters->setFloat(u"PRM_RadiusX", 0.125F);  // its diameter: an eighth of the width, 8 pixels
  parameters->setFloat(u"PRM_Emphasis", 1.0F);

  const auto render = factory.make<qplugin::iQpluginRender>();
  render->setTarget(cPtr<cTarget>(new cTarget(output)));
  render->setInputs(cPtr<cStill>(new cStill(source)));
  render->setParams(parameters);
  render->renderFrame(1, 0, 0);

  double light = 0;
  int pixels = 0;
  for (std::size_t i = 2; i < output->samples.size(); i += 4) {
    light += output->samples[i];
    pixels += output->samples[i] > 100 ? 1 : 0;
  }
  std::cout << "One pixel became " << pixels << ", with " << light / 65535 << " of its light\n";
  return pixels > 40 && pixels < 80 && light > 0.98 * 65535 && light < 1.02 * 65535;
}

int main(int argc, char** argv) {
  // Modules are loaded on the thread that calls them. The two functions are all that they export.
  void* const module = argc == 2 ? dlopen(argv[1], RTLD_NOW) : nullptr;
  if (module == nullptr) {
    std::cerr << (argc == 2 ? dlerror() : "usage: minimal_host MODULE") << '\n';
    return 2;
  }
  const auto init = reinterpret_cast<qplugin::ModuleInit*>(dlsym(module, "moduleInit"));
  const auto cleanUp = reinterpret_cast<qplugin::ModuleCleanUp*>(dlsym(module, "moduleCleanUp"));

  // The factory is there before the module wakes, and until it is unloaded.
  const cPtr<cFactory> factory(new cFactory);
  quantel::gFactory = factory;
  init(cPtr<cModuleTexts>(new cModuleTexts));
  bool rendered = false;
  try {
    rendered = RenderAPoint(*factory);
  } catch (const quantel::cRecoverable& fault) {
    cMessages().message(fault.message());
  }
  // By now no instance is left: their code goes with the module.
  cleanUp();
  dlclose(module);
  return rendered ? 0 : 1;
}
