// SPDX-License-Identifier: BSD-3-Clause
#include <gegl-paramspecs.h>
#include <gegl.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "tests/doors/gegl/graph.h"
#include "tests/support/sanitizer.h"

namespace lx_test {
namespace {

constexpr char kName[] = "glimmerblur:defocus";
constexpr GeglRectangle kBounds = {0, 0, 70, 53};

glimmerblur_look MakeLook(glimmerblur_shape shape, double radiusX, double radiusY) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = shape;
  look.radius_x = radiusX;
  look.radius_y = radiusY;
  return look;
}

// What GLib would print meanwhile.
class CaughtWarnings {
 public:
  CaughtWarnings()
      : before_(g_log_set_default_handler(
            [](const gchar* /*domain*/, GLogLevelFlags /*level*/, const gchar* text,
               gpointer user) { static_cast<CaughtWarnings*>(user)->texts_.emplace_back(text); },
            this)) {}
  ~CaughtWarnings() { g_log_set_default_handler(before_, nullptr); }
  CaughtWarnings(const CaughtWarnings&) = delete;
  CaughtWarnings& operator=(const CaughtWarnings&) = delete;

  const std::vector<std::string>& Texts() const { return texts_; }

 private:
  GLogFunc before_;
  std::vector<std::string> texts_;
};

std::vector<double> NoteProgress(GeglNode* node, const std::function<void()>& act) {
  std::vector<double> noted;
  const auto note = +[](GeglNode* /*node*/, gdouble done, gpointer user) {
    static_cast<std::vector<double>*>(user)->push_back(done);
  };
  const gulong handler = g_signal_connect(node, "progress", G_CALLBACK(note), &noted);
  act();
  g_signal_handler_disconnect(node, handler);
  return noted;
}

struct LookCase {
  const char* name;
  Graph::Properties properties;
  glimmerblur_look look;
};

std::vector<LookCase> LookCases() {
  std::vector<LookCase> cases = {
      {"nothing set", {}, MakeLook(GLIMMERBLUR_CIRCLE, 10, 10)},
      {"circle", {{"radius", "6.5"}}, MakeLook(GLIMMERBLUR_CIRCLE, 6.5, 6.5)},
      {"ellipse",
       {{"shape", "ellipse"}, {"radius", "8"}, {"aspect-ratio", "2"}, {"rotation", "30"}},
       MakeLook(GLIMMERBLUR_ELLIPSE, 8, 4)},
      {"polygon",
       {{"shape", "polygon"}, {"sides", "5"}, {"radius", "7"}, {"emphasis", "20"}},
       MakeLook(GLIMMERBLUR_POLYGON, 7, 7)},
      {"alpha kept",
       {{"radius", "6"}, {"blur-alpha", "false"}},
       MakeLook(GLIMMERBLUR_CIRCLE, 6, 6)},
      {"alpha emphasised",
       {{"radius", "6"}, {"emphasis", "8"}, {"emphasis-alpha", "true"}},
       MakeLook(GLIMMERBLUR_CIRCLE, 6, 6)},
      {"black around", {{"radius", "6"}, {"edge", "zero"}}, MakeLook(GLIMMERBLUR_CIRCLE, 6, 6)},
      {"wide pixels", {{"radius", "6"}, {"pixel-aspect", "2"}}, MakeLook(GLIMMERBLUR_CIRCLE, 6, 6)},
      {"beside its pixel",
       {{"radius", "6"}, {"centred", "false"}},
       MakeLook(GLIMMERBLUR_CIRCLE, 6, 6)},
  };
  cases[2].look.rotation = 30;
  cases[3].look.sides = 5;
  cases[3].look.emphasis = 20;
  cases[4].look.blur_alpha = 0;
  cases[5].look.emphasis = 8;
  cases[5].look.emphasis_alpha = 1;
  cases[6].look.edge = GLIMMERBLUR_ZERO;
  cases[7].look.pixel_aspect = 2;
  cases[8].look.centred = 0;
  return cases;
}

TEST(GeglDefocus, ShowsTheLibrarysFrame) {
  const Pixels noise = MakeNoise(kBounds);
  for (const LookCase& expected : LookCases()) {
    Graph graph;
    GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(noise), expected.properties);

    const Pixels shown = ShowAll(defocus);

    EXPECT_EQ(Distance(shown, RenderByLibrary(noise, expected.look)), 0.0) << expected.name;
    EXPECT_GT(Distance(shown, noise), 0.1) << expected.name;
  }
}

