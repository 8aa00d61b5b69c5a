# cvars_add_component(<target> PROGID <id> CLSID <guid> SOURCES <sources>... [LIBRARIES <libraries>...])
#
# Builds a loadable module of one component class and registers the class for the whole machine: a
# file of class entries stands beside the module, in the component folder of the platform library,
# both in the build tree and once installed. The identifier is written in braces.
#
function(cvars_add_component target)
  cmake_parse_arguments(ARG "" "PROGID;CLSID" "SOURCES;LIBRARIES" ${ARGN})
  foreach(needed PROGID CLSID SOURCES)
    if(NOT ARG_${needed})
      message(FATAL_ERROR "cvars_add_component(${target}): ${needed} is missing")
    endif()
  endforeach()
  if(NOT ARG_CLSID MATCHES "^{[0-9A-Fa-f-]+}$" OR NOT ARG_CLSID MATCHES "^.(........)-(....)-(....)-(....)-(............).$")
    message(FATAL_ERROR "cvars_add_component(${target}): ${ARG_CLSID} is no class identifier")
  endif()

  set(folder "${CMAKE_BINARY_DIR}/lib/cvars/components")
  add_library(${target} MODULE ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES
    PREFIX "" OUTPUT_NAME "${target}" LIBRARY_OUTPUT_DIRECTORY "${folder}"
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    INSTALL_RPATH "$ORIGIN/../..")
  target_link_libraries(${target} PRIVATE cvars::platform ${ARG_LIBRARIES})
  if(TARGET cvars::warnings)
    target_link_libraries(${target} PRIVATE cvars::warnings cvars::build_options)
  endif()

  string(TOUPPER "${ARG_CLSID}" clsid)
  # Written at configure time, so that a build of one target alone finds all entries.
  file(CONFIGURE OUTPUT "${folder}/${target}.reg" @ONLY CONTENT
[=[Windows Registry Editor Version 5.00

[HKEY_CLASSES_ROOT\@ARG_PROGID@\CLSID]
@="@clsid@"

[HKEY_CLASSES_ROOT\CLSID\@clsid@\InprocServer32]
@="@target@.so"

[HKEY_CLASSES_ROOT\CLSID\@clsid@\ProgID]
@="@ARG_PROGID@"
]=])
  include(GNUInstallDirs)
  install(TARGETS ${target}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/cvars/components" COMPONENT libcvars)
  install(FILES "${folder}/${target}.reg"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/cvars/components" COMPONENT libcvars)
endfunction()
