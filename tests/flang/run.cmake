# Compiles a program with LLVM flang against its own module directory and runs it.
cmake_minimum_required(VERSION 3.25)
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${FLANG} -I${MODDIR} ${SOURCE} -o ${WORK}/program -L${LIBDIR} -ltarvoport_flang -ltarvoport
                        -Wl,-rpath,${LIBDIR}
                RESULT_VARIABLE rc ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "flang could not build ${SOURCE}:\n${err}")
endif()
execute_process(COMMAND ${WORK}/program WORKING_DIRECTORY ${WORK} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the flang program failed (${rc}):\n${out}\n${err}")
endif()
message(STATUS "${out}")
