// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/divided_passes.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using lx_test::NoiseImage;
using lx_test::Samples;

constexpr std::uint32_t kAlongRows = 1;
constexpr std::uint32_t kAlongColumns = 2;

constexpr int kWidth = 13;  // with 3 weights, lines of 32
constexpr int kHeight = 6;  // and columns of 16

bool SetWeights(DefocusEngine* engine, const std::vector<float>& weights) {
  return engine->SetSeparableKernel(weights.data(), static_cast<std::int32_t>(weights.size()));
}

std::vector<float> WeightsOf(const DefocusEngine& engine) {
  return {Inside(engine).separableKernel(),
          Inside(engine).separableKernel() + Inside(engine).separableKernelLength()};
}

// One line through the filter by a plain cyclic sum.
//
// The filter's line holds the weights, and mirrored one place short of its circle: weights[i]
// stands at i and at padded - 1 - i. The transforms take a line's even places as its first half and
// the odd ones as its second: lines are brought into that order, summed, and brought back.
class LineModel {
 public:
  LineModel(const std::vector<float>& weights, int padded) : filter_(padded, 0.0) {
    const int count = std::min<int>(padded, static_cast<int>(weights.size()));
    for (int i = 0; i < count; ++i) {
      filter_[i] = weights[i];
    }
    for (int i = 1; i < count; ++i) {
      filter_[padded - 1 - i] = weights[i];
    }
    double sum = 0.0;
    for (const double value : filter_) {
      sum += value;
    }
    for (double& value : filter_) {
      value *= sum > 0.0 ? 1.0 / sum : sum;
    }
  }

  std::vector<double> Filter(const std::vector<double>& line, std::int32_t edgeMode) const {
    const int padded = static_cast<int>(filter_.size());
    const int length = static_cast<int>(line.size());
    const int start = (padded - length) / 2;
    std::vector<double> samples(filter_.size(), 0.0);
    for (int i = 0; i < padded; ++i) {
      const int from = std::clamp(i - start, 0, length - 1);
      if (from == i - start || edgeMode == lx::kEdgeReplicate) {
        samples[i] = line[from];
      }
    }
    std::vector<double> sums(filter_.size(), 0.0);
    for (int i = 0; i < padded; ++i) {
      for (int k = 0; k < padded; ++k) {
        sums[Place((Turn(i, padded) + Turn(k, padded)) % padded, padded)] +=
            filter_[k] * samples[i];
      }
    }
    return {sums.begin() + start, sums.begin() + start + length};
  }

  // Three transforms of log2(padded) stages, each of which rounds to 6e-8 of the largest value:
  // of samples up to largest, what the filter can make of them.
  double Tolerance(double largest) const {
    double reach = 0.0;
    for (const double value : filter_) {
      reach += std::abs(value);
    }
    return 3.0 * std::log2(static_cast<double>(filter_.size())) * 6e-8 * largest * reach;
  }

 private:
  static int Turn(int place, int padded) { return place / 2 + place % 2 * (padded / 2); }
  static int Place(int turned, int padded) {
    return turned < padded / 2 ? 2 * turned : 2 * (turned - padded / 2) + 1;
  }

  std::vector<double> filter_;
};

// Row or column k of a channel.
std::vector<double> LineOf(const Image& image, std::uint32_t direction, int k, int channel) {
  std::vector<double> line;
  const int length = direction == kAlongRows ? image->width : image->height;
  for (int i = 0; i < length; ++i) {
    const int at = direction == kAlongRows ? k * image->width + i : i * image->width + k;
    line.push_back(lx_test::SampleAt(
        image, static_cast<std::size_t>(at) * image->channels + static_cast<std::size_t>(channel)));
  }
  return line;
}

// A channel that one direction was filtered in. Whole numbers are cut, never rounded: half of
// them would else lie above the sum.
void ExpectFiltered(const Image& source, const Image& got, std::uint32_t direction, int channel,
                    const std::vector<float>& weights, int padded, std::int32_t edgeMode) {
  const LineModel model(weights, padded);
  const bool whole = source->sampleType != lx::kSampleFloat;
  const double largest = lx_test::LargestSample(source->sampleType);
  const double noise = model.Tolerance(largest);
  const int lines = direction == kAlongRows ? source->height : source->width;
  for (int k = 0; k < lines; ++k) {
    const auto sums = model.Filter(LineOf(source, direction, k, channel), edgeMode);
    const auto samples = LineOf(got, direction, k, channel);
    for (std::size_t i = 0; i < sums.size(); ++i) {
      const double sum = whole ? std::clamp(sums[i], 0.0, largest) : sums[i];
      ASSERT_LE(samples[i], sum + noise) << "line " << k << " place " << i;
      ASSERT_GE(samples[i], sum - noise - (whole ? 1.0 : 0.0)) << "line " << k << " place " << i;
    }
  }
}

