# SPDX-License-Identifier: BSD-3-Clause
# Libraries of headers alone, for the program: CLI11, JSON, toml++ and xxHash. The machine's own serve every
# target, but a target of another system may see nothing else of the folder that they lie in.
add_library(header_libraries INTERFACE)
set(folder ${PROJECT_BINARY_DIR}/header_libraries)
foreach(library CLI/CLI.hpp nlohmann/json.hpp toml++/toml.h xxhash.h)
  string(MAKE_C_IDENTIFIER ${library} variable)
  find_path(${variable}_FOLDER ${library} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  # The folder that it has of its own, if it has one.
  string(REGEX REPLACE "/.*" "" name ${library})
  file(MAKE_DIRECTORY ${folder})
  file(CREATE_LINK ${${variable}_FOLDER}/${name} ${folder}/${name} SYMBOLIC)
endforeach()
target_include_directories(header_libraries SYSTEM INTERFACE ${folder})
