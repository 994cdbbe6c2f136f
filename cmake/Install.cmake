# Installation: library, headers, interface modules, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)
install(TARGETS tarvoport tarvoport_static EXPORT TarvoPortTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/tarvo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

# One module directory per Fortran compiler: the .pc file names them as moduledir (gfortran)
# and flang_moduledir.
set(TARVO_INSTALL_MODULEDIR "")
set(TARVO_INSTALL_FLANG_MODULEDIR "")
foreach(_pair "GFORTRAN;TARVO_INSTALL_MODULEDIR" "FLANG;TARVO_INSTALL_FLANG_MODULEDIR")
  list(GET _pair 0 _compiler)
  list(GET _pair 1 _var)
  if(TARVO_${_compiler}_ID)
    set(${_var} ${CMAKE_INSTALL_INCLUDEDIR}/tarvo/${TARVO_${_compiler}_ID})
    install(DIRECTORY ${PROJECT_BINARY_DIR}/include/tarvo/${TARVO_${_compiler}_ID}
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarvo FILES_MATCHING PATTERN "*.mod" PATTERN "tarvo.fi")
  endif()
endforeach()
# The modules' own procedures, one archive per compiler.
if(TARGET tarvo_modules)
  install(TARGETS tarvo_modules ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
if(TARVO_FLANG_ARCHIVE)
  install(FILES ${TARVO_FLANG_ARCHIVE} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/TarvoPort)
install(EXPORT TarvoPortTargets NAMESPACE TarvoPort:: DESTINATION ${_cmakedir})
configure_package_config_file(cmake/TarvoPortConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TarvoPortConfig.cmake INSTALL_DESTINATION ${_cmakedir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TarvoPortConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TarvoPortConfig.cmake ${PROJECT_BINARY_DIR}/TarvoPortConfigVersion.cmake
        DESTINATION ${_cmakedir})

file(RELATIVE_PATH TARVO_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/tarvoport.pc.in ${PROJECT_BINARY_DIR}/tarvoport.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarvoport.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
