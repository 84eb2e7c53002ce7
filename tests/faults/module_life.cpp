// SPDX-License-Identifier: BSD-3-Clause
#include "tests/faults/module_life.h"

#include <algorithm>
#include <ctime>
#include <memory>
#include <new>
#include <vector>

#include "hostframe/interfaces/module.h"
#include "tests/border/module_path.h"
#include "tests/support/shared_library.h"

namespace faults {
namespace {

using Numbers = QuietParams::Numbers;
using Render = quantel::cPtr<qplugin::iQpluginRender>;

class Module {
 public:
  explicit Module(QuietHost* host)
      : host_(host),
        library_(lx_test::OpenLibrary(lx_test::ModuleFile())),
        init_(reinterpret_cast<qplugin::ModuleInit*>(lx_test::FunctionOf(library_, "moduleInit"))) {
  }
  ~Module() { lx_test::CloseLibrary(library_); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // False where its classes are not there.
  bool Init() {
    try {
      init_(host_->module.Pointer<qplugin::iQpluginModule>());
    } catch (const std::bad_alloc&) {
      return false;
    }
    const auto& classes = host_->factory.classes;
    return classes.size() == 2 && classes[0] && classes[1];
  }

  Render MakeRender() const {
    return host_->factory.classes[1]->create().Dynamic<qplugin::iQpluginRender>();
  }

 private:
  QuietHost* host_;
  void* library_;
  qplugin::ModuleInit* init_;
};

// Another grid than that of the narrow one.
Numbers Widened(Numbers numbers) {
  numbers[u"PRM_RadiusX"] = 1.5;
  numbers[u"PRM_RadiusPSF2"] = 4;
  return numbers;
}

void FillPicture(std::size_t add, std::vector<std::uint16_t>* samples) {
  for (std::size_t i = 0; i < samples->size(); ++i) {
    (*samples)[i] = SourceSample(i + add);
  }
}

class Life {
 public:
  Life(const LifeLook& look, Stage stage, QuietHost* host, LifeReport* report)
      : stage_(stage),
        narrow_(look.numbers),
        wide_(Widened(look.numbers)),
        host_(host),
        report_(report) {
    FillPicture(0, &host->inputs.main.image.samples);
    FillPicture(1000, &host->inputs.spread.image.samples);
    host->inputs.hasSpread = look.hasSpread;
  }
  Life(const Life&) = delete;
  Life& operator=(const Life&) = delete;

  void Refuse(Kind kind, long n) {
    module_ = std::make_unique<Module>(host_);
    if (stage_ == Stage::kLaterFrame) {
      module_->Init();
      MakeAndConnect();
      RenderFrame(narrow_, kRefusedFrame);
    }
    std::fill(Out().begin(), Out().end(), kUntouched);
    host_->params.numbers = stage_ == Stage::kFirstFrame ? narrow_ : wide_;
    host_->calls.Clear();
    RefuseFrom(kind, n);
    report_->told = RunStage();
    RefuseNoMore();
    report_->requests = RequestsSeen();
    report_->refused = WhatWasRefused();
    report_->calls = host_->calls;
    Keep(kRefusedFrame);
  }

  // With everything granted.
  void GoOn() {
    if (report_->told == Told::kNoModule) {
      module_.reset();
      LoadAndInit();
    }
    if (!render_) {
      MakeAndConnect();
    }
    // A host that has been thrown at may have got no further with its connections.
    host_->Connect(render_);
    const bool isFirst = stage_ == Stage::kFirstFrame;
    RenderFrame(isFirst ? narrow_ : wide_, kNextFrame);
    RenderFrame(isFirst ? wide_ : narrow_, kOtherLook);
    MakeAndConnect();
    RenderFrame(narrow_, kFresh);
  }

  void End() {
    RefuseFrom(Kind::kMemory, 0);
    render_.Reset();
    module_.reset();
    RefuseNoMore();
    report_->requestsOfEnd = RequestsSeen();
  }

  void BeginAnew() {
    LoadAndInit();
    MakeAndConnect();
    RenderFrame(narrow_, kLoadedAnew);
    render_.Reset();
    module_.reset();
  }

 private:
  void LoadAndInit() {
    module_ = std::make_unique<Module>(host_);
    module_->Init();
  }

  void MakeAndConnect() {
    render_ = module_->MakeRender();
    host_->Connect(render_);
  }

  Told RunStage() {
    try {
      if (stage_ == Stage::kFirstFrame) {
        if (!module_->Init()) {
          return Told::kNoModule;
        }
        render_ = module_->MakeRender();
        if (!render_) {
          return Told::kNoInstance;
        }
        host_->Connect(render_);
      }
      render_->renderFrame(1, 0, 0);
      return Told::kDone;
    } catch (const std::bad_alloc&) {
      return Told::kThrew;
    }
  }

  void RenderFrame(const Numbers& numbers, LifeStep step) {
    std::fill(Out().begin(), Out().end(), kUntouched);
    host_->params.numbers = numbers;
    render_->renderFrame(1, 0, 0);
    Keep(step);
  }

  void Keep(LifeStep step) { std::copy(Out().begin(), Out().end(), report_->frames[step].begin()); }
  std::vector<std::uint16_t>& Out() { return host_->target.image.samples; }

  Stage stage_;
  Numbers narrow_;
  Numbers wide_;
  QuietHost* host_;
  LifeReport* report_;
  std::unique_ptr<Module> module_;
  Render render_;
};

}  // namespace

std::uint16_t SourceSample(std::size_t at) {
  return static_cast<std::uint16_t>(at * 7919 + at / 3);
}

void LiveWithModule(const LifeLook& look, Stage stage, Kind kind, long n, LifeReport* report) {
  // The pool's log asks for the time of day, for which the system reads its table of zones once.
  tzset();
  const long before = BlocksAlive();
  {
    QuietHost host(kLifeWidth, kLifeHeight);
    {
      Life life(look, stage, &host, report);
      life.Refuse(kind, n);
      life.GoOn();
      life.End();
      life.BeginAnew();
    }
    report->isHeld = !host.HoldsAllAlone();
  }
  report->kept = BlocksAlive() - before;
  report->isFinished = true;
}

}  // namespace faults