const std::vector<float>& Weights() {
  static const std::vector<float> weights{1.0F, 0.6F, 0.25F};
  return weights;
}

TEST(SeparableWeights, AreACopy) {
  DefocusEngine engine;
  std::vector<float> weights = Weights();

  ASSERT_TRUE(SetWeights(&engine, weights));
  weights[1] = 9.0F;

  EXPECT_EQ(Weights(), WeightsOf(engine));
}

TEST(SeparableWeights, ReplaceTheOldOnesAndFreeThem) {
  lx_test::HeapFaults heap;
  DefocusEngine engine;
  SetWeights(&engine, Weights());
  const int alive = heap.Alive();

  ASSERT_TRUE(SetWeights(&engine, {2.0F, 1.0F}));

  EXPECT_EQ(alive, heap.Alive());
  EXPECT_EQ((std::vector<float>{2.0F, 1.0F}), WeightsOf(engine));
}

TEST(SeparableWeights, AreNoneWithoutMemory) {
  lx_test::HeapFaults heap;
  DefocusEngine engine;
  const int alive = heap.Alive();
  SetWeights(&engine, Weights());
  heap.Refuse(1);

  EXPECT_FALSE(SetWeights(&engine, {2.0F, 1.0F}));

  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(nullptr, Inside(engine).separableKernel());
  EXPECT_EQ(alive, heap.Alive());
}

TEST(SeparableWeights, AreNoneForACountBelowOne) {
  const float value = 1.0F;
  const Image image = NoiseImage(kWidth, kHeight, 1, lx::kSampleU8, 3);
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    DefocusEngine engine;
    SetWeights(&engine, Weights());
    engine.SetEdgeMode(0);  // a status of its own
    ASSERT_TRUE(engine.PrepareSeparable(image.get()));

    EXPECT_FALSE(engine.SetSeparableKernel(&value, count)) << count;

    EXPECT_EQ(lx::kStatusEdgeMode, engine.GetStatus()) << count;
    EXPECT_FALSE(engine.FilterSeparable(image.get(), 1, kAlongRows)) << count;
    EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus()) << count;
  }
}

TEST(FilterWeights, AreRefusedForTypesThatAreNone) {
  for (const std::int32_t type : {-1, 0, 7, 8, 10, 100}) {
    DefocusEngine engine;
    EXPECT_FALSE(engine.MakeFilterKernel(type, 2.0F, 0.0F, 0.0F)) << type;
    EXPECT_EQ(nullptr, Inside(engine).separableKernel()) << type;
    EXPECT_EQ(lx::kStatusOk, engine.GetStatus()) << type;
  }
}

