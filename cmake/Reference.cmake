# Man pages (section 3f, one per exported name) written from the reference entries in
# docs/reference/, at build time, and installed under share/man/man3.
find_package(Python3 COMPONENTS Interpreter)
file(GLOB TARVO_REFERENCE_ENTRIES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/reference/*.md)
list(REMOVE_ITEM TARVO_REFERENCE_ENTRIES ${PROJECT_SOURCE_DIR}/docs/reference/README.md)
if(Python3_Interpreter_FOUND)
  set(_man ${PROJECT_BINARY_DIR}/man)
  add_custom_command(OUTPUT ${_man}/man3.stamp
    COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/scripts/reference man ${_man} --version ${PROJECT_VERSION}
    COMMAND ${CMAKE_COMMAND} -E touch ${_man}/man3.stamp
    DEPENDS ${TARVO_REFERENCE_ENTRIES} ${PROJECT_SOURCE_DIR}/scripts/reference
    COMMENT "Writing the man pages from docs/reference")
  add_custom_target(tarvo_man_pages ALL DEPENDS ${_man}/man3.stamp)
  install(DIRECTORY ${_man}/man3 DESTINATION ${CMAKE_INSTALL_MANDIR} FILES_MATCHING PATTERN "*.3f")
else()
  message(STATUS "python3 not found: the man pages are not written")
endif()