TEST(GeglDefocus, ShowsTheSameWhereverThePictureStands) {
  Pixels noise = MakeNoise(kBounds);
  const Pixels expected = RenderByLibrary(noise, MakeLook(GLIMMERBLUR_CIRCLE, 10, 10));
  noise.bounds = {-31, 1007, kBounds.width, kBounds.height};
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(noise));

  const GeglRectangle bounds = gegl_node_get_bounding_box(defocus);

  EXPECT_TRUE(gegl_rectangle_equal(&bounds, &noise.bounds));
  EXPECT_EQ(Distance(ShowAll(defocus), expected), 0.0);
}

TEST(GeglDefocus, ShowsOfAPartWhatTheWholeHasThere) {
  const Pixels noise = MakeNoise(kBounds);
  const Pixels whole = RenderByLibrary(noise, MakeLook(GLIMMERBLUR_CIRCLE, 10, 10));
  const GeglRectangle part = {20, 11, 9, 7};
  Pixels expected = {part, {}};
  for (int y = part.y; y < part.y + part.height; ++y) {
    const auto first = whole.samples.begin() + (y * kBounds.width + part.x) * 4;
    expected.samples.insert(expected.samples.end(), first, first + part.width * 4);
  }
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(noise));

  EXPECT_EQ(Distance(Show(defocus, part), expected), 0.0);
}

TEST(GeglDefocus, RendersOnceForAProgramThatAsksByPieces) {
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(MakeNoise({0, 0, 600, 500})));

  const std::vector<double> noted = NoteProgress(defocus, [&] {
    for (int y = 0; y < 500; y += 100) {
      Show(defocus, {0, y, 600, 100});
    }
  });

  ASSERT_FALSE(noted.empty());
  EXPECT_TRUE(std::is_sorted(noted.begin(), noted.end()));
}

TEST(GeglDefocus, TellsItsProgress) {
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(MakeNoise({0, 0, 600, 500})));

  const std::vector<double> noted = NoteProgress(defocus, [&] { ShowAll(defocus); });

  ASSERT_GT(noted.size(), 2U);
  EXPECT_GE(noted.front(), 0.0);
  EXPECT_LT(noted.front(), 1.0);
  EXPECT_EQ(noted.back(), 1.0);
}

TEST(GeglDefocus, RendersAnewWhereAnythingChanges) {
  const Pixels noise = MakeNoise(kBounds);
  Graph graph;
  GeglNode* source = graph.AddSource(noise);
  GeglNode* defocus = graph.AddOperation(kName, source);
  ShowAll(defocus);

  SetProperty(defocus, "radius", "3");

  const Pixels expected = RenderByLibrary(noise, MakeLook(GLIMMERBLUR_CIRCLE, 3, 3));
  EXPECT_EQ(Distance(ShowAll(defocus), expected), 0.0);

  // A single point far from where it is looked at: all of the input matters to each pixel.
  GeglBuffer* buffer = nullptr;
  gegl_node_get(source, "buffer", &buffer, nullptr);
  const GeglRectangle point = {5, 5, 1, 1};
  const float light[] = {900, 900, 900, 1};
  gegl_buffer_set(buffer, &point, 0, babl_format("RaGaBaA float"), light, GEGL_AUTO_ROWSTRIDE);
  g_object_unref(buffer);

  Pixels changed = noise;
  std::copy(light, light + 4, changed.samples.begin() + (5 * kBounds.width + 5) * 4);
  EXPECT_EQ(
      Distance(ShowAll(defocus), RenderByLibrary(changed, MakeLook(GLIMMERBLUR_CIRCLE, 3, 3))),
      0.0);
}

TEST(GeglDefocus, IsStaleAsAWholeWhereAnyPixelOfItsInputIs) {
  Graph graph;
  GeglNode* source = graph.AddSource(MakeNoise(kBounds));
  GeglNode* defocus = graph.AddOperation(kName, source);
  ShowAll(defocus);
  GeglRectangle stale = {0, 0, 0, 0};
  const auto note = +[](GeglNode* /*node*/, GeglRectangle* region, gpointer user) {
    gegl_rectangle_bounding_box(static_cast<GeglRectangle*>(user),
                                static_cast<GeglRectangle*>(user), region);
  };
  g_signal_connect(defocus, "invalidated", G_CALLBACK(note), &stale);

  GeglBuffer* buffer = nullptr;
  gegl_node_get(source, "buffer", &buffer, nullptr);
  const GeglRectangle point = {5, 5, 1, 1};
  const float light[] = {900, 900, 900, 1};
  gegl_buffer_set(buffer, &point, 0, babl_format("RaGaBaA float"), light, GEGL_AUTO_ROWSTRIDE);
  g_object_unref(buffer);

  EXPECT_TRUE(gegl_rectangle_equal(&stale, &kBounds));
}

