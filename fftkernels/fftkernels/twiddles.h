// SPDX-License-Identifier: BSD-3-Clause
// The turns between the levels of a transform.
#pragma once

namespace lx {

// Fills a table for the passes over a block: w^(m j), w = exp(2 pi i / block), for m of 1 to
// largest and j below count. The lanes of one m are together, cosines before sines, then comes
// the next m, then the next j.
//
//   j of 0 .. lanes-1:  cos m=1 | sin m=1 | cos m=2 | sin m=2 | ...
//   j of lanes .. :     ...
//
//   count  a multiple of lanes
//   table  2 * count * largest numbers
// Values are right to the last bit but one.
void FillTwiddles(int block, int largest, int count, int lanes, float* table);
void FillTwiddles(int block, int largest, int count, int lanes, double* table);

}  // namespace lx
