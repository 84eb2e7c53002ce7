// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/frame_work.h"

#include <filesystem>
#include <new>
#include <system_error>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

bool HasFailed(const FrameWork& work) {
  return work.report.state == FrameState::kFailed || work.report.state == FrameState::kMissing;
}

}  // namespace

void DoPart(FrameWork* work, const std::function<void()>& part) {
  if (HasFailed(*work) || work->usage) {
    return;
  }
  FrameReport& report = work->report;
  try {
    part();
  } catch (const UsageError&) {
    work->usage = std::current_exception();
  } catch (const MissingInput& fault) {
    report.state = FrameState::kMissing;
    report.fault = fault.what();
  } catch (const std::bad_alloc&) {
    report.state = FrameState::kFailed;
    report.fault = "not enough memory for this picture";
  } catch (const std::exception& fault) {
    report.state = FrameState::kFailed;
    report.fault = fault.what();
  }
}

bool IsLastFrame(const FrameWork& work, bool keepGoing) {
  return work.isLast || work.usage || (!keepGoing && HasFailed(work));
}

bool OutputExists(const FrameFiles& files) {
  std::error_code error;
  return std::filesystem::is_regular_file(files.output, error) &&
         std::filesystem::file_size(files.output, error) > 0 && !error;
}

ClosedAtEnd::~ClosedAtEnd() {
  if (from_ != nullptr) {
    from_->Abandon();
  }
  if (to_ != nullptr) {
    to_->Close();
  }
}

}  // namespace glimmerhost
