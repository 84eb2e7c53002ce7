/* SPDX-License-Identifier: BSD-3-Clause
 * libglimmerblur: lens defocus for other programs, from C.
 *
 *   make an object     glimmerblur_create, glimmerblur_destroy
 *   say what to do     glimmerblur_set_look, glimmerblur_set_aperture, glimmerblur_set_progress
 *   do it              glimmerblur_region_needed, glimmerblur_render, glimmerblur_get_report
 *   read what failed   glimmerblur_message, glimmerblur_status_text
 *
 * A frame is convolved with the shape of an aperture, with an emphasis curve before and its exact
 * inverse after it, so that bright points open into bright images of the aperture. Samples may be
 * of 8 or 16 bits or floats. Floats stay floats: values above 1 and below 0 go through, but for a
 * luma below 0 under an emphasis, which counts as 0.
 *
 * An object serves one thread at a time; several objects may work at once. Its threads belong to
 * it and are gone when glimmerblur_destroy returns: without objects the library may be unloaded.
 *
 * Nothing is thrown. A function that can fail answers with a status, and leaves a sentence about
 * the failure in the object. Records begin with their size and version, so that later libraries
 * know what a caller has: let the _init functions fill them, then change members.
 */
#ifndef GLIMMERBLUR_H
#define GLIMMERBLUR_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && defined(GLIMMERBLUR_BUILDS)
#define GLIMMERBLUR_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(GLIMMERBLUR_STATIC)
#define GLIMMERBLUR_API __declspec(dllimport)
#elif defined(__GNUC__) && defined(GLIMMERBLUR_BUILDS)
#define GLIMMERBLUR_API __attribute__((visibility("default")))
#else
#define GLIMMERBLUR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of the interface; glimmerblur_version() tells the library's own. */
#define GLIMMERBLUR_ABI 1

typedef struct glimmerblur glimmerblur;

typedef enum glimmerblur_status {
  GLIMMERBLUR_OK = 0,
  GLIMMERBLUR_INVALID_ARGUMENT = 1, /* a null pointer, a record of unknown size or version */
  GLIMMERBLUR_INVALID_LOOK = 2,     /* a member outside its range */
  GLIMMERBLUR_INVALID_FRAME = 3,    /* sizes, layout, or frames that don't go together */
  GLIMMERBLUR_NO_LOOK = 4,          /* render before glimmerblur_set_look */
  GLIMMERBLUR_NO_APERTURE = 5,      /* shape is a picture, and none was given */
  GLIMMERBLUR_TOO_LARGE = 6,        /* frame and aperture need a longer transform than there is */
  GLIMMERBLUR_NO_MEMORY = 7,        /* memory has run out, or the limit is too low */
  GLIMMERBLUR_CANCELLED = 8,        /* the progress function wished it */
  GLIMMERBLUR_NOT_BUILT = 9,        /* an engine that this library was built without */
  GLIMMERBLUR_FAILED = 10           /* anything else */
} glimmerblur_status;

/* One line of plain English, for any number. Never null. */
GLIMMERBLUR_API const char* glimmerblur_status_text(int32_t status);

/* Such as "5.13". */
GLIMMERBLUR_API const char* glimmerblur_version(void);

/* ---- objects ---- */

typedef enum glimmerblur_engine {
  GLIMMERBLUR_FAST = 0, /* transforms of its own */
  GLIMMERBLUR_EXACT = 1 /* by FFTW, on 16-bit samples; only where the library was built with it */
} glimmerblur_engine;

/* Calls work(data, i) once for every i from 0 to count - 1, on any threads, and returns when all
 * calls have. */
typedef void (*glimmerblur_work)(void* data, int32_t i);
typedef void (*glimmerblur_parallel_for)(void* user, int32_t count, glimmerblur_work work,
                                         void* data);

typedef struct glimmerblur_options {
  uint32_t size;
  uint32_t version;
  int32_t engine;        /* glimmerblur_engine */
  int32_t threads;       /* 1 to 64, the caller's among them; 0: one a processor */
  uint64_t memory_limit; /* bytes that a render may hold, frames not counted; 0: no limit */
  glimmerblur_parallel_for parallel_for; /* the caller's own threads; null: the object's */
  void* parallel_user;
} glimmerblur_options;

