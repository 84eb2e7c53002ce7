// SPDX-License-Identifier: BSD-3-Clause
#include "doors/gegl/defocus_operation.h"

#include <algorithm>
#include <cstdint>

#include "doors/gegl/defocus_properties.h"
#include "doors/library/glimmerblur.h"

namespace glimmerblur_gegl {
namespace {

constexpr gsize kPixelBytes = 4 * sizeof(float);

struct DefocusOperation {
  GeglOperationComposer parent;
  DefocusProperties properties;
  GMutex busy;          // of what follows: a node may be asked for its picture by several threads
  glimmerblur* object;  // null before the first frame
  gint threads;         // that it was made for
};

struct DefocusOperationClass {
  GeglOperationComposerClass parent;
};

gpointer gParentClass = nullptr;

DefocusOperation* DefocusOf(void* instance) { return static_cast<DefocusOperation*>(instance); }

// Empty where nothing is on the pad.
GeglRectangle BoundsOfPad(GeglOperation* operation, const char* pad) {
  const GeglRectangle* bounds = gegl_operation_source_get_bounding_box(operation, pad);
  return bounds != nullptr ? *bounds : GeglRectangle{0, 0, 0, 0};
}

bool IsPlane(const GeglRectangle& bounds) { return gegl_rectangle_is_infinite_plane(&bounds); }

// A picture of its own, wherever its bounds are among others.
glimmerblur_frame FrameOf(const GeglRectangle& bounds, void* data) {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {0, 0, bounds.width, bounds.height};
  frame.data = data;
  return frame;
}

// Memory of GLib's, that tells when there is none.
class Samples {
 public:
  explicit Samples(const GeglRectangle& bounds, gsize pixelBytes)
      : data_(g_try_malloc_n(static_cast<gsize>(bounds.width) * bounds.height, pixelBytes)) {}
  ~Samples() { g_free(data_); }
  Samples(const Samples&) = delete;
  Samples& operator=(const Samples&) = delete;

  guchar* Data() const { return static_cast<guchar*>(data_); }

