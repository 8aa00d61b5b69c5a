# Installation: libraries, public headers, package files and the helper functions that clients use
# for their own modules.
include(CMakePackageConfigHelpers)

set(CVARS_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/cvars")

install(TARGETS cvars cvars_platform EXPORT cvarsTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT libcvars NAMELINK_COMPONENT libcvars-dev)
# The tool behind cvars_add_resources.
install(TARGETS cvars_compile_resources EXPORT cvarsTargets
  RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/cvars" COMPONENT libcvars-dev)
install(EXPORT cvarsTargets NAMESPACE cvars::
  DESTINATION "${CVARS_INSTALL_CMAKEDIR}" COMPONENT libcvars-dev)

# The folders of the public surface as a whole; of the libraries what Cvars.h reaches.
foreach(folder IN ITEMS shared/includes platform/include)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/cvars" COMPONENT libcvars-dev
    FILES_MATCHING PATTERN "*.h")
endforeach()
configure_file("${CMAKE_CURRENT_LIST_DIR}/InstallReachedHeaders.cmake.in"
  "${PROJECT_BINARY_DIR}/InstallReachedHeaders.cmake" @ONLY)
install(SCRIPT "${PROJECT_BINARY_DIR}/InstallReachedHeaders.cmake" COMPONENT libcvars-dev)

if(TARGET cvar-scope)
  install(TARGETS cvar-scope RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT cvar-scope)
endif()

foreach(helper IN ITEMS Components Resources Versions)
  if(EXISTS "${CMAKE_CURRENT_LIST_DIR}/Cvars${helper}.cmake")
    install(FILES "${CMAKE_CURRENT_LIST_DIR}/Cvars${helper}.cmake"
      DESTINATION "${CVARS_INSTALL_CMAKEDIR}" COMPONENT libcvars-dev)
  endif()
endforeach()
install(FILES "${CMAKE_CURRENT_LIST_DIR}/VersionNote.cpp.in"
  DESTINATION "${CVARS_INSTALL_CMAKEDIR}" COMPONENT libcvars-dev)

configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/cvarsConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/cvarsConfig.cmake" INSTALL_DESTINATION "${CVARS_INSTALL_CMAKEDIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/cvarsConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/cvarsConfig.cmake" "${PROJECT_BINARY_DIR}/cvarsConfigVersion.cmake"
  DESTINATION "${CVARS_INSTALL_CMAKEDIR}" COMPONENT libcvars-dev)

# The package file finds the prefix from its own place, so that an installed tree can be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" OUTPUT_VARIABLE CVARS_PC_PREFIX)
configure_file("${CMAKE_CURRENT_LIST_DIR}/cvars.pc.in" "${PROJECT_BINARY_DIR}/cvars.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/cvars.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT libcvars-dev)
