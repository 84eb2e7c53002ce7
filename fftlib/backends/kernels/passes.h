// The passes of the kernel modes. Parameters are the engine's pass fields; each pass clears
// status first and writes only its own rows or columns of the grid in passTarget, which holds
// ComplexSample<T>, T being float or double.
#pragma once

#include <cstdint>

namespace lx {

class DefocusEngine;

// A mask's first channel into the frame's rectangle, and nothing else of the grid.
template <class T>
void KernelPsfInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// One plane of source rows, with what the edge mode adds to them.
template <class T>
void KernelPlaneInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// One stored channel of source rows, as raw numbers.
template <class T>
void KernelChannelInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// The frame's rectangle into passKept, as KeepRows does.
template <class T>
void KeepKernelRows(const DefocusEngine& engine, std::int32_t first, std::int32_t last);

// Rows or columns of the grid, each transformed in place. A length that no transform has is left
// alone. Column passes need a line of memory and fail with kStatusNoMemory.
template <class T>
void ForwardRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);
template <class T>
void ForwardColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);
template <class T>
void InverseRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);
template <class T>
void InverseColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);
template <class T>
void ScaleRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);
template <class T>
void ScaleColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// Rows of the grid times those of kernelPsf.
template <class T>
void MultiplyRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// The three result planes, and passTarget as alpha, into rows of passDest.
template <class T>
void KernelPictureOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

// passTarget into one stored channel of passDest.
template <class T>
void KernelChannelOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last);

}  // namespace lx