 private:
  gpointer data_;
};

// ---- the library's object ----

struct Round {
  glimmerblur_work work;
  void* data;
  int32_t count;
};

// On GEGL's own threads: so many as its settings allow, and none that nobody else knows of.
void ShareOut(void* /*user*/, int32_t count, glimmerblur_work work, void* data) {
  Round round = {work, data, count};
  gegl_parallel_distribute(
      count,
      [](gint first, gint step, gpointer user) {
        const Round* shared = static_cast<const Round*>(user);
        for (gint i = first; i < shared->count; i += step) {
          shared->work(shared->data, i);
        }
      },
      &round);
}

int32_t TellProgress(void* user, double done) {
  static char text[] = "";
  gegl_operation_progress(static_cast<GeglOperation*>(user), done, text);
  return 0;
}

// Of this function and those below: what failed, null where nothing did.
using Failure = const char*;

// Makes the object, anew where GEGL has another number of threads meanwhile.
Failure MakeObject(DefocusOperation* defocus) {
  gint threads = 1;
  g_object_get(gegl_config(), "threads", &threads, nullptr);
  threads = std::clamp(threads, 1, 64);
  if (defocus->object != nullptr && defocus->threads == threads) {
    return nullptr;
  }
  glimmerblur_destroy(defocus->object);
  glimmerblur_options options;
  glimmerblur_options_init(&options);
  options.threads = threads;
  options.parallel_for = ShareOut;
  const glimmerblur_status status = glimmerblur_create(&options, &defocus->object);
  defocus->threads = threads;
  if (status != GLIMMERBLUR_OK) {
    return glimmerblur_status_text(status);
  }
  glimmerblur_set_progress(defocus->object, TellProgress, defocus);
  return nullptr;
}

// ---- rendering ----

Failure FailureOf(const DefocusOperation* defocus, glimmerblur_status status) {
  return status == GLIMMERBLUR_OK ? nullptr : glimmerblur_message(defocus->object);
}

Failure TakeAperture(DefocusOperation* defocus, GeglBuffer* aux, const GeglRectangle& bounds) {
  if (IsPlane(bounds)) {
    return "the picture on the pad aux has no edges";
  }
  if (aux == nullptr || gegl_rectangle_is_empty(&bounds)) {
    return "the shape is a picture, and none is on the pad aux";
  }
  const Samples samples(bounds, 4);
  if (samples.Data() == nullptr) {
    return glimmerblur_status_text(GLIMMERBLUR_NO_MEMORY);
  }
  gegl_buffer_get(aux, &bounds, 1.0,
                  gegl_operation_get_format(&defocus->parent.parent_instance, "aux"),
                  samples.Data(), GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
  glimmerblur_frame picture = FrameOf(bounds, samples.Data());
  picture.sample = GLIMMERBLUR_U8;
  return FailureOf(defocus, glimmerblur_set_aperture(defocus->object, &picture, bounds.width * 0.5,
                                                     bounds.height * 0.5, -1.0, -1.0));
}

GeglRectangle AtLevel(const GeglRectangle& bounds, gint level) {
  return {bounds.x >> level, bounds.y >> level, bounds.width >> level, bounds.height >> level};
}

Failure Render(DefocusOperation* defocus, GeglBuffer* input, GeglBuffer* aux, GeglBuffer* output,
               gint level) {
  GeglOperation* operation = &defocus->parent.parent_instance;
  if (const Failure failure = MakeObject(defocus)) {
    return failure;
  }
  const double scale = 1.0 / (1 << level);
  const glimmerblur_look look = LookOf(defocus->properties, scale);
  if (const Failure failure = FailureOf(defocus, glimmerblur_set_look(defocus->object, &look))) {
    return failure;
  }
  if (look.shape == GLIMMERBLUR_PICTURE) {
    if (const Failure failure = TakeAperture(defocus, aux, BoundsOfPad(operation, "aux"))) {
      return failure;
    }
  }

  const GeglRectangle whole = AtLevel(BoundsOfPad(operation, "input"), level);
  const Samples samples(whole, kPixelBytes);
  if (samples.Data() == nullptr) {
    return glimmerblur_status_text(GLIMMERBLUR_NO_MEMORY);
  }
  const Babl* format = gegl_operation_get_format(operation, "output");
  gegl_buffer_get(input, &whole, scale, format, samples.Data(), GEGL_AUTO_ROWSTRIDE,
                  GEGL_ABYSS_NONE);
  const glimmerblur_frame frame = FrameOf(whole, samples.Data());
  if (const Failure failure =
          FailureOf(defocus, glimmerblur_render(defocus->object, &frame, &frame, nullptr))) {
    return failure;
  }
  gegl_buffer_set(output, &whole, level, format, samples.Data(), GEGL_AUTO_ROWSTRIDE);
  return nullptr;
}

gboolean ProcessFrame(GeglOperation* operation, GeglBuffer* input, GeglBuffer* aux,
                      GeglBuffer* output, const GeglRectangle* result, gint level) {
  if (input == nullptr) {
    return TRUE;
  }
  DefocusOperation* defocus = DefocusOf(operation);
  g_mutex_lock(&defocus->busy);
  const Failure failure = Render(defocus, input, aux, output, level);
  if (failure != nullptr) {
    g_warning("glimmerblur:defocus: %s", failure);
    gegl_buffer_copy(input, result, GEGL_ABYSS_NONE, output, result);
  }
  g_mutex_unlock(&defocus->busy);
  return TRUE;
}

// A plane without edges has no light that would end anywhere: it goes through as it is.
gboolean Process(GeglOperation* operation, GeglOperationContext* context, const gchar* outputPad,
                 const GeglRectangle* result, gint level) {
  if (IsPlane(BoundsOfPad(operation, "input"))) {
    GObject* input = gegl_operation_context_get_object(context, "input");
    if (input != nullptr) {
      gegl_operation_context_take_object(context, "output", G_OBJECT(g_object_ref(input)));
    }
    return TRUE;
  }
  return GEGL_OPERATION_CLASS(gParentClass)->process(operation, context, outputPad, result, level);
}

// ---- regions ----

// Whatever is asked for, GEGL asks for CachedRegion and keeps it: every frame is a whole one.

void Prepare(GeglOperation* operation) {
  const Babl* space = gegl_operation_get_source_space(operation, "input");
  const Babl* format = babl_format_with_space("RaGaBaA float", space);
  gegl_operation_set_format(operation, "input", format);
  gegl_operation_set_format(operation, "output", format);
  // What is transparent weighs nothing, whatever its colour.
  const Babl* auxSpace = gegl_operation_get_source_space(operation, "aux");
  gegl_operation_set_format(operation, "aux", babl_format_with_space("R'aG'aB'aA u8", auxSpace));
}

GeglRectangle BoundingBox(GeglOperation* operation) { return BoundsOfPad(operation, "input"); }

GeglRectangle RequiredForOutput(GeglOperation* operation, const gchar* pad,
                                const GeglRectangle* region) {
  const GeglRectangle bounds = BoundsOfPad(operation, pad);
  const bool isAux = g_strcmp0(pad, "aux") == 0;
  if (isAux && (DefocusOf(operation)->properties.shape != GLIMMERBLUR_PICTURE || IsPlane(bounds))) {
    return {0, 0, 0, 0};
  }
  return IsPlane(bounds) ? *region : bounds;
}

GeglRectangle CachedRegion(GeglOperation* operation, const GeglRectangle* region) {
  const GeglRectangle bounds = BoundsOfPad(operation, "input");
  return IsPlane(bounds) ? *region : bounds;
}

GeglRectangle InvalidatedByChange(GeglOperation* operation, const gchar* pad,
                                  const GeglRectangle* region) {
  const GeglRectangle bounds = BoundsOfPad(operation, "input");
  return IsPlane(bounds) && g_strcmp0(pad, "aux") != 0 ? *region : bounds;
}

// ---- the class ----

void SetProperty(GObject* object, guint number, const GValue* value, GParamSpec* property) {
  SetDefocusProperty(&DefocusOf(object)->properties, object, number, value, property);
}

void GetProperty(GObject* object, guint number, GValue* value, GParamSpec* property) {
  GetDefocusProperty(DefocusOf(object)->properties, object, number, value, property);
}

void Finalize(GObject* object) {
  glimmerblur_destroy(DefocusOf(object)->object);
  g_mutex_clear(&DefocusOf(object)->busy);
  G_OBJECT_CLASS(gParentClass)->finalize(object);
}

void InitInstance(GTypeInstance* instance, gpointer /*kind*/) {
  g_mutex_init(&DefocusOf(instance)->busy);
}

void InitClass(gpointer kind, gpointer /*data*/) {
  gParentClass = g_type_class_peek_parent(kind);

  GObjectClass* objects = G_OBJECT_CLASS(kind);
  objects->set_property = SetProperty;
  objects->get_property = GetProperty;
  objects->finalize = Finalize;
  InstallDefocusProperties(objects);

  GeglOperationComposerClass* composers = GEGL_OPERATION_COMPOSER_CLASS(kind);
  composers->process = ProcessFrame;
  composers->aux_label = "Aperture";
  composers->aux_description = "The picture that is the aperture, where the shape is one";

  GeglOperationClass* operations = GEGL_OPERATION_CLASS(kind);
  operations->prepare = Prepare;
  operations->process = Process;
  operations->get_bounding_box = BoundingBox;
  operations->get_required_for_output = RequiredForOutput;
  operations->get_cached_region = CachedRegion;
  operations->get_invalidated_by_change = InvalidatedByChange;
  // GEGL would hand out stripes to its threads, each of which needs the whole picture.
  operations->threaded = FALSE;
  operations->opencl_support = FALSE;
  // No key "license": GEGL hides operations of licences that a program does not name.
  gegl_operation_class_set_keys(
      operations, "name", "glimmerblur:defocus", "title", "Lens Defocus", "categories", "blur",
      "description",
      "Blurs as a lens out of focus does: every point of light becomes an image of the aperture",
      nullptr);
}

}  // namespace

void RegisterDefocusOperation(GTypeModule* module) {
  const GTypeInfo info = {
      sizeof(DefocusOperationClass), nullptr, nullptr,      InitClass, nullptr, nullptr,
      sizeof(DefocusOperation),      0,       InitInstance, nullptr};
  gegl_module_register_type(module, GEGL_TYPE_OPERATION_COMPOSER, "GlimmerBlurDefocus", &info,
                            static_cast<GTypeFlags>(0));
}

}  // namespace glimmerblur_gegl