GLIMMERBLUR_API void glimmerblur_options_init(glimmerblur_options* options);

/* Makes an object.
 *   options  null for the defaults
 *   made     receives it, null on failure; glimmerblur_destroy gives it back */
GLIMMERBLUR_API glimmerblur_status glimmerblur_create(const glimmerblur_options* options,
                                                      glimmerblur** made);

/* Ends its threads and frees it. Null is allowed. */
GLIMMERBLUR_API void glimmerblur_destroy(glimmerblur* object);

/* What the last function on this object failed of, in one sentence; empty after success. Valid
 * until the next call on the object. glimmerblur_get_report leaves it as it is. */
GLIMMERBLUR_API const char* glimmerblur_message(const glimmerblur* object);

/* ---- the look ---- */

typedef enum glimmerblur_shape {
  GLIMMERBLUR_CIRCLE = 0,
  GLIMMERBLUR_ELLIPSE = 1,
  GLIMMERBLUR_POLYGON = 2,
  GLIMMERBLUR_PICTURE = 3 /* see glimmerblur_set_aperture */
} glimmerblur_shape;

/* What lies around a picture. */
typedef enum glimmerblur_edge {
  GLIMMERBLUR_REPEAT = 0, /* its edge goes on for ever */
  GLIMMERBLUR_ZERO = 1    /* black, and transparent */
} glimmerblur_edge;

typedef struct glimmerblur_look {
  uint32_t size;
  uint32_t version;
  int32_t shape; /* glimmerblur_shape */
  int32_t sides; /* of a polygon, 3 to 50 */

  /* In pixels, 0 to 8000. A circle has the first alone; an ellipse and a polygon have both. A
   * picture has its own size. Up to half a pixel a centred aperture leaves frames as they are. */
  double radius_x;
  double radius_y;

  double rotation;     /* degrees, anticlockwise as one sees it; of ellipse and polygon */
  double pixel_aspect; /* of the frame: a pixel's width over its height, 0.01 to 100 */
  double emphasis;     /* 0 to 500; up to 1 there is none */

  int32_t blur_alpha;     /* 0: alpha stays as it is */
  int32_t emphasis_alpha; /* whether alpha is emphasised too, once it is blurred */
  int32_t edge;           /* glimmerblur_edge */

  /* Whether a drawn aperture stands exactly on its pixel. With 0 it stands where the host module
   * has it, half a pixel off (a whole one along odd sides), is at least a pixel in radius, and is
   * cut at the size of the whole picture. */
  int32_t centred;
} glimmerblur_look;

/* A circle of radius 10, square pixels, no emphasis, alpha blurred, edge repeated, centred. */
GLIMMERBLUR_API void glimmerblur_look_init(glimmerblur_look* look);

/* Takes a copy of the look. On failure the object keeps the one it had. */
GLIMMERBLUR_API glimmerblur_status glimmerblur_set_look(glimmerblur* object,
                                                        const glimmerblur_look* look);

/* ---- frames ---- */

typedef enum glimmerblur_sample {
  GLIMMERBLUR_U8 = 0,   /* 0 to 255 */
  GLIMMERBLUR_U16 = 1,  /* 0 to 65535 */
  GLIMMERBLUR_FLOAT = 2 /* 32 bits; what is not finite counts as 0, and is counted */
} glimmerblur_sample;

typedef enum glimmerblur_layout {
  GLIMMERBLUR_RGBA = 0,  /* red, green, blue and, with four channels, alpha */
  GLIMMERBLUR_PLANES = 1 /* any number of channels, each for itself and as a luma of its own */
} glimmerblur_layout;

/* What alpha is to the colours. */
typedef enum glimmerblur_alpha {
  GLIMMERBLUR_PREMULTIPLIED = 0, /* they are multiplied by it, or have nothing to do with it */
  GLIMMERBLUR_STRAIGHT = 1 /* they are not: they are multiplied for the blur, and divided after */
} glimmerblur_alpha;

typedef enum glimmerblur_first_row {
  GLIMMERBLUR_TOP = 0,
  GLIMMERBLUR_BOTTOM = 1
} glimmerblur_first_row;

/* Pixels from (x, y) on to the right, and on with the rows. Row 0 of a whole picture is its top row
 * where the first row is the top one, else its bottom row. */
