// A shot through the effect, frame by frame. While the effect works on one, the next is read and
// the one before is written.
#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/looks/keyframed_values.h"
#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/module/frame_renderer.h"
#include "host/pictures/pam_stream.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_file.h"
#include "host/render/shot_report.h"
#include "host/render/shot_settings.h"
#include "host/shots/manifest.h"
#include "host/shots/shot_plan.h"
#include "host/support/channel.h"

namespace glimmerhost {

class ShotRender {
 public:
  // All must outlive this. Where the plan says kPipe, pictures come from stdin, or go to stdout.
  //   manifest  null where none is asked for
  ShotRender(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
             const EffectModule& module, Manifest* manifest);

  // Renders the plan's frames in their order; the effect works on the calling thread. A frame that
  // fails has no output; without keepGoing it is the last. Throws UsageError where the command is
  // wrong for all of them.
  //   report  is given one frame at a time, in order, and not by the calling thread
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
    std::string inputHash;     // empty where no manifest is asked for
    std::exception_ptr usage;  // the command is wrong
    bool isLast = false;       // nothing can be read after it
    bool isNone = false;       // an open pipe was at its end
  };
  using Works = Channel<std::unique_ptr<Work>>;

  template <class FrameWork>
  static void Try(Work* work, const FrameWork& frameWork);

  // Each the loop of a thread.
  void LoadAll(Works* loaded);
  void RenderAll(Works* loaded, Works* rendered);
  void WriteAll(Works* rendered, ShotReport* report);

  bool IsOver(const Work& work) const;
  std::optional<FrameFiles> FilesAt(std::size_t place) const;
  void Load(Work* work);
  void TakeFromPipe(Work* work);
  void TakePicture(Work* work);
  void Render(Work* work);
  void Write(Work* work) const;
  bool WriteFile(Work* work) const;
  void Note(const Work& work) const;
  void NoteFound(const Work& work) const;
  std::map<std::string, Value> ValuesOf(int frame, const Picture& picture);
  quantel::cPtr<FrameImage> SpreadOf(Work* work);

  const Page& page_;
  const ShotSettings& settings_;
  const ShotPlan& plan_;
  const lx::Footprint& engine_;
  FrameRenderer renderer_;
  Manifest* manifest_;

  // What follows is the loading thread's.
  PamReader pipe_;
  std::size_t taken_ = 0;  // pictures of the pipe

  // Values for pictures of one size, and a still for all frames.
  std::unique_ptr<KeyframedValues> values_;
  std::pair<int, int> valuesSize_;
  std::filesystem::path spreadFile_;
  std::pair<int, int> spreadSize_;
  quantel::cPtr<FrameImage> spread_;
  bool warnedOfNoise_ = false;
};

}  // namespace glimmerhost
