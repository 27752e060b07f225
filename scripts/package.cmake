# What `cpack` makes of a build: Debian packages of three components, or for Windows one archive of all.
# scripts/package.sh builds as Debian lays out its folders, and runs it.
set(CPACK_PACKAGE_VENDOR "The movload project")
set(CPACK_PACKAGE_CONTACT "The movload project <maintainers@movload.invalid>")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()

set(CPACK_COMPONENTS_ALL library development)
if(TARGET movload_tool)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The tool's own library, which belongs to no installed package, is found here and named by hand below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)

# A package's summary is the project's description; these lines stand below it.
set(MOVLOAD_DEB_LIBRARY libmovload${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${MOVLOAD_DEB_LIBRARY})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
"From the influence lines of a solver, movload finds the loading of a
bridge's lanes that gives the greatest and the least value of a result: HA,
a distributed load and a knife-edge load, and HB, the abnormal vehicle.
This package has the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmovload-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${MOVLOAD_DEB_LIBRARY} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"This package has what programs that call the library are built with: the
header, a CMake package, a pkg-config file, and example programs.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME movload-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${MOVLOAD_DEB_LIBRARY} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS gnuplot-nox)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
"This package has the program movload: it shows what a model's files hold,
works out envelopes, and tells and draws the loading that governs.")

include(CPack)
