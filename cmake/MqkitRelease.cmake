# What belongs to a release: its date, a program whose bytes do not depend on where it was built, and hardening.

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

# The defences of the tool chain: a stack whose overflow is noticed, checked calls of the C library, tables that are
# read-only before the program begins, addresses that differ in every run. Tests are not hardened, the rooms are.
set(MQKIT_HARDENED OFF)
if(MQKIT_HARDEN AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT MQKIT_SANITIZE AND NOT MQKIT_FUZZ)
    set(MQKIT_HARDENED ON)
    target_compile_options(mqkit_flags INTERFACE -fPIE -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    target_link_options(mqkit_flags INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
endif()
include(CheckLinkerFlag)
check_linker_flag(CXX -static-pie MQKIT_HAS_STATIC_PIE)
