# What `cmake --install` puts where: the library and its header, the command line tool with its man page, the
# examples, and what CMake projects and pkg-config need to find the library. The installed tree can be moved as a
# whole. Components are those of the packages (package.cmake).
include(CMakePackageConfigHelpers)

add_library(movload::movload ALIAS movload)

install(TARGETS movload EXPORT movload
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
if(WIN32)
  # Of it other linkers make an import library of their own.
  install(FILES ${PROJECT_BINARY_DIR}/movload.def DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endif()
install(FILES include/movload.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
# Published bridges are for this tree alone: their models come from modelkit.
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT development
  PATTERN __pycache__ EXCLUDE PATTERN published_bridges EXCLUDE)

# The library needs nothing that its users would have to find first, so that the exported target is the whole
# package config.
set(MOVLOAD_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/movload)
install(EXPORT movload NAMESPACE movload:: FILE movload-config.cmake DESTINATION ${MOVLOAD_CONFIG_DIR}
  COMPONENT development)
write_basic_package_version_file(movload-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/movload-config-version.cmake DESTINATION ${MOVLOAD_CONFIG_DIR}
  COMPONENT development)

# Paths in movload.pc start from the place of the file itself, where they can.
set(MOVLOAD_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(MOVLOAD_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
  set(MOVLOAD_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
  set(MOVLOAD_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
  file(RELATIVE_PATH up /prefix/${MOVLOAD_PC_DIR} /prefix)
  string(REGEX REPLACE "/$" "" up "${up}")
  set(MOVLOAD_PC_PREFIX "\${pcfiledir}/${up}")
  set(MOVLOAD_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(MOVLOAD_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(scripts/movload.pc.in movload.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/movload.pc DESTINATION ${MOVLOAD_PC_DIR} COMPONENT development)

if(TARGET movload_tool)
  install(TARGETS movload_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()

# The man page is the program's own help, where help2man is there and the program runs on this machine.
find_program(MOVLOAD_HELP2MAN help2man)
mark_as_advanced(MOVLOAD_HELP2MAN)
if(TARGET movload_tool AND MOVLOAD_HELP2MAN AND NOT CMAKE_CROSSCOMPILING AND NOT MOVLOAD_SANITIZE)
  set(MOVLOAD_MAN_PAGE ${PROJECT_BINARY_DIR}/movload.1.gz)
  add_custom_command(OUTPUT ${MOVLOAD_MAN_PAGE} VERBATIM
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/man-page.sh $<TARGET_FILE:movload_tool> ${MOVLOAD_MAN_PAGE}
    DEPENDS movload_tool ${PROJECT_SOURCE_DIR}/scripts/man-page.sh)
  add_custom_target(movload_man_page ALL DEPENDS ${MOVLOAD_MAN_PAGE})
  install(FILES ${MOVLOAD_MAN_PAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()
