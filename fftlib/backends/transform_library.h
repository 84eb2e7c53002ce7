// SPDX-License-Identifier: BSD-3-Clause
// The library that a back-end may transform by, as far as an engine's owner can tell.
#pragma once

namespace lx {

class TransformLibrary {
 public:
  virtual ~TransformLibrary() = default;

  // False where its threads did not start; it works without them then.
  virtual bool HasThreads() const = 0;

  // Reads or writes what measuring plans has taught the library: one file for all engines. Under
  // the planner's lock.
  virtual bool ImportWisdom() = 0;
  virtual bool ExportWisdom() = 0;
};

}  // namespace lx