TEST(GeglDefocus, GivesItsMemoryBackWithItsNode) {
  if (kSanitized) {
    GTEST_SKIP() << "a sanitizer keeps account of memory itself";
  }
  const auto render = [](int times) {
    for (int i = 0; i < times; ++i) {
      Graph graph;
      ShowAll(graph.AddOperation(kName, graph.AddSource(MakeNoise({0, 0, 500, 400}))));
    }
    const struct mallinfo2 held = mallinfo2();
    return static_cast<double>(held.uordblks) + static_cast<double>(held.hblkhd);
  };
  // What GEGL keeps for the next one is kept by then.
  const double before = render(3);

  const double after = render(10);

  // Each holds some megabytes.
  EXPECT_LT(after - before, 4e6);
}

TEST(GeglDefocus, SpreadsAPointIntoThePictureOnTheAuxPad) {
  Pixels point = {{0, 0, 21, 17}, std::vector<float>(21 * 17 * 4, 0.0F)};
  point.samples[(8 * 21 + 10) * 4] = 1000.0F;
  const GeglRectangle size = {40, 30, 4, 3};
  // Red counts, as much as the pixel covers.
  const std::vector<guchar> aperture = {
      200, 9, 9, 255, 0, 9, 9, 255, 50,  9, 9, 255, 255, 9, 9, 0,    //
      0,   9, 9, 255, 0, 9, 9, 255, 150, 9, 9, 255, 0,   9, 9, 255,  //
      0,   9, 9, 255, 0, 9, 9, 255, 0,   9, 9, 255, 100, 9, 9, 255};
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(point), {{"shape", "picture"}});
  gegl_node_connect_to(graph.AddSource8(size, aperture), "output", defocus, "aux");

  const Pixels shown = ShowAll(defocus);

  // Its middle, the pixel (2, 1), on the point.
  for (int y = 0; y < 17; ++y) {
    for (int x = 0; x < 21; ++x) {
      const int i = x - 8;
      const int j = y - 7;
      const bool inside = i >= 0 && i < 4 && j >= 0 && j < 3;
      const bool isSeen = inside && !(i == 3 && j == 0);
      const double weight = isSeen ? aperture[(j * 4 + i) * 4] : 0;
      EXPECT_NEAR(shown.samples[(y * 21 + x) * 4], 1000.0 * weight / 500.0, 0.001)
          << x << ", " << y;
    }
  }
}

TEST(GeglDefocus, WarnsAndShowsTheInputWithoutThePictureThatIsTheAperture) {
  const Pixels noise = MakeNoise(kBounds);
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(noise), {{"shape", "picture"}});
  const CaughtWarnings warnings;

  EXPECT_EQ(Distance(ShowAll(defocus), noise), 0.0);

  ASSERT_EQ(warnings.Texts().size(), 1U);
  EXPECT_EQ(warnings.Texts()[0],
            "glimmerblur:defocus: the shape is a picture, and none is on the pad aux");
}

TEST(GeglDefocus, WarnsInTheLibrarysWordsAndShowsTheInputWhereARenderFails) {
  const Pixels noise = MakeNoise(kBounds);
  glimmerblur* object = nullptr;
  ASSERT_EQ(glimmerblur_create(nullptr, &object), GLIMMERBLUR_OK);
  const glimmerblur_look look = MakeLook(GLIMMERBLUR_ELLIPSE, 1000, 100000);
  ASSERT_NE(glimmerblur_set_look(object, &look), GLIMMERBLUR_OK);
  const std::string sentence = glimmerblur_message(object);
  glimmerblur_destroy(object);
  Graph graph;
  GeglNode* defocus =
      graph.AddOperation(kName, graph.AddSource(noise),
                         {{"shape", "ellipse"}, {"radius", "1000"}, {"aspect-ratio", "0.01"}});
  const CaughtWarnings warnings;

  EXPECT_EQ(Distance(ShowAll(defocus), noise), 0.0);

  ASSERT_EQ(warnings.Texts().size(), 1U);
  EXPECT_EQ(warnings.Texts()[0], "glimmerblur:defocus: " + sentence);
}

