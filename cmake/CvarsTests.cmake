# cvars_add_test(<name> <sources>... [LABELS <labels>...])
#
# One GoogleTest program, linked with the libraries and the test support; every suite of it runs as
# a test of its own in a home folder of its own. The label "concurrent" marks what also runs under
# ThreadSanitizer.
function(cvars_add_test name)
  cmake_parse_arguments(ARG "" "" "LABELS;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE
    cvars_test_support cvars::cvars ${ARG_LIBRARIES} GTest::gtest_main
    cvars::warnings cvars::build_options)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)
  target_compile_definitions(${name} PRIVATE
    CVARS_SOURCE_DIR="${PROJECT_SOURCE_DIR}" CVARS_BINARY_DIR="${CMAKE_BINARY_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
  if(ARG_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}")
  endif()
endfunction()