// Worked out by hand for the radius 2, whose values lie at 0, 0.5, 1, 1.5 and 2 radii.
TEST(FilterWeights, FollowEachTypesFormula) {
  struct {
    const char* name;
    std::int32_t type;
    float parameter;
    std::vector<double> expected;
  } const cases[] = {
      {"box", 1, 0.0F, {1, 1, 0}},
      {"triangle", 2, 0.0F, {1, 0.5, 0}},
      // exp(-1.125 i^2)
      {"Gaussian", 3, 0.0F, {1, 0.3246525, 0.0111090, 4.0065e-5, 1.5230e-8}},
      {"cubic", 4, 0.0F, {1, 0.59375, 0, -0.09375, 0}},
      {"cubic of -0.5", 4, -0.5F, {1, 0.5625, 0, -0.0625, 0}},
      {"cubic of 1", 4, 1.0F, {1, 0.375, 0, 0.125, 0}},
      // 4/6, 2.875/6, 1/6, 0.125/6
      {"B-spline", 5, 0.0F, {0.6666667, 0.4791667, 0.1666667, 0.0208333, 0}},
      // sinc(0.5) = 2/pi and sinc(1.5) = -2/(3 pi), windows (cos(pi/8) + 1)/2, (cos(3 pi/8) + 1)/2
      {"cosine window", 6, 0.0F, {1, 0.6123899, 0, -0.1467073, 0}},
      // windows sin(pi/4)/(pi/4) and sin(3 pi/4)/(3 pi/4)
      {"sinc window", 9, 0.0F, {1, 0.5731592, 0, -0.0636844, 0}}};
  for (const auto& one : cases) {
    DefocusEngine engine;
    ASSERT_TRUE(engine.MakeFilterKernel(one.type, 2.0F, one.parameter, 77.0F)) << one.name;
    const std::vector<float> got = WeightsOf(engine);
    ASSERT_EQ(one.expected.size(), got.size()) << one.name;
    for (std::size_t i = 0; i < got.size(); ++i) {
      // Seven digits above, and pi in single precision, which leaves 1e-7 of a sine of it.
      EXPECT_NEAR(one.expected[i], got[i], 2e-7) << one.name << " " << i;
    }
  }
}

TEST(FilterWeights, HaveACountByTypeAndRadius) {
  struct {
    std::int32_t type;
    float radius;
    int length;
  } const cases[] = {{1, 2.5F, 3},   {1, 3.0F, 4}, {2, 2.5F, 3},       {2, 0.5F, 1},
                     {3, 2.5F, 7},   {3, 3.0F, 7}, {4, 0.5F, 3},       {5, 1.5F, 5},
                     {6, 4.01F, 11}, {9, 4.0F, 9}, {1, 8191.5F, 8192}, {3, 4095.0F, 8191}};
  for (const auto& one : cases) {
    DefocusEngine engine;
    ASSERT_TRUE(engine.MakeFilterKernel(one.type, one.radius, 0.0F, 0.0F)) << one.type;
    EXPECT_EQ(one.length, Inside(engine).separableKernelLength()) << one.type << " " << one.radius;
  }
}

TEST(FilterWeights, EndInsideAFractionalRadius) {
  DefocusEngine engine;

  engine.MakeFilterKernel(1, 2.5F, 0.0F, 0.0F);
  EXPECT_EQ((std::vector<float>{1.0F, 1.0F, 1.0F}), WeightsOf(engine));

  engine.MakeFilterKernel(2, 2.5F, 0.0F, 0.0F);
  const std::vector<float> triangle = WeightsOf(engine);
  EXPECT_NEAR(0.6, triangle[1], 1e-7);
  EXPECT_NEAR(0.2, triangle[2], 1e-7);
}

// Of the radius 1.5 the last values lie at 2 and 2.67 radii: only the Gaussian has no end.
TEST(FilterWeights, AreZeroFromTwoRadiiOnButForAGaussian) {
  for (const std::int32_t type : {4, 5, 6, 9}) {
    DefocusEngine engine;
    ASSERT_TRUE(engine.MakeFilterKernel(type, 1.5F, 0.0F, 0.0F));
    ASSERT_EQ(5, Inside(engine).separableKernelLength());
    EXPECT_NE(0.0F, Inside(engine).separableKernel()[2]) << type;
    EXPECT_EQ(0.0F, Inside(engine).separableKernel()[3]) << type;
    EXPECT_EQ(0.0F, Inside(engine).separableKernel()[4]) << type;
  }
  DefocusEngine engine;
  engine.MakeFilterKernel(3, 1.5F, 0.0F, 0.0F);
  // exp(-16 / (2 * 0.25)) = exp(-32)
  EXPECT_NEAR(1.266417e-14, Inside(engine).separableKernel()[4], 1e-19);
}

TEST(FilterWeights, RaiseSmallRadii) {
  for (const float radius : {0.0F, -5.0F, 0.005F}) {
    DefocusEngine engine;
    EXPECT_TRUE(engine.MakeFilterKernel(1, radius, 0.0F, 0.0F));
    EXPECT_EQ((std::vector<float>{1.0F, 0.0F}), WeightsOf(engine)) << radius;  // as of 1
    EXPECT_TRUE(engine.MakeFilterKernel(2, radius, 0.0F, 0.0F));
    EXPECT_EQ((std::vector<float>{1.0F}), WeightsOf(engine)) << radius;  // as of 0.01
    EXPECT_TRUE(engine.MakeFilterKernel(3, radius, 0.0F, 0.0F));
    EXPECT_EQ((std::vector<float>{1.0F, 0.0F, 0.0F}), WeightsOf(engine)) << radius;
  }
  DefocusEngine engine;
  EXPECT_TRUE(engine.MakeFilterKernel(1, 0.5F, 0.0F, 0.0F));
  EXPECT_EQ(2, Inside(engine).separableKernelLength());
}

