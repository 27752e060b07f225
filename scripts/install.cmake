# What `cmake --install` puts where: the library and its header, the command line tool, and what CMake projects
# and pkg-config need to find the library. The installed tree can be moved as a whole.
include(CMakePackageConfigHelpers)

add_library(movload::movload ALIAS movload)

install(TARGETS movload EXPORT movload LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
  # Of it other linkers make an import library of their own.
  install(FILES ${PROJECT_BINARY_DIR}/movload.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(FILES include/movload.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The library needs nothing that its users would have to find first, so that the exported target is the whole
# package config.
set(MOVLOAD_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/movload)
install(EXPORT movload NAMESPACE movload:: FILE movload-config.cmake DESTINATION ${MOVLOAD_CONFIG_DIR})
write_basic_package_version_file(movload-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/movload-config-version.cmake DESTINATION ${MOVLOAD_CONFIG_DIR})

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
install(FILES ${PROJECT_BINARY_DIR}/movload.pc DESTINATION ${MOVLOAD_PC_DIR})

if(TARGET movload_tool)
  install(TARGETS movload_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
