# Compiler and linker settings shared by every target of the project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(TARVO_ARCH STREQUAL "i386")
  # 32-bit build (the preset passes -m32 in the compiler flags, so CMake sees a 32-bit
  # target): 64-bit file offsets so stat of large files works; time_t stays 4 bytes.
  if(NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
    message(FATAL_ERROR "TARVO_ARCH=i386 needs -m32 in CMAKE_<LANG>_FLAGS (use the i386 preset)")
  endif()
  set(TARVO_ARCH_FLAGS -m32 -D_FILE_OFFSET_BITS=64)
  add_compile_definitions(_FILE_OFFSET_BITS=64)
  set_property(GLOBAL PROPERTY FIND_LIBRARY_USE_LIB64_PATHS OFF)
  # A kernel without 32-bit support cannot start the test programs: they then run under
  # the user-mode emulator, and the few tests that need the real processor (x87 traps,
  # exec of the machine's own 64-bit programs) carry the label "native32" and are left out.
  set(TARVO_EMULATED OFF CACHE INTERNAL "32-bit tests run under the emulator")
  try_run(_runs _builds SOURCE_FROM_CONTENT probe.c "int main(void) { return 0; }")
  if(NOT _runs STREQUAL "0")
    find_program(TARVO_I386_EMULATOR qemu-i386)
    if(TARVO_I386_EMULATOR)
      set(CMAKE_CROSSCOMPILING_EMULATOR ${TARVO_I386_EMULATOR})
      set(TARVO_EMULATED ON CACHE INTERNAL "32-bit tests run under the emulator")
      message(STATUS "32-bit programs run under ${TARVO_I386_EMULATOR}")
    else()
      message(WARNING "this kernel cannot run 32-bit programs and qemu-i386 is missing: "
                      "the i386 tests will not start")
    endif()
  endif()
elseif(NOT TARVO_ARCH STREQUAL "x86_64")
  message(FATAL_ERROR "TARVO_ARCH must be x86_64 or i386, not '${TARVO_ARCH}'")
endif()

if(TARVO_SANITIZE)
  list(JOIN TARVO_SANITIZE "," _tarvo_san)
  set(TARVO_SANITIZE_FLAGS -fsanitize=${_tarvo_san} -fno-omit-frame-pointer)
  if("undefined" IN_LIST TARVO_SANITIZE)
    list(APPEND TARVO_SANITIZE_FLAGS -fno-sanitize-recover=undefined)
  endif()
  add_compile_options(${TARVO_SANITIZE_FLAGS})
  add_link_options(-fsanitize=${_tarvo_san})
endif()

if(TARVO_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

set(TARVO_WARNINGS -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion -Wundef)
