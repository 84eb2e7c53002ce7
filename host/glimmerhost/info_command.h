// glimmerhost info: what the module registered, and the parameters of its page.
#pragma once

#include <iosfwd>
#include <string>

namespace glimmerhost {

//   module  a module file, or empty for the one beside the program
// Throws Failure.
void RunInfo(const std::string& module, std::ostream& out);

}  // namespace glimmerhost
