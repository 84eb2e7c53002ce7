# SPDX-License-Identifier: BSD-3-Clause
# Installs the package from the tree by pip, offline, into an environment that sees the system's NumPy.
#
#   cmake -D PYTHON=PROGRAM -D SOURCE=FOLDER -D BUILD=FOLDER -D LAUNCHER=PROGRAM -P installation_test.cmake
#
#   BUILD     is made anew
#   LAUNCHER  of compilers; a cache finds what the release build has compiled. Without one the library
#             is compiled whole
cmake_minimum_required(VERSION 3.25)

# run(OUTPUT COMMAND...): what it says. Its failure is the test's.
function(run output)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE result
                  WORKING_DIRECTORY /)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}: ${result}\n${said}")
  endif()
  set(${output} "${said}" PARENT_SCOPE)
endfunction()

if(LAUNCHER)
  set(ENV{CMAKE_C_COMPILER_LAUNCHER} ${LAUNCHER})
  set(ENV{CMAKE_CXX_COMPILER_LAUNCHER} ${LAUNCHER})
  set(ENV{CCACHE_BASEDIR} ${SOURCE})
  set(ENV{CCACHE_NOHASHDIR} 1)
  set(ENV{CCACHE_SLOPPINESS} pch_defines,time_macros)
endif()
# As deep in the tree as the release build is.
cmake_path(GET BUILD PARENT_PATH folder)
set(ENV{TMPDIR} ${folder})
# Nothing but the environment says where things are.
unset(ENV{PYTHONPATH})
unset(ENV{LD_LIBRARY_PATH})

file(REMOVE_RECURSE ${BUILD})
file(GLOB_RECURSE before ${SOURCE}/doors/python/*)
run(said ${PYTHON} -m venv --system-site-packages ${BUILD})
run(said ${BUILD}/bin/pip install --no-index --no-build-isolation ${SOURCE}/doors/python)
file(GLOB_RECURSE after ${SOURCE}/doors/python/*)
if(NOT after STREQUAL before)
  message(SEND_ERROR "The installation changed the tree: ${after}")
endif()

run(said ${BUILD}/bin/python -c "
import importlib.metadata, pathlib, sys
import glimmerblur, numpy

home = pathlib.Path(glimmerblur.__file__).parent
assert home.is_relative_to(sys.prefix), home
assert (home / 'py.typed').exists()
library = str(home / 'libglimmerblur.so.0')
assert library in pathlib.Path('/proc/self/maps').read_text(), library
assert importlib.metadata.version('glimmerblur') == glimmerblur.__version__

picture = numpy.zeros((40, 40), 'f4')
picture[20, 20] = 1000.0
assert abs(glimmerblur.defocus(picture).sum() - 1000.0) < 0.01
")

# Nothing is left of what was built on the way.
file(GLOB rests ${folder}/glimmerblur-*)
if(rests)
  message(SEND_ERROR "Left behind: ${rests}")
endif()
