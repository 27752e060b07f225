# The packages of tools and tests for a build for Windows, out of Debian's packages for Linux: three are headers only,
# {fmt} can be used so, and GoogleTest comes as source. Each is seen through a folder of its own in the build tree:
# /usr/include as a whole holds the headers of Linux.
#
# For CMAKE_PROJECT_TOP_LEVEL_INCLUDES: find_package asks here first.

# cross_headers(TARGET FOLDER...): a target for the header folders.
function(cross_headers target)
  string(MAKE_C_IDENTIFIER ${target} name)
  if(TARGET ${name})
    return()
  endif()
  set(include ${CMAKE_BINARY_DIR}/cross-include/${name})
  file(MAKE_DIRECTORY ${include})
  foreach(folder IN LISTS ARGN)
    if(NOT EXISTS ${folder})
      message(FATAL_ERROR "${folder} is missing: scripts/packages.sh lists the packages to install")
    endif()
    get_filename_component(last ${folder} NAME)
    file(CREATE_LINK ${folder} ${include}/${last} SYMBOLIC)
  endforeach()
  add_library(${name} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${name} SYSTEM INTERFACE ${include})
  add_library(${target} ALIAS ${name})
endfunction()

macro(cross_package method package)
  if("${package}" STREQUAL "CLI11")
    cross_headers(CLI11::CLI11 /usr/include/CLI)
  elseif("${package}" STREQUAL "nlohmann_json")
    cross_headers(nlohmann_json::nlohmann_json /usr/include/nlohmann)
  elseif("${package}" STREQUAL "Eigen3")
    cross_headers(Eigen3::Eigen /usr/include/eigen3/Eigen)
  elseif("${package}" STREQUAL "fmt")
    cross_headers(fmt::fmt /usr/include/fmt)
    target_compile_definitions(fmt__fmt INTERFACE FMT_HEADER_ONLY)
  elseif("${package}" STREQUAL "GTest")
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  endif()
  if("${package}" MATCHES "^(CLI11|nlohmann_json|Eigen3|fmt|GTest)$")
    set(${package}_FOUND TRUE)
  endif()
endmacro()

cmake_language(SET_DEPENDENCY_PROVIDER cross_package SUPPORTED_METHODS FIND_PACKAGE)