TEST(GeglDefocus, AsksForNoApertureThatItDoesNotUse) {
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(MakeNoise(kBounds)));
  GeglNode* aperture = graph.AddOperation(kName, graph.AddSource(MakeNoise({0, 0, 600, 500})));
  gegl_node_connect_to(aperture, "output", defocus, "aux");
  const auto show = [&] { return NoteProgress(aperture, [&] { ShowAll(defocus); }); };

  EXPECT_TRUE(show().empty());

  SetProperty(defocus, "shape", "picture");
  EXPECT_FALSE(show().empty());
}

TEST(GeglDefocus, LetsAPlaneWithoutEdgesThrough) {
  Graph graph;
  GeglNode* plane = graph.AddOperation("gegl:color", nullptr);
  GeglColor* green = gegl_color_new("rgb(0.0, 1.0, 0.0)");
  gegl_node_set(plane, "value", green, nullptr);
  g_object_unref(green);
  GeglNode* defocus = graph.AddOperation(kName, plane);
  const CaughtWarnings warnings;

  const GeglRectangle bounds = gegl_node_get_bounding_box(defocus);
  const Pixels shown = Show(defocus, {-5, 3, 4, 2});

  EXPECT_TRUE(gegl_rectangle_is_infinite_plane(&bounds));
  for (std::size_t i = 0; i < shown.samples.size(); ++i) {
    EXPECT_EQ(shown.samples[i], i % 4 == 1 || i % 4 == 3 ? 1.0F : 0.0F) << i;
  }
  EXPECT_TRUE(warnings.Texts().empty());
}

TEST(GeglDefocus, WarnsOfAnApertureWithoutEdges) {
  const Pixels noise = MakeNoise(kBounds);
  Graph graph;
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(noise), {{"shape", "picture"}});
  gegl_node_connect_to(graph.AddOperation("gegl:color", nullptr), "output", defocus, "aux");
  const CaughtWarnings warnings;

  EXPECT_EQ(Distance(ShowAll(defocus), noise), 0.0);

  ASSERT_EQ(warnings.Texts().size(), 1U);
  EXPECT_EQ(warnings.Texts()[0], "glimmerblur:defocus: the picture on the pad aux has no edges");
}

TEST(GeglDefocus, IsAsEmptyAsItsInput) {
  Graph graph;
  GeglNode* alone = graph.AddOperation(kName, nullptr);
  GeglNode* empty = graph.AddOperation(kName, graph.AddSource({{0, 0, 0, 0}, {}}));
  const CaughtWarnings warnings;

  for (GeglNode* defocus : {alone, empty}) {
    const GeglRectangle bounds = gegl_node_get_bounding_box(defocus);
    EXPECT_TRUE(gegl_rectangle_is_empty(&bounds));
    const Pixels shown = Show(defocus, {0, 0, 3, 2});
    EXPECT_EQ(shown.samples, std::vector<float>(3 * 2 * 4, 0.0F));
  }
  EXPECT_TRUE(warnings.Texts().empty());
}

TEST(GeglDefocus, HasRadiiToTheScaleThatAPictureIsShownAt) {
  Graph graph;
  Pixels points = {{0, 0, 256, 256}, std::vector<float>(256 * 256 * 4, 0.0F)};
  // A bright square of four by four, which is one pixel at a quarter of the size.
  for (int i = 0; i < 16; ++i) {
    float* pixel = &points.samples[((128 + i / 4) * 256 + 128 + i % 4) * 4];
    pixel[0] = pixel[1] = pixel[2] = 1000.0F;
  }
  GeglNode* defocus = graph.AddOperation(kName, graph.AddSource(points), {{"radius", "40"}});
  g_object_set(gegl_config(), "mipmap-rendering", TRUE, nullptr);

  const Pixels small = Show(defocus, {0, 0, 64, 64}, 0.25);

  g_object_set(gegl_config(), "mipmap-rendering", FALSE, nullptr);
  // A disc of radius 10 about (32, 32).
  const auto light = [&](int x, int y) { return small.samples[(y * 64 + x) * 4]; };
  const double expected = 1000.0 / (3.14159 * 100.0);
  EXPECT_NEAR(light(32, 32), expected, 0.1);
  EXPECT_NEAR(light(41, 32), expected, 0.1);
  EXPECT_NEAR(light(32, 23), expected, 0.1);
  EXPECT_NEAR(light(44, 32), 0.0, 0.001);
  EXPECT_NEAR(light(32, 20), 0.0, 0.001);
}