typedef struct glimmerblur_rect {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
} glimmerblur_rect;

/* Samples that the caller owns. Strides are in bytes and may be negative; a stride of 0 stands for
 * that of samples without gaps: channel beside channel, pixel after pixel, row after row. */
typedef struct glimmerblur_frame {
  uint32_t size;
  uint32_t version;
  glimmerblur_rect rect; /* which pixels of the whole picture these are */
  int32_t sample;        /* glimmerblur_sample */
  int32_t layout;        /* glimmerblur_layout */
  int32_t channels;      /* RGBA: 3 or 4; planes: 1 or more */
  int32_t alpha;         /* glimmerblur_alpha */
  int32_t first_row;     /* glimmerblur_first_row: which row of the picture stands first */
  int32_t reserved;      /* 0 */
  void* data;            /* the first channel of the first pixel */
  int64_t row_stride;
  int64_t pixel_stride;
  int64_t channel_stride;
} glimmerblur_frame;

/* Packed RGBA floats, premultiplied, top row first, at (0, 0); without size and data. */
GLIMMERBLUR_API void glimmerblur_frame_init(glimmerblur_frame* frame);

/* Which pixels of a picture are needed for the wanted ones.
 *   whole   the picture
 *   wanted  inside whole
 *   needed  receives a rectangle inside whole */
GLIMMERBLUR_API glimmerblur_status glimmerblur_region_needed(glimmerblur* object,
                                                             const glimmerblur_rect* whole,
                                                             int32_t first_row,
                                                             const glimmerblur_rect* wanted,
                                                             glimmerblur_rect* needed);

/* Takes a picture as the aperture of GLIMMERBLUR_PICTURE: its first channel, as 8 bits. What is cut
 * out is a disc with a soft edge, whose centre becomes the aperture's. A picture that is black
 * counts as a single point. The picture may be freed afterwards.
 *   picture       any layout, up to 16384 pixels a side; null takes the aperture away
 *   centre_x, _y  pixels from the picture's left edge and from its top edge, so that half of width
 *                 and height are its middle; may lie outside
 *   inner, outer  radii in pixels: full weight up to the first, none from the second on. Both
 *                 negative: the whole picture */
GLIMMERBLUR_API glimmerblur_status glimmerblur_set_aperture(glimmerblur* object,
                                                            const glimmerblur_frame* picture,
                                                            double centre_x, double centre_y,
                                                            double inner, double outer);

/* ---- rendering ---- */

/* Asked after every block of rows, on the thread that called glimmerblur_render and on no other.
 *   done  0 to 1, never falling
 * Non-zero cancels: the destination keeps what it held. */
typedef int32_t (*glimmerblur_progress)(void* user, double done);

/* Null: nobody is asked. */
GLIMMERBLUR_API void glimmerblur_set_progress(glimmerblur* object, glimmerblur_progress progress,
                                              void* user);

/* Blurs a frame into another.
 *   source       holds at least what glimmerblur_region_needed names for the destination
 *   destination  as many channels, the same layout, alpha and first row; its own sample type,
 *                strides and rectangle. May be the source's own memory, if the strides are the same
 *   whole        the picture that both are parts of; null: the source's rectangle
 * On failure the destination keeps what it held. */
GLIMMERBLUR_API glimmerblur_status glimmerblur_render(glimmerblur* object,
                                                      const glimmerblur_frame* source,
                                                      const glimmerblur_frame* destination,
                                                      const glimmerblur_rect* whole);

/* Of the last render. */
typedef struct glimmerblur_report {
  uint32_t size;
  uint32_t version;
  uint64_t replaced; /* samples of the source that were not finite and counted as 0 */
  uint64_t bytes;    /* that it held at most, frames not counted */
  int32_t tiles;     /* that the picture was rendered in */
  int32_t reserved;
} glimmerblur_report;

/* The caller sets size and version, or lets glimmerblur_report_init do so. */
GLIMMERBLUR_API void glimmerblur_report_init(glimmerblur_report* report);
GLIMMERBLUR_API glimmerblur_status glimmerblur_get_report(const glimmerblur* object,
                                                          glimmerblur_report* report);

#ifdef __cplusplus
}
#endif

#endif
