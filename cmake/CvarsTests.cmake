# cvars_add_test(<name> <sources>... [LABELS <labels>...] [LIBRARIES <targets>...])
#
# One GoogleTest program, linked with the libraries and the test support; every case of it runs as
# a test of its own, in a process and a home folder of its own. The label "concurrent" marks what
# also runs under ThreadSanitizer.
function(cvars_add_test name)
  cmake_parse_arguments(ARG "" "" "LABELS;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE
    cvars_test_main cvars_test_support cvars::cvars ${ARG_LIBRARIES}
    cvars::warnings cvars::build_options)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
  if(CVARS_SANITIZE)
    # The sanitizers' code makes optimising a long test case take many times as long.
    target_compile_options(${name} PRIVATE -O0)
  endif()
  target_compile_definitions(${name} PRIVATE
    CVARS_SOURCE_DIR="${PROJECT_SOURCE_DIR}" CVARS_BINARY_DIR="${CMAKE_BINARY_DIR}")
  if(CVARS_PRECOMPILE_TEST_HEADERS)
    # Quicker from scratch, but a change of one header compiles every test again. The first test
    # precompiles for all of them.
    get_property(first GLOBAL PROPERTY cvars_first_test)
    if(first)
      target_precompile_headers(${name} REUSE_FROM ${first})
    else()
      target_precompile_headers(${name} PRIVATE <gtest/gtest.h> <CvarObject.h>)
      set_property(GLOBAL PROPERTY cvars_first_test ${name})
    endif()
  endif()
  set(properties TIMEOUT 300)
  if(ARG_LABELS)
    list(APPEND properties LABELS "${ARG_LABELS}")
  endif()
  gtest_discover_tests(${name}
    TEST_PREFIX "${name}." NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120 PROPERTIES ${properties})
  if("concurrent" IN_LIST ARG_LABELS)
    add_dependencies(concurrent_tests ${name})
  endif()
endfunction()

# cvars_add_python_test(<name> <script> [<arguments>...])
#
# A test that is a Python program; it passes when the program ends with 0 and is skipped, and counted
# so, when it ends with 77.
function(cvars_add_python_test name script)
  cmake_path(ABSOLUTE_PATH script)
  add_test(NAME ${name} COMMAND Python3::Interpreter "${script}" ${ARGN})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300 SKIP_RETURN_CODE 77)
endfunction()

# cvars_add_compile_failure_test(<name> <source> EXPECT <regular expression> [LIBRARIES <targets>...])
#
# Misuse that must not compile. The source keeps the offending lines inside
# #ifdef CVARS_MUST_NOT_COMPILE. Without the macro it must compile, so that the file is sound apart
# from those lines; with it the compiler must refuse, with a message that the expression matches.
function(cvars_add_compile_failure_test name source)
  cmake_parse_arguments(ARG "" "EXPECT" "LIBRARIES" ${ARGN})
  cmake_path(ABSOLUTE_PATH source)
  # A target that is never built on its own gives the compile line.
  add_library(${name}_compiled OBJECT EXCLUDE_FROM_ALL "${source}")
  target_link_libraries(${name}_compiled PRIVATE
    cvars::cvars ${ARG_LIBRARIES} cvars::build_options)
  set(includes "$<TARGET_PROPERTY:${name}_compiled,INCLUDE_DIRECTORIES>")
  add_test(NAME ${name}
    COMMAND ${CMAKE_COMMAND}
      -D COMPILER=${CMAKE_CXX_COMPILER}
      -D SOURCE=${source}
      -D "INCLUDES=$<JOIN:${includes},|>"
      -D "EXPECT=${ARG_EXPECT}"
      -P "${PROJECT_SOURCE_DIR}/cmake/CheckCompileFailure.cmake")
  set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
