# Compiler settings shared by every target of the project.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# Loadable parts find each other in one folder of the build tree, as they do once installed.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# What is installed finds its libraries from its own place, so that an installed tree can be moved.
set(CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME libcvars)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

# What every target compiles with: numbers behave the same on every build, and the libraries call
# themselves directly.
add_library(cvars_build_options INTERFACE)
target_compile_options(cvars_build_options INTERFACE
  -ffp-contract=off -fno-semantic-interposition)
if(CVARS_SANITIZE)
  target_compile_options(cvars_build_options INTERFACE
    -fsanitize=${CVARS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(cvars_build_options INTERFACE -fsanitize=${CVARS_SANITIZE})
  if(CVARS_SANITIZE STREQUAL "thread")
    # ThreadSanitizer does not understand fences. Asio's come on top of its locks, which it does.
    target_compile_definitions(cvars_build_options INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()

add_library(cvars_warnings INTERFACE)
target_compile_options(cvars_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Off: a member of the template base overrides an operation of some interfaces and stands beside the
  # one of others, so it can neither say "override" nor avoid the name.
  target_compile_options(cvars_warnings INTERFACE
    -Wthread-safety)
elseif(CVARS_SANITIZE)
  # Off: with the sanitizers' code in between, g++ takes members of the standard library for unset.
  target_compile_options(cvars_warnings INTERFACE -Wno-maybe-uninitialized)
endif()
if(CVARS_WARNINGS_AS_ERRORS)
  target_compile_options(cvars_warnings INTERFACE -Werror)
endif()
add_library(cvars::warnings ALIAS cvars_warnings)
add_library(cvars::build_options ALIAS cvars_build_options)
