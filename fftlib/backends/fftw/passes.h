// The row passes of the FFTW back-end. Parameters are the engine's pass fields; each
// pass clears status first and writes only its own rows.
#pragma once

#include <cstdint>

namespace lx {

class DefocusEngine;

// A PSF mask into the frame's rectangle of passTarget, and nothing else of it.
void PsfInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// One plane (passChannelBit: luma, Cr, Cb, alpha) of source rows into grid rows,
// margins included. What workSpatial holds of the plane before goes to passKept first.
void PlaneInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// The frame's rectangle of workSpatial, of which the output pass reads nothing else, into
// passKept. A pass does it, row by row before a row is overwritten, because every way can
// then take part; nothing where passKept is null.
void KeepRows(const DefocusEngine& engine, std::int32_t first, std::int32_t last);

// psfSpectrum times workSpectrum into workSpectrum, row by row. It has no cancel poll.
void MultiplyPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// The three result planes, and workSpatial as alpha, into rows of passDest.
void PictureOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// One stored channel of source rows into grid rows.
void ChannelInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// workSpatial into one stored channel of passDest.
void ChannelOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

}  // namespace lx
