# How a room becomes targets: one static library per folder of src/, one test program per folder of tests/.

add_library(mqkit_warnings INTERFACE)
target_compile_options(mqkit_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(MQKIT_WERROR)
    target_compile_options(mqkit_warnings INTERFACE -Werror)
endif()
if(MQKIT_SANITIZE)
    # Linked into everything, including the tests. Those are compiled without instrumentation, which would double
    # the cost of the build without testing more of the program.
    target_link_options(mqkit_warnings INTERFACE -fsanitize=address,undefined)
endif()

add_library(mqkit_flags INTERFACE)
target_link_libraries(mqkit_flags INTERFACE mqkit_warnings)
if(MQKIT_SANITIZE)
    # A function called once is not put into its caller: its variables, with the guards around them, would be on the
    # stack at every level of a recursion.
    target_compile_options(mqkit_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer -fno-inline-functions-called-once)
endif()
if(MQKIT_FUZZ)
    target_compile_options(mqkit_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(mqkit_flags INTERFACE -fsanitize=address,undefined)
endif()

# mqkit_room(<folder> [USES <folder>...]): the library of one folder of src/, without its sub-folders, which are
# rooms of their own. A source called main.cpp or *_main.cpp is a program, not a part of the room.
function(mqkit_room folder)
    cmake_parse_arguments(ROOM "" "" "USES" ${ARGN})
    string(REPLACE "/" "_" name ${folder})
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "(/|_)main\\.cpp$")
    add_library(mqkit_${name} STATIC ${sources})
    target_include_directories(mqkit_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(mqkit_${name} PRIVATE mqkit_flags)
    foreach(used IN LISTS ROOM_USES)
        string(REPLACE "/" "_" used ${used})
        if(NOT TARGET mqkit_${used})
            message(FATAL_ERROR "room ${folder} uses ${used}, which stands on no floor below it")
        endif()
        target_link_libraries(mqkit_${name} PUBLIC mqkit_${used})
    endforeach()
    set_property(GLOBAL APPEND PROPERTY MQKIT_ROOMS ${folder})
endfunction()

# mqkit_link_rooms(<target> <folder>...): links a program to the rooms that its main includes.
function(mqkit_link_rooms name)
    target_link_libraries(${name} PRIVATE mqkit_flags)
    foreach(used IN LISTS ARGN)
        string(REPLACE "/" "_" used ${used})
        target_link_libraries(${name} PRIVATE mqkit_${used})
    endforeach()
endfunction()

# mqkit_writer(<name> <source> USES <folder>...): a program that writes a page of docs/, built on demand.
function(mqkit_writer name source)
    cmake_parse_arguments(WRITER "" "" "USES" ${ARGN})
    add_executable(${name} EXCLUDE_FROM_ALL ${source})
    mqkit_link_rooms(${name} ${WRITER_USES})
endfunction()

# mqkit_program(<name> <source> USES <folder>...): a program that is installed, left at the top of the build folder.
# It has the version inside.
function(mqkit_program name source)
    cmake_parse_arguments(PROGRAM "" "" "USES" ${ARGN})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/ident.cpp.in ${PROJECT_BINARY_DIR}/embedded/ident.cpp @ONLY)
    add_executable(${name} ${source} ${PROJECT_BINARY_DIR}/embedded/ident.cpp)
    mqkit_link_rooms(${name} ${PROGRAM_USES})
    if(MQKIT_STATIC AND MQKIT_YAML_ARCHIVE AND NOT MQKIT_SANITIZE)
        target_link_options(${name} PRIVATE $<IF:$<BOOL:${MQKIT_HAS_STATIC_PIE}>,-static-pie,-static>)
    elseif(MQKIT_HARDENED)
        target_link_options(${name} PRIVATE -pie)
    endif()
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
    set_property(GLOBAL APPEND PROPERTY MQKIT_PROGRAMS ${name})
endfunction()

# mqkit_embed(<folder> <header> <name>=<file>...): a header for the sources of the room alone, included as
# "<folder>/<header>", in which each constant `std::string_view <name>` holds the bytes of a file of src/<folder>. A
# file that changed is embedded anew by the next build.
function(mqkit_embed folder header)
    string(REPLACE "/" "_" name ${folder})
    string(REGEX REPLACE "/.*" "" MQKIT_SPACE ${folder})
    set(MQKIT_TEXTS "")
    foreach(entry IN LISTS ARGN)
        string(REGEX MATCH "^([A-Za-z]+)=(.+)$" parts ${entry})
        set(constant ${CMAKE_MATCH_1})
        set(path ${PROJECT_SOURCE_DIR}/src/${folder}/${CMAKE_MATCH_2})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
        file(READ ${path} text)
        string(FIND "${text}" ")embedded\"" end)
        if(NOT end EQUAL -1)
            message(FATAL_ERROR "${path}: holds the end of the literal that embeds it")
        endif()
        string(APPEND MQKIT_TEXTS
            "inline constexpr std::string_view ${constant} = R\"embedded(${text})embedded\";\n")
    endforeach()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/embedded_texts.h.in
                   ${PROJECT_BINARY_DIR}/embedded/${folder}/${header} @ONLY)
    target_include_directories(mqkit_${name} PRIVATE ${PROJECT_BINARY_DIR}/embedded)
endfunction()

# mqkit_unit_tests(<folder>): one GoogleTest program and one ctest entry from the *_test.cpp of tests/<folder>.
# Tests are compiled without optimisation: their compile time counts, their speed does not.
function(mqkit_unit_tests folder)
    string(REPLACE "/" "_" name ${folder})
    string(REPLACE "/" "." entry ${folder})
    file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${folder}/*_test.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${name} ${sources})
    target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(test_${name} PRIVATE mqkit_warnings mqkit_${name} GTest::gmock GTest::gmock_main)
    target_compile_options(test_${name} PRIVATE -O0)
    # What a header defines inline is emitted by the tests as well, and theirs wins at the link: the room that is
    # nearly all headers has its tests instrumented.
    if(MQKIT_SANITIZE AND folder STREQUAL support)
        target_link_libraries(test_${name} PRIVATE mqkit_flags)
    else()
        target_precompile_headers(test_${name} REUSE_FROM mqkit_test_pch)
    endif()
    add_test(NAME unit.${entry} COMMAND test_${name} --gtest_brief=1)
    set_tests_properties(unit.${entry} PROPERTIES WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
endfunction()

# mqkit_suites(<folder>): every .bats file of tests/<folder> is one ctest entry. The program under test is named
# by MQKIT, the language server by MQKIT_LSP, the top of the source tree by MQKIT_SOURCE.
function(mqkit_suites folder)
    file(GLOB suites CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${folder}/*.bats)
    foreach(suite IN LISTS suites)
        get_filename_component(name ${suite} NAME_WE)
        add_test(NAME ${folder}.${name} COMMAND ${BATS} ${suite})
        set_tests_properties(${folder}.${name} PROPERTIES
            ENVIRONMENT "MQKIT=$<TARGET_FILE:mqkit>;MQKIT_LSP=$<TARGET_FILE:mqkit-lsp>;MQKIT_SOURCE=${PROJECT_SOURCE_DIR}"
            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/tests/${folder})
    endforeach()
endfunction()
