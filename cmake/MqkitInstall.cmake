# What `cmake --install` puts where, in the standard folders below the prefix.

set(MQKIT_LIBRARY_DIR ${CMAKE_INSTALL_DATADIR}/mqkit)

# Programs without their symbols, unless somebody is debugging them. Stands before install(TARGETS), which obeys it.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
    install(CODE "set(CMAKE_INSTALL_DO_STRIP TRUE)")
endif()
get_property(programs GLOBAL PROPERTY MQKIT_PROGRAMS)
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# Manual pages, written from docs/. They need pandoc; without it the program is built and installed all the same.
find_program(MQKIT_PANDOC pandoc)
set(MQKIT_MANUAL ${PROJECT_BINARY_DIR}/man)
if(MQKIT_PANDOC)
    file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
    add_custom_command(OUTPUT ${MQKIT_MANUAL}/written
        COMMAND ${PROJECT_SOURCE_DIR}/script/manual ${MQKIT_MANUAL} ${PROJECT_VERSION} ${MQKIT_RELEASE_DATE}
        COMMAND ${CMAKE_COMMAND} -E touch ${MQKIT_MANUAL}/written
        DEPENDS ${documents} ${PROJECT_SOURCE_DIR}/script/manual ${PROJECT_SOURCE_DIR}/cmake/manual.lua
        COMMENT "Writing the manual pages"
        VERBATIM)
    add_custom_target(manual ALL DEPENDS ${MQKIT_MANUAL}/written)
else()
    add_custom_target(manual
        COMMAND ${CMAKE_COMMAND} -E echo "no manual pages: they are written with pandoc, which is not here"
        VERBATIM)
endif()
add_custom_target(installed DEPENDS ${programs} manual) # all that has to be built before `cmake --install`
install(DIRECTORY ${MQKIT_MANUAL}/ DESTINATION ${CMAKE_INSTALL_MANDIR} OPTIONAL FILES_MATCHING PATTERN "*.[15]")

# mqkit_install_link(<folder> <name> <installed path>): a link of that name in the folder, which leads to the path by
# steps up and down, so that the prefix may be moved.
function(mqkit_install_link folder name path)
    file(RELATIVE_PATH target /${folder} /${path})
    set(made ${PROJECT_BINARY_DIR}/links/${folder})
    file(MAKE_DIRECTORY ${made})
    file(CREATE_LINK ${target} ${made}/${name} SYMBOLIC)
    install(FILES ${made}/${name} DESTINATION ${folder})
endfunction()

# Completions, each under the name by which its shell looks for it. bash has one file for `mqkit` and `mqkit-graph`.
set(bash_completions ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completions/mqkit.bash RENAME mqkit DESTINATION ${bash_completions})
mqkit_install_link(${bash_completions} mqkit-graph ${bash_completions}/mqkit)
install(FILES completions/_mqkit DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES completions/mqkit.fish completions/mqkit-graph.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

install(DIRECTORY examples/templates DESTINATION ${MQKIT_LIBRARY_DIR})

# The documents, with what they lead to where a checkout has it.
install(FILES README.md CONTRIBUTING.md CHANGELOG.md LICENSE NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS PATTERN templates EXCLUDE)
mqkit_install_link(${CMAKE_INSTALL_DOCDIR}/examples templates ${MQKIT_LIBRARY_DIR}/templates)
mqkit_install_link(${CMAKE_INSTALL_DOCDIR} editors ${MQKIT_LIBRARY_DIR}/editors)
mqkit_install_link(${CMAKE_INSTALL_DOCDIR} schemas ${MQKIT_LIBRARY_DIR}/schemas)
if(MQKIT_STATIC AND MQKIT_YAML_ARCHIVE)
    # The licences of what the static file contains, see NOTICE.
    install(DIRECTORY licenses DESTINATION ${CMAKE_INSTALL_DOCDIR})
endif()