TEST(FilterWeights, AreRefusedForARadiusThatNoLineHolds) {
  const float radii[] = {8192.0F, 1e9F, 1e30F, std::numeric_limits<float>::infinity(),
                         std::numeric_limits<float>::quiet_NaN()};
  for (const std::int32_t type : {1, 2, 3, 4, 5, 6, 9}) {
    for (const float radius : radii) {
      DefocusEngine engine;
      EXPECT_FALSE(engine.MakeFilterKernel(type, radius, 0.0F, 0.0F)) << type << " " << radius;
    }
  }
}

TEST(FilterWeights, HaveNoMemoryForTheirCopy) {
  lx_test::HeapFaults heap;
  DefocusEngine engine;
  heap.RefuseAll();

  EXPECT_FALSE(engine.MakeFilterKernel(3, 2.0F, 0.0F, 0.0F));

  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
}

TEST(PrepareSeparable, PadsEachSideByTheWeightsTwice) {
  DefocusEngine engine;
  SetWeights(&engine, Weights());
  const Image image = NoiseImage(kWidth, kHeight, 1, lx::kSampleU8, 3);

  ASSERT_TRUE(engine.PrepareSeparable(image.get()));

  EXPECT_EQ(image.get(), Inside(engine).separableSource());
  EXPECT_EQ(kWidth, Inside(engine).separableWidth());
  EXPECT_EQ(kHeight, Inside(engine).separableHeight());
  EXPECT_EQ(32, Inside(engine).separablePaddedWidth());
  EXPECT_EQ(16, Inside(engine).separablePaddedHeight());
}

// Two more than a power of two, so that a length of -1 would bring a line to less than the image's.
TEST(PrepareSeparable, NeverMakesALineShorterThanTheImagesBeforeAnyWeights) {
  constexpr int kLong = 66;
  DefocusEngine engine;
  const Image image = NoiseImage(kLong, kLong, 1, lx::kSampleFloat, 5);
  const Image dest = MakeImage(kLong, kLong, 1, lx::kSampleFloat);

  ASSERT_TRUE(engine.PrepareSeparable(image.get()));

  EXPECT_EQ(128, Inside(engine).separablePaddedWidth());
  EXPECT_EQ(128, Inside(engine).separablePaddedHeight());
  SetWeights(&engine, {1.0F});
  ASSERT_TRUE(engine.FilterSeparable(dest.get(), 1, 3));
  for (std::size_t i = 0; i < kLong * kLong; ++i) {
    ASSERT_NEAR(Samples<float>(image)[i], Samples<float>(dest)[i], 1e-5F) << i;
  }
}

TEST(PrepareSeparable, RefusesPaddedSidesOutOfRange) {
  struct {
    int width, height, weights;
  } const cases[] = {{8000, 4, 97}, {4, 8000, 97}, {8191, 1, 1}};
  for (const auto& one : cases) {
    DefocusEngine engine;
    SetWeights(&engine, std::vector<float>(one.weights, 1.0F));
    const Image fits = NoiseImage(4, 4, 1, lx::kSampleU8, 3);
    ASSERT_TRUE(engine.PrepareSeparable(fits.get()));
    const Image image = MakeImage(one.width, one.height, 1, lx::kSampleU8);

    EXPECT_FALSE(engine.PrepareSeparable(image.get()));

    EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());
    EXPECT_EQ(nullptr, Inside(engine).separableSource());
  }
}

TEST(PrepareSeparable, TakesTheLargestPaddedSide) {
  DefocusEngine engine;
  SetWeights(&engine, {1.0F});
  const Image image = MakeImage(8190, 1, 1, lx::kSampleU8);
  lx_test::Fill<std::uint8_t>(image, 1);

  EXPECT_TRUE(engine.PrepareSeparable(image.get()));

  EXPECT_EQ(8192, Inside(engine).separablePaddedWidth());
  EXPECT_EQ(4, Inside(engine).separablePaddedHeight());
}

