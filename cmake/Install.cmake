# Installation: library, headers, interface modules, CMake package and pkg-config files.
#
# Layout under the prefix (one architecture per library folder, so an x86-64 and an i386
# build install side by side):
#   lib/ or lib/i386-linux-gnu/         libtarvoport.so, libtarvoport.a, the module archives,
#                                       pkgconfig/tarvoport*.pc, cmake/TarvoPort/
#   include/tarvo/                      C headers
#   include/tarvo/<arch>/<compiler>-<version>/   .mod files and tarvo.fi
include(CMakePackageConfigHelpers)
install(TARGETS tarvoport tarvoport_static EXPORT TarvoPortTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/tarvo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

# Module folders carry the architecture: the .mod files of the two builds differ (kinds of
# address-sized arguments) while gfortran would read either without complaint.
set(TARVO_INSTALL_MODULEROOT ${CMAKE_INSTALL_INCLUDEDIR}/tarvo/${TARVO_ARCH})
set(TARVO_INSTALL_MODULEDIR "")
set(TARVO_INSTALL_FLANG_MODULEDIR "")
foreach(_pair "GFORTRAN;TARVO_INSTALL_MODULEDIR" "FLANG;TARVO_INSTALL_FLANG_MODULEDIR")
  list(GET _pair 0 _compiler)
  list(GET _pair 1 _var)
  if(TARVO_${_compiler}_ID)
    set(${_var} ${TARVO_INSTALL_MODULEROOT}/${TARVO_${_compiler}_ID})
    install(DIRECTORY ${PROJECT_BINARY_DIR}/include/tarvo/${TARVO_${_compiler}_ID}
            DESTINATION ${TARVO_INSTALL_MODULEROOT} FILES_MATCHING PATTERN "*.mod" PATTERN "tarvo.fi")
  endif()
endforeach()
# The modules' own procedures, one archive per compiler.
if(TARGET tarvo_modules)
  install(TARGETS tarvo_modules ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
if(TARVO_FLANG_ARCHIVE)
  install(FILES ${TARVO_FLANG_ARCHIVE} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

# What a program linked against the static archive needs besides it: the C++ run-time
# (function-local statics, operator new), the dynamic loader and threads.
set(TARVO_STATIC_DEPENDENCIES stdc++ m ${CMAKE_DL_LIBS} pthread)
set_property(TARGET tarvoport_static APPEND PROPERTY INTERFACE_LINK_LIBRARIES
             $<INSTALL_INTERFACE:${TARVO_STATIC_DEPENDENCIES}>)
set(TARVO_PC_LIBS_PRIVATE "")
foreach(_lib IN LISTS TARVO_STATIC_DEPENDENCIES)
  string(APPEND TARVO_PC_LIBS_PRIVATE " -l${_lib}")
endforeach()
string(STRIP "${TARVO_PC_LIBS_PRIVATE}" TARVO_PC_LIBS_PRIVATE)

set(_cmakedir ${CMAKE_INSTALL_LIBDIR}/cmake/TarvoPort)
install(EXPORT TarvoPortTargets NAMESPACE TarvoPort:: DESTINATION ${_cmakedir})
configure_package_config_file(cmake/TarvoPortConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TarvoPortConfig.cmake INSTALL_DESTINATION ${_cmakedir}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR)
# The version file also refuses a project whose pointer size differs from this build's, so
# a -m32 project passes over the x86-64 package and finds the i386 one.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TarvoPortConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TarvoPortConfig.cmake ${PROJECT_BINARY_DIR}/TarvoPortConfigVersion.cmake
        DESTINATION ${_cmakedir})

# pkg-config: tarvoport.pc for gfortran and C programs, tarvoport-flang.pc for flang ones.
file(RELATIVE_PATH TARVO_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
set(_pc_files "")
foreach(_flavour gfortran flang)
  set(TARVO_PC_NAME tarvoport)
  set(TARVO_PC_MODULEDIR ${TARVO_INSTALL_MODULEDIR})
  set(TARVO_PC_MODULE_ARCHIVE tarvoport_gfortran)
  set(TARVO_PC_EXTRA "")
  if(_flavour STREQUAL "flang")
    if(NOT TARVO_FLANG_ID)
      continue()
    endif()
    set(TARVO_PC_NAME tarvoport-flang)
    set(TARVO_PC_MODULEDIR ${TARVO_INSTALL_FLANG_MODULEDIR})
    set(TARVO_PC_MODULE_ARCHIVE tarvoport_flang)
  elseif(TARVO_FLANG_ID)
    # Kept for programs written against the single file: the flang folder and link line.
    set(TARVO_PC_EXTRA "flang_moduledir=\${prefix}/${TARVO_INSTALL_FLANG_MODULEDIR}\nflang_libs=-L\${libdir} -Wl,-rpath,\${libdir} -ltarvoport_flang -ltarvoport\n")
  endif()
  if(NOT TARVO_PC_MODULEDIR)
    # A build without gfortran installs no modules: C programs only.
    set(TARVO_PC_MODULE_LINE "")
    set(TARVO_PC_FFLAGS "")
    set(TARVO_PC_MODULE_LIB "")
  else()
    set(TARVO_PC_MODULE_LINE "moduledir=\${prefix}/${TARVO_PC_MODULEDIR}\n")
    set(TARVO_PC_FFLAGS " -I\${moduledir}")
    set(TARVO_PC_MODULE_LIB " -l${TARVO_PC_MODULE_ARCHIVE}")
  endif()
  set(TARVO_PC_STATIC_LIBS "\${libdir}/libtarvoport.a ${TARVO_PC_LIBS_PRIVATE}")
  if(TARVO_PC_MODULEDIR)
    string(PREPEND TARVO_PC_STATIC_LIBS "\${libdir}/lib${TARVO_PC_MODULE_ARCHIVE}.a ")
  endif()
  configure_file(cmake/tarvoport.pc.in ${PROJECT_BINARY_DIR}/${TARVO_PC_NAME}.pc @ONLY)
  list(APPEND _pc_files ${PROJECT_BINARY_DIR}/${TARVO_PC_NAME}.pc)
endforeach()
install(FILES ${_pc_files} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
