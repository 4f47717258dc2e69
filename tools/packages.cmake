set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL TRUE)

# orv_find(PACKAGE library|path|program|package NAME ...): what find_KIND(NAME ...) finds, or the end
# of the configuration, with the Debian package that is missing and its group.
macro(orv_find package kind name)
  cmake_language(CALL find_${kind} ${name} ${ARGN})
  if(NOT ${name} AND NOT ${name}_FOUND)
    file(STRINGS ${PROJECT_SOURCE_DIR}/tools/packages.txt line REGEX "^[^#]* ${package}( |$)")
    string(REGEX MATCH "^[a-z]+" group "${line}")
    message(FATAL_ERROR "${package} is missing, of the group \"${group}\" in tools/packages.txt")
  endif()
endmacro()