TEST(PrepareSeparable, HasNoSourceWithoutMemoryForItsClone) {
  DefocusEngine engine;
  SetWeights(&engine, Weights());
  const Image image = NoiseImage(kWidth, kHeight, 1, lx::kSampleU8, 3);
  lx_test::HeapFaults heap;
  heap.RefuseAll();

  EXPECT_FALSE(engine.PrepareSeparable(image.get()));

  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(nullptr, Inside(engine).separableSource());
}

// The old clone is lost, and not freed: this test takes it over.
TEST(PrepareSeparable, ClonesOnEachCallAndLetsTheOldCloneGo) {
  lx_test::HeapFaults heap;
  {
    DefocusEngine engine;
    SetWeights(&engine, Weights());
    const Image image = NoiseImage(kWidth, kHeight, 2, lx::kSampleU16, 3);
    ASSERT_TRUE(engine.PrepareSeparable(image.get()));
    const int alive = heap.Alive();
    const Image old(Inside(engine).separableWork());
    ASSERT_TRUE(lx_test::SameSamples(image, old));

    ASSERT_TRUE(engine.PrepareSeparable(image.get()));

    EXPECT_NE(old.get(), Inside(engine).separableWork());
    EXPECT_GT(heap.Alive(), alive);
    EXPECT_TRUE(lx_test::SameSamples(image, old));
  }
  EXPECT_EQ(0, heap.Alive());  // the engine frees the last one
}

class SeparableFilter : public testing::Test {
 protected:
  void Prepare(const Image& source, const std::vector<float>& weights = Weights()) {
    ASSERT_TRUE(SetWeights(&engine, weights));
    ASSERT_TRUE(engine.PrepareSeparable(source.get()));
  }

  Image Filter(const Image& source, std::uint32_t mask, std::uint32_t direction) {
    Image dest = MakeImage(source->width, source->height, source->channels, source->sampleType);
    std::memset(dest->data, 0x55, lx_test::SampleCount(dest) * dest->elementBytes);
    EXPECT_TRUE(engine.FilterSeparable(dest.get(), mask, direction));
    return dest;
  }

  DefocusEngine engine;
};

// Weights of two ones weigh a third in three places. From an even place of the padded line a
// sample reaches its neighbours, as the transforms' order makes it, and from an odd one the place
// before and, by the short mirror, the one three before.
TEST_F(SeparableFilter, MirrorsTheWeightsOnePlaceShort) {
  constexpr float kExpected[4][4] = {{1, 1, 0, 0}, {1, 1, 0, 0}, {0, 1, 1, 1}, {1, 0, 1, 1}};
  engine.SetEdgeMode(lx::kEdgeZero);
  const Image source = MakeImage(4, 4, 1, lx::kSampleFloat);
  lx_test::Fill<float>(source, 0.0F);
  for (int y = 0; y < 4; ++y) {
    Samples<float>(source)[y * 4 + y] = 3.0F;  // padded lines are of 8, and begin 2 before
  }
  Prepare(source, {1.0F, 1.0F});

  const Image dest = Filter(source, 1, kAlongRows);

  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) {
      EXPECT_NEAR(kExpected[y][x], Samples<float>(dest)[y * 4 + x], 3e-6) << x << "," << y;
    }
  }
}

TEST_F(SeparableFilter, MatchesAPlainSumInEitherDirection) {
  for (const std::uint32_t type :
       {lx::kSampleU8, lx::kSampleU16, lx::kSampleU32, lx::kSampleFloat}) {
    for (const std::int32_t edgeMode : {lx::kEdgeZero, lx::kEdgeReplicate}) {
      DefocusEngine one;
      one.SetEdgeMode(edgeMode);
      SetWeights(&one, Weights());
      const Image source = NoiseImage(kWidth, kHeight, 2, type, 3);
      const Image dest = MakeImage(kWidth, kHeight, 2, type);
      ASSERT_TRUE(one.PrepareSeparable(source.get()));

      SCOPED_TRACE(testing::Message() << "type " << type << " edge " << edgeMode);
      for (int c = 0; c < 2; ++c) {
        ASSERT_TRUE(one.FilterSeparable(dest.get(), 3, kAlongRows));
        ExpectFiltered(source, dest, kAlongRows, c, Weights(), 32, edgeMode);
        ASSERT_TRUE(one.FilterSeparable(dest.get(), 3, kAlongColumns));
        ExpectFiltered(source, dest, kAlongColumns, c, Weights(), 16, edgeMode);
      }
    }
  }
}

