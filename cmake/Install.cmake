# What is installed: the library, its public headers, the CMake and pkg-config packages, and with
# the command its man page and shell completion. Everything finds its neighbours relative to
# itself, so that an installation can be moved as a whole.
include(CMakePackageConfigHelpers)

set(IXOMEP_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ixomep")

# The libraries that the default host uses are its own business: the export names none of them.
install(TARGETS ixomep EXPORT ixomepTargets)
foreach(header IN LISTS IXOMEP_PUBLIC_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES "${PROJECT_SOURCE_DIR}/${header}"
          DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${folder}")
endforeach()

install(EXPORT ixomepTargets NAMESPACE ixomep:: DESTINATION "${IXOMEP_CMAKE_DIR}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/ixomepConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/ixomepConfig.cmake"
                              INSTALL_DESTINATION "${IXOMEP_CMAKE_DIR}"
                              NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ixomepConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/ixomepConfig.cmake"
              "${PROJECT_BINARY_DIR}/ixomepConfigVersion.cmake"
        DESTINATION "${IXOMEP_CMAKE_DIR}")

# The prefix as seen from the pkg-config file. An absolute library folder cannot be moved, and then
# the prefix is written as it is.
set(IXOMEP_PC_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(IXOMEP_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
  set(IXOMEP_PC_LIBDIR "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(IXOMEP_PC_INCLUDEDIR "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
  file(RELATIVE_PATH up "/prefix/${IXOMEP_PC_DIR}" "/prefix")
  string(REGEX REPLACE "/$" "" up "${up}")
  set(IXOMEP_PC_PREFIX "\${pcfiledir}/${up}")
  set(IXOMEP_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(IXOMEP_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/ixomep.pc.in" "${PROJECT_BINARY_DIR}/ixomep.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/ixomep.pc" DESTINATION "${IXOMEP_PC_DIR}")

if(TARGET mep)
  # From the command to the library beside it, wherever both are put.
  file(RELATIVE_PATH to_library "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(mep PROPERTIES INSTALL_RPATH "$ORIGIN/${to_library}")
  install(TARGETS mep)
  install(FILES "${PROJECT_SOURCE_DIR}/docs/mep.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  set(completion "${PROJECT_SOURCE_DIR}/tools/completion")
  install(FILES "${completion}/mep.bash" RENAME mep
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  install(FILES "${completion}/_mep" DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
  install(FILES "${completion}/mep.fish"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endif()

# The manual, and the host application as an example to start from.
file(GLOB manual CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/*.md")
list(FILTER manual EXCLUDE REGEX "/(architecture|hacking)\\.md$")
install(FILES ${manual} "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/host" "${PROJECT_SOURCE_DIR}/examples/texts"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}/examples")
