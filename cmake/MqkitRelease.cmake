# What belongs to a release: its date, and a program whose bytes do not depend on where it was built.

# The changelog is where the date of a version is written; manual pages and packages take it from there.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
string(REPLACE "." "\\." version "${PROJECT_VERSION}")
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md heading LIMIT_COUNT 1 REGEX "^## ${version} \\(")
if(NOT heading MATCHES "\\(([0-9]+-[0-9]+-[0-9]+)\\)$")
    message(FATAL_ERROR "CHANGELOG.md has no heading '## ${PROJECT_VERSION} (<year>-<month>-<day>)'")
endif()
set(MQKIT_RELEASE_DATE ${CMAKE_MATCH_1})

# Debug builds keep the real paths, so that a debugger finds the sources. The last map that matches counts.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                        -ffile-prefix-map=${PROJECT_BINARY_DIR}=./build)
endif()