TEST_F(SeparableFilter, GoesByItsWorkImageFromRowsToColumns) {
  const Image source = NoiseImage(kWidth, kHeight, 1, lx::kSampleU16, 3);
  Prepare(source);

  const Image dest = Filter(source, 1, kAlongRows | kAlongColumns);

  const Image between(lx::ImageClone(Inside(engine).separableWork()));
  ExpectFiltered(source, between, kAlongRows, 0, Weights(), 32, lx::kEdgeReplicate);
  ExpectFiltered(between, dest, kAlongColumns, 0, Weights(), 16, lx::kEdgeReplicate);
}

TEST_F(SeparableFilter, LeavesTheWorkImageInOneDirection) {
  const Image source = NoiseImage(kWidth, kHeight, 1, lx::kSampleU16, 3);
  Prepare(source);

  Filter(source, 1, kAlongRows);
  Filter(source, 1, kAlongColumns);

  const Image work(lx::ImageClone(Inside(engine).separableWork()));
  EXPECT_TRUE(lx_test::SameSamples(source, work));
}

TEST_F(SeparableFilter, DoesNothingInNoDirection) {
  const Image source = NoiseImage(kWidth, kHeight, 1, lx::kSampleU8, 3);
  Prepare(source);
  lx_test::DividedPasses passes;
  passes.Attach(&engine);

  const Image dest = Filter(source, 1, 4);

  EXPECT_EQ(0x55, Samples<std::uint8_t>(dest)[0]);
  EXPECT_TRUE(passes.counts.empty());
}

TEST_F(SeparableFilter, KeepsAConstantImageWithRepeatedEdges) {
  const Image source = MakeImage(kWidth, kHeight, 1, lx::kSampleFloat);
  lx_test::Fill<float>(source, 0.7F);
  Prepare(source);

  const Image dest = Filter(source, 1, kAlongRows | kAlongColumns);

  for (std::size_t i = 0; i < lx_test::SampleCount(dest); ++i) {
    ASSERT_NEAR(0.7F, Samples<float>(dest)[i], 2 * 3 * 5 * 6e-8) << i;
  }
}

// 1 - 2 - 2 = -3, by which the filter is multiplied: its sum is 9 then. Of a sum of 0 nothing
// is left.
TEST_F(SeparableFilter, MultipliesWeightsOfNoPositiveSumByIt) {
  const Image source = MakeImage(kWidth, kHeight, 1, lx::kSampleFloat);
  lx_test::Fill<float>(source, 0.5F);

  Prepare(source, {1.0F, -2.0F});
  const Image nine = Filter(source, 1, kAlongRows);
  ASSERT_TRUE(SetWeights(&engine, {2.0F, -1.0F}));
  const Image none = Filter(source, 1, kAlongRows);

  for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
    ASSERT_NEAR(4.5F, Samples<float>(nine)[i], 1e-4) << i;
    ASSERT_EQ(0.0F, Samples<float>(none)[i]) << i;
  }
}

// Three times three times too much, and by weights with a negative side too little.
TEST_F(SeparableFilter, ClampsWholeNumbersToTheRangeOfTheirType) {
  for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16, lx::kSampleU32}) {
    const double largest = lx_test::LargestSample(type);
    DefocusEngine one;
    one.SetEdgeMode(lx::kEdgeZero);
    const Image source = MakeImage(4, 1, 1, type);
    for (std::size_t i = 0; i < 4; ++i) {
      lx_test::SetSample(source, i, largest / 2.0);
    }
    const Image dest = MakeImage(4, 1, 1, type);
    SetWeights(&one, {1.0F, -2.0F});
    ASSERT_TRUE(one.PrepareSeparable(source.get()));

    // The line's second sample stands at the odd place 3, and gets -3 of itself and 6 of the
    // places 4 and 2.
    ASSERT_TRUE(one.FilterSeparable(dest.get(), 1, kAlongRows));
    EXPECT_EQ(largest, lx_test::SampleAt(dest, 1)) << type;

    // 1 - 0.4 - 0.4 = 0.2: a lone sample weighs 5, its neighbours -2 of it.
    SetWeights(&one, {1.0F, -0.4F});
    lx_test::SetSample(source, 1, 0.0);
    ASSERT_TRUE(one.FilterSeparable(dest.get(), 1, kAlongRows));
    EXPECT_EQ(0.0, lx_test::SampleAt(dest, 1)) << type;
    EXPECT_EQ(largest, lx_test::SampleAt(dest, 0)) << type;
  }
}