TEST(GeglDefocus, RendersOnSeveralThreadsAtOnce) {
  const Pixels noise = MakeNoise(kBounds);
  const Pixels expected = RenderByLibrary(noise, MakeLook(GLIMMERBLUR_CIRCLE, 10, 10));
  StartGegl();
  double distances[4] = {};
  std::vector<std::thread> threads;

  for (double& distance : distances) {
    threads.emplace_back([&] {
      Graph graph;
      distance = Distance(ShowAll(graph.AddOperation(kName, graph.AddSource(noise))), expected);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  for (const double distance : distances) {
    EXPECT_EQ(distance, 0.0);
  }
}

TEST(GeglDefocus, HasWhatGimpListsAnOperationBy) {
  StartGegl();
  EXPECT_STREQ(gegl_operation_get_key(kName, "title"), "Lens Defocus");
  EXPECT_STREQ(gegl_operation_get_key(kName, "categories"), "blur");
  EXPECT_NE(gegl_operation_get_key(kName, "description"), nullptr);
}

TEST(GeglDefocus, TellsOfEachPropertyWhatItIsAndItsRange) {
  StartGegl();
  guint count = 0;
  GParamSpec** properties = gegl_operation_list_properties(kName, &count);

  EXPECT_EQ(count, 11U);
  for (guint i = 0; i < count; ++i) {
    const std::string name = g_param_spec_get_name(properties[i]);
    EXPECT_GT(std::string(g_param_spec_get_blurb(properties[i])).size(), 15U) << name;
    EXPECT_NE(g_param_spec_get_nick(properties[i]), name) << name;
    if (GEGL_IS_PARAM_SPEC_DOUBLE(properties[i])) {
      const auto* real = GEGL_PARAM_SPEC_DOUBLE(properties[i]);
      const auto& range = *G_PARAM_SPEC_DOUBLE(properties[i]);
      EXPECT_LE(range.minimum, real->ui_minimum) << name;
      EXPECT_LT(real->ui_minimum, real->ui_maximum) << name;
      EXPECT_LE(real->ui_maximum, range.maximum) << name;
    }
  }
  g_free(properties);
}

// Whether the library takes a look in which one member is another.
bool Takes(double glimmerblur_look::*member, double value) {
  glimmerblur* object = nullptr;
  glimmerblur_create(nullptr, &object);
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.*member = value;
  const bool takes = glimmerblur_set_look(object, &look) == GLIMMERBLUR_OK;
  glimmerblur_destroy(object);
  return takes;
}

TEST(GeglDefocus, HasTheRangesThatTheLibraryHas) {
  StartGegl();
  const std::pair<const char*, double glimmerblur_look::*> members[] = {
      {"radius", &glimmerblur_look::radius_x},
      {"rotation", &glimmerblur_look::rotation},
      {"emphasis", &glimmerblur_look::emphasis},
      {"pixel-aspect", &glimmerblur_look::pixel_aspect}};
  guint count = 0;
  GParamSpec** properties = gegl_operation_list_properties(kName, &count);

  for (const auto& [name, member] : members) {
    GParamSpec* const* found = std::find_if(properties, properties + count, [&](GParamSpec* spec) {
      return std::string(g_param_spec_get_name(spec)) == name;
    });
    const auto& range = *G_PARAM_SPEC_DOUBLE(*found);
    EXPECT_TRUE(Takes(member, range.minimum)) << name;
    EXPECT_TRUE(Takes(member, range.maximum)) << name;
    EXPECT_FALSE(Takes(member, range.minimum - 0.001)) << name;
    EXPECT_FALSE(Takes(member, range.maximum + 0.001)) << name;
  }
  g_free(properties);
}

TEST(GeglDefocus, TellsUnits) {
  StartGegl();
  EXPECT_STREQ(gegl_operation_get_property_key(kName, "radius", "unit"), "pixel-distance");
  EXPECT_STREQ(gegl_operation_get_property_key(kName, "rotation", "unit"), "degree");
  EXPECT_STREQ(gegl_operation_get_property_key(kName, "rotation", "direction"), "ccw");
}

}  // namespace
}  // namespace lx_test
