# The library: one object set built twice, as libtarvoport.so and libtarvoport.a.
file(GLOB TARVO_SOURCES CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/base/*.cpp
  ${PROJECT_SOURCE_DIR}/frame/*.cpp
  ${PROJECT_SOURCE_DIR}/runtime/*.cpp
  ${PROJECT_SOURCE_DIR}/posix/*.cpp
  ${PROJECT_SOURCE_DIR}/portlib/*.cpp
  ${PROJECT_SOURCE_DIR}/qq/*.cpp)

configure_file(${PROJECT_SOURCE_DIR}/frame/version_info.h.in
               ${PROJECT_BINARY_DIR}/generated/version_info.h @ONLY)

# Exported names: the lists in tests/abi are the single source of the version script.
file(GLOB _export_lists CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/abi/exports-*.txt)
set(TARVO_EXPORT_LISTS "")
foreach(_list IN LISTS _export_lists)
  get_filename_component(_name "${_list}" NAME_WE)
  if(_name STREQUAL "exports-i386" AND NOT TARVO_ARCH STREQUAL "i386")
    continue()
  endif()
  list(APPEND TARVO_EXPORT_LISTS "${_list}")
endforeach()
# A name added to a list re-runs the configuration, so the version script follows.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${TARVO_EXPORT_LISTS})
set(_globals "")
foreach(_list IN LISTS TARVO_EXPORT_LISTS)
  file(STRINGS "${_list}" _names REGEX "^[A-Za-z_$]")
  foreach(_n IN LISTS _names)
    string(APPEND _globals "    ${_n};\n")
  endforeach()
endforeach()
set(TARVO_VERSION_SCRIPT ${PROJECT_BINARY_DIR}/generated/tarvoport.map)
file(CONFIGURE OUTPUT ${TARVO_VERSION_SCRIPT}
     CONTENT "TARVO_1 {\n  global:\n${_globals}  local:\n    *;\n};\n")

add_library(tarvoport_objects OBJECT ${TARVO_SOURCES})
target_include_directories(tarvoport_objects
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
target_compile_options(tarvoport_objects PRIVATE
  ${TARVO_WARNINGS}
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>
  -fvisibility=hidden -fvisibility-inlines-hidden -fno-semantic-interposition -fno-plt)
# 64-bit addresses do not fit a 4-byte handle: the 64-bit build maps handles through tables,
# the 32-bit build uses the address itself.
if(TARVO_ARCH STREQUAL "x86_64")
  target_compile_definitions(tarvoport_objects PUBLIC TARVO_HANDLE_TABLES=1)
else()
  target_compile_definitions(tarvoport_objects PUBLIC TARVO_HANDLE_TABLES=0)
endif()

add_library(tarvoport SHARED $<TARGET_OBJECTS:tarvoport_objects>)
target_include_directories(tarvoport PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_options(tarvoport PRIVATE
  -Wl,--version-script=${TARVO_VERSION_SCRIPT} -Wl,-z,defs -Wl,--as-needed)
set_target_properties(tarvoport PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS ${TARVO_VERSION_SCRIPT})

# The static archive also serves the unit tests, which reach the internal helpers.
add_library(tarvoport_static STATIC $<TARGET_OBJECTS:tarvoport_objects>)
set_target_properties(tarvoport_static PROPERTIES OUTPUT_NAME tarvoport)
target_include_directories(tarvoport_static PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(tarvoport_static PUBLIC ${CMAKE_DL_LIBS})
add_library(TarvoPort::tarvoport ALIAS tarvoport)
