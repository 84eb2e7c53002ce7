// SPDX-License-Identifier: BSD-3-Clause
// What an action ends in that throws: no host may see an exception.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "doors/openfx/actions.h"

namespace lx::openfx {

// The plug-in's own are in its file; none is asked for here.
Registry<Instance>& Instances() { return Lasting<Registry<Instance>>(); }

}  // namespace lx::openfx

namespace {

using lx::openfx::Failure;
using lx::openfx::RunAction;

TEST(OpenFxAction, EndsInWhatItAnswers) {
  EXPECT_EQ(ofx::kReplyDefault, RunAction(nullptr, [] { return ofx::kReplyDefault; }));
}

TEST(OpenFxAction, EndsInTheStatusOfItsFailure) {
  EXPECT_EQ(ofx::kErrImageFormat, RunAction(nullptr, []() -> ofx::Status {
              throw Failure{ofx::kErrImageFormat, "x"};
            }));
}

TEST(OpenFxAction, EndsInNoMemory) {
  EXPECT_EQ(ofx::kErrMemory, RunAction(nullptr, []() -> ofx::Status { throw std::bad_alloc(); }));
}

TEST(OpenFxAction, EndsInFailureWhateverElseIsThrown) {
  EXPECT_EQ(ofx::kFailed,
            RunAction(nullptr, []() -> ofx::Status { throw std::runtime_error("x"); }));
  EXPECT_EQ(ofx::kFailed, RunAction(nullptr, []() -> ofx::Status { throw 1; }));
}

}  // namespace
