# Run by cpack between the installation into its staging folder and the making of a package. A package is whole: it has
# manual pages. A Debian package is also what Debian's policy asks for: texts compressed, its own names for the licence
# and the changelog, zsh's completion where Debian's zsh looks for it.

file(GLOB pages ${CPACK_TEMPORARY_DIRECTORY}/usr/share/man/man1/mqkit.1
                ${CPACK_TEMPORARY_DIRECTORY}/share/man/man1/mqkit.1)
if(NOT pages)
    message(FATAL_ERROR "a package needs the manual pages: install pandoc, configure again and build the target manual")
endif()
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(texts ${share}/doc/mqkit)
set(name mqkit)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

file(READ ${CPACK_MQKIT_SOURCE_DIR}/LICENSE license)
file(READ ${CPACK_MQKIT_SOURCE_DIR}/NOTICE notice)
string(REPLACE "MIT licence, see LICENSE." "MIT licence, see above." notice "${notice}")
file(WRITE ${texts}/copyright "${license}\n${notice}")
file(REMOVE ${texts}/LICENSE ${texts}/NOTICE)
file(GLOB documents ${texts}/README.md ${texts}/docs/*.md)
foreach(document IN LISTS documents)
    file(READ ${document} text)
    string(REGEX REPLACE "\\]\\(((\\.\\./)?)(LICENSE|NOTICE)\\)" "](\\1copyright)" text "${text}")
    string(REGEX REPLACE "\\]\\(((\\.\\./)?)CHANGELOG\\.md\\)" "](\\1changelog.gz)" text "${text}")
    file(WRITE ${document} "${text}")
endforeach()
file(REMOVE ${texts}/licenses/GPL-3.0.txt ${texts}/licenses/LGPL-2.1.txt)

file(RENAME ${texts}/CHANGELOG.md ${texts}/changelog)
execute_process(COMMAND date -u -R -d ${CPACK_MQKIT_DATE}
                OUTPUT_VARIABLE day OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE ${texts}/changelog.Debian
"${name} (${version}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}; what is new in it is said in changelog.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${day}
")

file(MAKE_DIRECTORY ${share}/zsh/vendor-completions)
file(RENAME ${share}/zsh/site-functions/_mqkit ${share}/zsh/vendor-completions/_mqkit)
file(REMOVE_RECURSE ${share}/zsh/site-functions)

file(GLOB compressed ${share}/man/man*/* ${texts}/changelog ${texts}/changelog.Debian)
run(gzip -9nf ${compressed})

# One file for every system, and half the start-up time: see NOTICE for what it contains. Nothing is uploaded to Debian.
file(GLOB programs RELATIVE ${CPACK_TEMPORARY_DIRECTORY} ${CPACK_TEMPORARY_DIRECTORY}/usr/bin/*)
set(overrides "mqkit: initial-upload-closes-no-bugs *\n")
foreach(program IN LISTS programs) # a string: in a list a bracket would hold entries together
    execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C readelf -W -h -l ${CPACK_TEMPORARY_DIRECTORY}/${program}
                    OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
    if(headers MATCHES " INTERP ") # linked dynamically
        continue()
    elseif(headers MATCHES "Type: +DYN ") # position-independent: taken for a library that needs no other
        set(tag shared-library-lacks-prerequisites)
    else()
        set(tag statically-linked-binary)
    endif()
    string(APPEND overrides "mqkit: ${tag} [${program}]\n")
endforeach()
file(WRITE ${share}/lintian/overrides/mqkit "${overrides}")
run(chmod -R u=rwX,go=rX ${CPACK_TEMPORARY_DIRECTORY}/usr)