TEST_F(SeparableFilter, StoresFloatsAsTheyComeOut) {
  const Image source = MakeImage(kWidth, kHeight, 1, lx::kSampleFloat);
  lx_test::Fill<float>(source, -300.0F);
  Prepare(source, {1.0F, -2.0F});

  EXPECT_NEAR(-2700.0F, Samples<float>(Filter(source, 1, kAlongRows))[20], 0.1F);
}

TEST_F(SeparableFilter, WritesTheChannelsOfTheMaskThatBothImagesHave) {
  const Image source = NoiseImage(kWidth, kHeight, 4, lx::kSampleU16, 3);
  Prepare(source);
  const Image dest = MakeImage(kWidth, kHeight, 3, lx::kSampleU16);
  lx_test::Fill<std::uint16_t>(dest, 9);

  ASSERT_TRUE(engine.FilterSeparable(dest.get(), 0xC, kAlongRows));  // 2 and 3

  const LineModel model(Weights(), 32);
  const auto sums = model.Filter(LineOf(source, kAlongRows, 2, 2), lx::kEdgeReplicate);
  for (int x = 0; x < kWidth; ++x) {
    const auto* pixel = Samples<std::uint16_t>(dest) + (2 * kWidth + x) * 3;
    EXPECT_EQ(9, pixel[0]) << x;
    EXPECT_EQ(9, pixel[1]) << x;
    EXPECT_NEAR(sums[x] - 0.5, pixel[2], 0.6) << x;
  }
}

TEST_F(SeparableFilter, WritesIntoItsOwnSource) {
  const Image source = NoiseImage(kWidth, kHeight, 2, lx::kSampleU16, 3);
  Prepare(source);
  for (const std::uint32_t direction : {kAlongRows, kAlongColumns, kAlongRows | kAlongColumns}) {
    const Image expected = Filter(source, 3, direction);

    EXPECT_TRUE(engine.FilterSeparable(source.get(), 3, direction));

    EXPECT_TRUE(lx_test::SameSamples(expected, source)) << direction;
  }
}

TEST_F(SeparableFilter, ChecksWeightsAndSourceThenDestination) {
  const Image source = NoiseImage(kWidth, kHeight, 1, lx::kSampleU16, 3);
  const Image small = MakeImage(4, kHeight, 1, lx::kSampleU16);
  const Image low = MakeImage(kWidth, 4, 1, lx::kSampleU16);
  const Image bytes = MakeImage(kWidth, kHeight, 1, lx::kSampleU8);

  EXPECT_FALSE(engine.FilterSeparable(small.get(), 1, kAlongRows));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  SetWeights(&engine, Weights());
  engine.SetEdgeMode(0);
  EXPECT_FALSE(engine.FilterSeparable(small.get(), 1, kAlongRows));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  ASSERT_TRUE(engine.PrepareSeparable(source.get()));
  for (const Image* dest : {&small, &low, &bytes}) {
    engine.SetEdgeMode(0);
    EXPECT_FALSE(engine.FilterSeparable(dest->get(), 1, kAlongRows));
    EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  }
}

// In 8 samples 5 weights meet their own mirror image; more of them have no place.
TEST_F(SeparableFilter, TakesWhatTheLineHoldsOfWeightsThatBecameMore) {
  const Image source = NoiseImage(6, 6, 1, lx::kSampleFloat, 3);
  Prepare(source, {1.0F});
  ASSERT_EQ(8, Inside(engine).separablePaddedWidth());
  for (const std::size_t count : {5U, 8U, 9U, 100U, 9000U}) {
    std::vector<float> weights;
    for (std::size_t i = 0; i < count; ++i) {
      weights.push_back(1.0F + static_cast<float>(i % 7));
    }
    ASSERT_TRUE(SetWeights(&engine, weights));

    SCOPED_TRACE(count);
    ExpectFiltered(source, Filter(source, 1, kAlongRows), kAlongRows, 0, weights, 8,
                   lx::kEdgeReplicate);
    ExpectFiltered(source, Filter(source, 1, kAlongColumns), kAlongColumns, 0, weights, 8,
                   lx::kEdgeReplicate);
  }
}

