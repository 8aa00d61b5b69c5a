# Debian packages of what CvarsInstall.cmake installs; tools/make_packages makes them.
#
#   libcvars<major>  libraries, component modules and what they load at run time
#   libcvars-dev     headers, package files and helper functions
#   cvars-tools      readers of the event log and of probes, for every program that uses the libraries
#   cvar-scope       the instrument
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL libcvars libcvars-dev cvars-tools)
if(TARGET cvar-scope)
  list(APPEND CPACK_COMPONENTS_ALL cvar-scope)
endif()
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_VENDOR "The cvars project")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The cvars project")
# What the build's own libraries need is found in the build; who needs them says so below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

set(runtime_package "libcvars${PROJECT_VERSION_MAJOR}")
set(same_libraries "${runtime_package} (= ${PROJECT_VERSION})")

# cvars_describe_package(<component> <name> <section> <summary> <text>)
function(cvars_describe_package component name section summary text)
  string(TOUPPER "${component}" key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME "${name}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION "${section}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}"
    RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

cvars_describe_package(libcvars ${runtime_package} libs
  "typed control variables for measuring instruments"
  "Libraries that hold the settings of a measuring instrument: range, grain, unit,
names and texts of each, and who hears of a change. With the component modules
for units, regular expressions, message boxes, asynchronous notification, the
event log and probes.")
cvars_describe_package(libcvars-dev libcvars-dev libdevel
  "typed control variables for measuring instruments, development files"
  "Headers, the CMake package cvars, the pkg-config module cvars, and the functions
that build components, resources and version records of one's own.")
cvars_describe_package(cvars-tools cvars-tools utils
  "event log and probe readers of programs that use cvars"
  "cvar-log prints the event log, tattler-monitor shows probes as they are entered
and left.")
cvars_describe_package(cvar-scope cvar-scope electronics
  "simulated oscilloscope that is controlled by remote commands"
  "A small instrument that serves its settings over TCP, in the manner of IEEE 488.2
and SCPI.")
set(CPACK_DEBIAN_LIBCVARS_PACKAGE_SUGGESTS cvars-tools)
set(CPACK_DEBIAN_LIBCVARS-DEV_PACKAGE_DEPENDS "${same_libraries}")
set(CPACK_DEBIAN_CVARS-TOOLS_PACKAGE_DEPENDS "${same_libraries}")
set(CPACK_DEBIAN_CVAR-SCOPE_PACKAGE_DEPENDS "${same_libraries}")
set(CPACK_DEBIAN_CVAR-SCOPE_PACKAGE_RECOMMENDS cvars-tools)

# Which package the packages of other programs need for the libraries.
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/packages/shlibs" @ONLY CONTENT
[=[libcvars @PROJECT_VERSION_MAJOR@ @same_libraries@
libcvars_platform @PROJECT_VERSION_MAJOR@ @same_libraries@
]=])
set(CPACK_DEBIAN_LIBCVARS_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/packages/shlibs")

include(CPack)
