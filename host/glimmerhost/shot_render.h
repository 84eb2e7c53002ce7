// A shot through the effect, frame by frame.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/glimmerhost/effect_module.h"
#include "host/glimmerhost/frame_renderer.h"
#include "host/glimmerhost/look_layers.h"
#include "host/glimmerhost/page.h"
#include "host/glimmerhost/shot_report.h"
#include "host/glimmerhost/shot_values.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_file.h"
#include "host/shots/manifest.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

struct ShotSettings {
  std::vector<LookLayer> layers;
  ReadOptions reading;
  bool premultiplied = true;
  int bits = 0;                       // 0 for the input's
  quantel::cSize2 pixelAspect{0, 0};  // 0:0 for the file's
  bool overwrite = false;
  bool skipExisting = false;
  bool keepGoing = false;
  bool carryPsf = false;
  std::map<std::string, std::string> versions;  // for the manifest
};

class ShotRender {
 public:
  // All must outlive this.
  //   manifest  null where none is asked for
  ShotRender(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
             const EffectModule& module, Manifest* manifest)
      : page_(page),
        settings_(settings),
        plan_(plan),
        renderer_(module, settings.carryPsf),
        manifest_(manifest) {}

  // Renders the plan's frames in their order. A frame that fails has no output; without keepGoing
  // it is the last. Throws UsageError where the command is wrong for all of them.
  void Run(ShotReport* report);

 private:
  // One frame on its way.
  struct Work {
    FrameFiles files;
    FrameReport report;
    std::unique_ptr<PictureOutput> output;
    Picture picture;
    Alpha alphaBefore = Alpha::kNone;
    FrameInput input;
    quantel::cPtr<FrameImage> result;
    ReadReport found;
    std::string inputHash;  // empty where no manifest is asked for
  };

  void Load(Work* work);
  void Render(Work* work);
  void Write(Work* work) const;
  void Note(const Work& work) const;
  std::map<std::string, Value> ValuesOf(int frame, const Picture& picture);
  quantel::cPtr<FrameImage> SpreadOf(Work* work);

  const Page& page_;
  const ShotSettings& settings_;
  const ShotPlan& plan_;
  FrameRenderer renderer_;
  Manifest* manifest_;

  // Values for pictures of one size, and a still for all frames.
  std::unique_ptr<ShotValues> values_;
  std::pair<int, int> valuesSize_;
  std::filesystem::path spreadFile_;
  std::pair<int, int> spreadSize_;
  quantel::cPtr<FrameImage> spread_;
  bool warnedOfNoise_ = false;
};

}  // namespace glimmerhost
