# Packages: script/package makes them all. `cpack -G DEB` and `cpack -G TGZ` in the build folder do it one by one.

set(CPACK_PACKAGE_VENDOR "the mqkit authors")
set(CPACK_PACKAGE_CONTACT "mqkit developers <mqkit@example.org>")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_FILE_NAME mqkit-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/finish_package.cmake)
set(CPACK_MQKIT_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_MQKIT_DATE ${MQKIT_RELEASE_DATE})

# One archive that may be unpacked anywhere.
set(CPACK_SET_DESTDIR OFF)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)

set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON) # finds nothing in a static program
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, graphviz, jq")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "command line for batch tasks in computational chemistry")
set(CPACK_PACKAGE_DESCRIPTION
"mqkit reads, checks, reformats, expands and explains task files that
describe chains of quantum-chemistry calculations, keeps project trees
with a case directory per molecule in step with them, renames task blocks
and keeps a library of templates. It runs no calculation itself.
mqkit-graph draws a task file as a graph in dot, Mermaid or SVG.
mqkit-lsp is a language server for task files, which editors start.")

include(CPack)
