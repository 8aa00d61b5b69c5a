# cvars_add_resources(<target> <script>...)
#
# Compiles resource scripts (texts, bitmaps, icons) into an executable or shared object; LoadString
# and its like find them by the handle of the module. All scripts of a target go into one call.
function(cvars_add_resources target)
  if(NOT ARGN)
    message(FATAL_ERROR "cvars_add_resources(${target}): no script")
  endif()
  get_target_property(given ${target} CVARS_RESOURCES)
  if(given)
    message(FATAL_ERROR "cvars_add_resources(${target}): all scripts of a target go into one call")
  endif()
  set(scripts)
  foreach(script IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH script NORMALIZE)
    list(APPEND scripts "${script}")
  endforeach()
  set_target_properties(${target} PROPERTIES CVARS_RESOURCES "${scripts}")

  set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}_resources.cpp")
  add_custom_command(OUTPUT "${source}"
    COMMAND cvars::compile_resources -o "${source}" -d "${source}.d" ${scripts}
    DEPENDS ${scripts} cvars::compile_resources
    DEPFILE "${source}.d"
    COMMENT "Compiling the resources of ${target}"
    VERBATIM)
  target_sources(${target} PRIVATE "${source}")
  target_link_libraries(${target} PRIVATE cvars::platform)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    # An executable hides what no library of its link asks for.
    target_link_options(${target} PRIVATE "LINKER:--export-dynamic-symbol=cvars_module_resources")
  endif()
endfunction()