TEST_F(SeparableFilter, RunsAPassOverRowsAndOneOverColumns) {
  const Image source = NoiseImage(kWidth, kHeight, 2, lx::kSampleU16, 3);
  Prepare(source);
  lx_test::DividedPasses passes;
  passes.Attach(&engine);

  Filter(source, 3, kAlongRows);
  Filter(source, 3, kAlongColumns);
  Filter(source, 3, kAlongRows | kAlongColumns);

  EXPECT_EQ((std::vector<int>{kHeight, kWidth, kHeight, kWidth}), passes.counts);
}

// With margins of zero a line must not find what the one before it left there.
TEST_F(SeparableFilter, GivesTheSameBitsHoweverLinesAreDivided) {
  const Image source = NoiseImage(kWidth, kHeight, 3, lx::kSampleU16, 3);
  Prepare(source);
  for (const std::int32_t edgeMode : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    engine.SetEdgeMode(edgeMode);
    engine.SetParallelFor(nullptr, nullptr);
    const Image expected = Filter(source, 7, kAlongRows | kAlongColumns);
    for (const int ways : {1, 2, 7}) {
      for (const bool onThreads : {false, true}) {
        lx_test::DividedPasses passes(ways, onThreads);
        passes.Attach(&engine);
        EXPECT_TRUE(lx_test::SameSamples(expected, Filter(source, 7, kAlongRows | kAlongColumns)))
            << "edge " << edgeMode << " ways " << ways << " threads " << onThreads;
      }
    }
  }
}

TEST_F(SeparableFilter, AsksBeforeEachLineOfEachChannel) {
  const Image source = NoiseImage(kWidth, kHeight, 3, lx::kSampleU16, 3);
  Prepare(source);
  lx_test::PollCounter counter;
  counter.Attach(&engine);

  Filter(source, 5, kAlongRows | kAlongColumns);

  EXPECT_EQ(2 * (kHeight + kWidth), counter.polls);
}

TEST_F(SeparableFilter, LeavesTheLinesAfterACancellationAndNoError) {
  const Image source = NoiseImage(kWidth, kHeight, 1, lx::kSampleU16, 3);
  Prepare(source);
  const Image full = Filter(source, 1, kAlongRows);
  lx_test::PollCounter counter(2);
  counter.Attach(&engine);

  const Image cut = Filter(source, 1, kAlongRows);

  EXPECT_EQ(lx::kStatusOk, engine.GetStatus());
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const int expected = i < 2 * kWidth ? Samples<std::uint16_t>(full)[i] : 0x5555;
    ASSERT_EQ(expected, Samples<std::uint16_t>(cut)[i]) << i;
  }
}

TEST_F(SeparableFilter, FailsForWantOfALineAndFreesWhatItHas) {
  const Image source = NoiseImage(kWidth, kHeight, 1, lx::kSampleU16, 3);
  lx_test::HeapFaults heap;
  Prepare(source);
  const Image expected = Filter(source, 1, kAlongRows | kAlongColumns);
  const Image dest = MakeImage(kWidth, kHeight, 1, lx::kSampleU16);
  const int alive = heap.Alive();
  int refusals = 0;
  for (bool done = false; !done; ++refusals) {
    ASSERT_LT(refusals, 100);
    heap.Refuse(refusals + 1);
    done = engine.FilterSeparable(dest.get(), 1, kAlongRows | kAlongColumns);
    heap.Refuse(0);
    EXPECT_EQ(done ? lx::kStatusOk : lx::kStatusNoMemory, engine.GetStatus()) << refusals;
    EXPECT_EQ(alive, heap.Alive()) << refusals;
  }
  EXPECT_GE(refusals - 1, 2);  // for each direction once at least
  EXPECT_TRUE(lx_test::SameSamples(expected, dest));
}

}  // namespace
