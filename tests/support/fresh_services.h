// SPDX-License-Identifier: BSD-3-Clause
// The base services as a process finds them at its start: no pool, no cached answers.
#pragma once

namespace lx_test {

// Ends the workers and forgets everything, at both ends of a scope. Wherever a test puts
// a platform in force, this goes around it: threads outlive no table that they use.
class FreshServices {
 public:
  FreshServices();
  ~FreshServices();
  FreshServices(const FreshServices&) = delete;
  FreshServices& operator=(const FreshServices&) = delete;
};

// Ends the workers and forgets everything, now.
void ForgetServices();

}  // namespace lx_test
