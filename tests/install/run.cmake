# Installs the build into a scratch prefix, then builds and runs programs against it the
# ways a user does: a CMake project through find_package, and direct compiler lines through
# pkg-config; each with the shared library and with the static one, with gfortran and (when
# FLANG is given) with flang. EMULATOR, when given, starts the programs (i386 builds on a
# kernel without 32-bit support).
cmake_minimum_required(VERSION 3.25)
set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${WORK})
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(run_output "${out}" PARENT_SCOPE)
endfunction()
separate_arguments(flags NATIVE_COMMAND "${FLAGS}")
# CMake derives no multiarch name for a -m32 project: it is told where the i386 package is.
set(ARCH_HINT "")
if(ARCH STREQUAL "i386")
  set(ARCH_HINT -DCMAKE_LIBRARY_ARCHITECTURE=i386-linux-gnu)
endif()

# Runs a built program; the tour must print its title, the C program its version line.
function(check_program program)
  run(${EMULATOR} ${program})
  if(NOT run_output MATCHES "Tarvo Fortran portability library|consumer_c: ok")
    message(FATAL_ERROR "${program} printed no title:\n${run_output}")
  endif()
endfunction()

# A static program carries the library inside: nothing of it is loaded at run time.
function(check_static program)
  run(readelf -d ${program})
  if(run_output MATCHES "libtarvoport")
    message(FATAL_ERROR "${program} still needs the shared library:\n${run_output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
set(moduleroot ${prefix}/include/tarvo/${ARCH})
if(NOT EXISTS ${moduleroot}/${GFORTRAN_ID}/tarvo_portlib.mod)
  message(FATAL_ERROR "the modules are not in ${moduleroot}/${GFORTRAN_ID}")
endif()
if(NOT EXISTS ${prefix}/${LIBDIR}/libtarvoport.a OR NOT EXISTS ${prefix}/${LIBDIR}/pkgconfig/tarvoport.pc)
  message(FATAL_ERROR "the library or its .pc file is not in ${prefix}/${LIBDIR}")
endif()

# CMake projects, one per Fortran compiler and link mode.
get_filename_component(Fortran_name ${Fortran_COMPILER} NAME)
set(compilers ${Fortran_COMPILER})
if(FLANG)
  list(APPEND compilers ${FLANG})
endif()
foreach(compiler IN LISTS compilers)
  get_filename_component(name ${compiler} NAME)
  foreach(static OFF ON)
    set(dir ${WORK}/cmake-${name}-${static})
    run(${CMAKE_COMMAND} -S ${SOURCE}/tests/install -B ${dir} -G Ninja -DTARVO_STATIC=${static}
        -DCMAKE_PREFIX_PATH=${prefix} -DTOUR_SOURCE=${SOURCE}/examples/tour.f90
        -DCMAKE_Fortran_COMPILER=${compiler} ${ARCH_HINT}
        "-DCMAKE_C_FLAGS=${FLAGS}" "-DCMAKE_Fortran_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${FLAGS}")
    run(${CMAKE_COMMAND} --build ${dir})
    check_program(${dir}/consumer_c)
    check_program(${dir}/consumer_tour)
    if(static)
      check_static(${dir}/consumer_tour)
    endif()
  endforeach()
endforeach()

# pkg-config: the .pc file of this architecture gives the module folder in --cflags, an
# rpath in --libs, and the whole static line in static_libs.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
set(packages "tarvoport\;${Fortran_COMPILER}")
if(FLANG)
  list(APPEND packages "tarvoport-flang\;${FLANG}")
endif()
foreach(pair IN LISTS packages)
  list(GET pair 0 package)
  list(GET pair 1 compiler)
  run(pkg-config --variable=arch ${package})
  string(STRIP "${run_output}" arch)
  if(NOT arch STREQUAL ARCH)
    message(FATAL_ERROR "${package}.pc is for '${arch}', the build for '${ARCH}'")
  endif()
  run(pkg-config --cflags ${package})
  separate_arguments(cflags NATIVE_COMMAND "${run_output}")
  run(pkg-config --libs ${package})
  separate_arguments(libs NATIVE_COMMAND "${run_output}")
  run(pkg-config --variable=static_libs ${package})
  separate_arguments(static_libs NATIVE_COMMAND "${run_output}")
  run(pkg-config --static --libs ${package})
  if(NOT run_output MATCHES "-lstdc\\+\\+")
    message(FATAL_ERROR "pkg-config --static gives no C++ run-time: ${run_output}")
  endif()
  set(program ${WORK}/tour-${package})
  run(${compiler} ${flags} ${cflags} ${SOURCE}/examples/tour.f90 -o ${program} ${libs})
  check_program(${program})
  run(${compiler} ${flags} ${cflags} ${SOURCE}/examples/tour.f90 -o ${program}-static ${static_libs})
  check_program(${program}-static)
  check_static(${program}-static)
endforeach()

# The versions the package states agree with the library's own.
file(STRINGS ${prefix}/${LIBDIR}/cmake/TarvoPort/TarvoPortConfigVersion.cmake cmake_version
     REGEX "set\\(PACKAGE_VERSION ")
string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" cmake_version "${cmake_version}")
run(pkg-config --modversion tarvoport)
string(STRIP "${run_output}" pc_version)
file(GLOB so_files RELATIVE ${prefix}/${LIBDIR} ${prefix}/${LIBDIR}/libtarvoport.so.*.*.*)
if(NOT pc_version STREQUAL cmake_version OR NOT so_files STREQUAL "libtarvoport.so.${cmake_version}"
   OR NOT cmake_version STREQUAL VERSION)
  message(FATAL_ERROR "versions differ: project ${VERSION}, .pc ${pc_version}, "
                      "CMake package ${cmake_version}, library ${so_files}")
endif()

# ... and with the version routines (V<major, two digits>.<minor>-<patch, three digits>)
# and the newest entry of the change log.
string(REGEX MATCHALL "[0-9]+" parts "${VERSION}")
list(GET parts 0 major)
list(GET parts 1 minor)
list(GET parts 2 patch)
math(EXPR major "${major}" OUTPUT_FORMAT DECIMAL)
string(LENGTH "${major}" n)
if(n LESS 2)
  set(major "0${major}")
endif()
string(LENGTH "${patch}" n)
while(n LESS 3)
  set(patch "0${patch}")
  math(EXPR n "${n} + 1")
endwhile()
run(${EMULATOR} ${WORK}/cmake-${Fortran_name}-OFF/consumer_c)
if(NOT run_output MATCHES "V${major}\\.${minor}-${patch}")
  message(FATAL_ERROR "the version routine does not give V${major}.${minor}-${patch}:\n${run_output}")
endif()
file(STRINGS ${SOURCE}/CHANGELOG.md newest REGEX "^## [0-9]" LIMIT_COUNT 1)
if(NOT newest MATCHES "^## ${VERSION} ")
  message(FATAL_ERROR "CHANGELOG.md's newest entry is '${newest}', the project ${VERSION}")
endif()

# A project of the other pointer size must not take this package: the x86-64 package turns
# away a -m32 project, which then finds nothing in this prefix.
if(ARCH STREQUAL "x86_64" AND OTHER_FLAGS)
  set(dir ${WORK}/cmake-m32)
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE}/tests/install -B ${dir} -G Ninja
      -DCMAKE_PREFIX_PATH=${prefix} -DTOUR_SOURCE=${SOURCE}/examples/tour.f90
      "-DCMAKE_C_FLAGS=${OTHER_FLAGS}" "-DCMAKE_Fortran_FLAGS=${OTHER_FLAGS}"
      RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(rc EQUAL 0 OR NOT err MATCHES "64bit")
    message(FATAL_ERROR "a -m32 project accepted the x86-64 package (${rc}):\n${out}\n${err}")
  endif()
endif()
file(REMOVE_RECURSE ${WORK})
message(STATUS "installed package works through find_package and pkg-config, shared and static")
