# Installs the build into a scratch prefix, then builds and runs programs against it: a
# CMake project through find_package, and a direct gfortran line through pkg-config.
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

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${SOURCE}/tests/install -B ${WORK}/consumer -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DTOUR_SOURCE=${SOURCE}/examples/tour.f90
    "-DCMAKE_C_FLAGS=${FLAGS}" "-DCMAKE_Fortran_FLAGS=${FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK}/consumer)
run(${WORK}/consumer/consumer_c)
run(${WORK}/consumer/consumer_tour)
if(NOT run_output MATCHES "Tarvo Fortran portability library")
  message(FATAL_ERROR "the tour printed no title:\n${run_output}")
endif()

# pkg-config gives the module directory and the link line.
set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
run(pkg-config --variable=moduledir tarvoport)
string(STRIP "${run_output}" moduledir)
if(NOT EXISTS ${moduledir}/tarvo_portlib.mod)
  message(FATAL_ERROR "no tarvo_portlib.mod in '${moduledir}'")
endif()
run(pkg-config --libs tarvoport)
string(STRIP "${run_output}" libs)
separate_arguments(libs)
separate_arguments(flags NATIVE_COMMAND "${FLAGS}")
run(${Fortran_COMPILER} ${flags} -I${moduledir} ${SOURCE}/examples/tour.f90 -o ${WORK}/tour_pc ${libs}
    -Wl,-rpath,${prefix}/lib)
run(${WORK}/tour_pc)
file(REMOVE_RECURSE ${WORK})
message(STATUS "installed package works through find_package and pkg-config")
