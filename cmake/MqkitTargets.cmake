# How a room of the house becomes a target: one static library per folder of src/, one test program per
# room. A library sees only the rooms that it names, so a wrong arrow does not link.

add_library(mqkit_warnings INTERFACE)
target_compile_options(mqkit_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(MQKIT_WERROR)
    target_compile_options(mqkit_warnings INTERFACE -Werror)
endif()
if(MQKIT_SANITIZE)
    # At the link of everything, also of the tests: those are compiled plain, as it is the program that is under
    # test, and instrumenting its tests would cost the build as much again.
    target_link_options(mqkit_warnings INTERFACE -fsanitize=address,undefined)
endif()

add_library(mqkit_flags INTERFACE)
target_link_libraries(mqkit_flags INTERFACE mqkit_warnings)
if(MQKIT_SANITIZE)
    target_compile_options(mqkit_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
endif()
if(MQKIT_FUZZ)
    target_compile_options(mqkit_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
    target_link_options(mqkit_flags INTERFACE -fsanitize=address,undefined)
endif()

# mqkit_room(<name> SOURCES <file>... [USES <room>...])
function(mqkit_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
    if(NOT ROOM_SOURCES) # a room that is not furnished yet
        add_library(mqkit_${name} INTERFACE)
        return()
    endif()
    add_library(mqkit_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(mqkit_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(mqkit_${name} PRIVATE mqkit_flags)
    foreach(room IN LISTS ROOM_USES)
        target_link_libraries(mqkit_${name} PUBLIC mqkit_${room})
    endforeach()
endfunction()

# mqkit_unit_tests(<name> SOURCES <file>... USES <room>...): one GoogleTest program, one ctest entry.
# Tests are compiled without optimisation: their compile time counts, their speed does not.
function(mqkit_unit_tests name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
    add_executable(test_${name} ${ROOM_SOURCES})
    target_link_libraries(test_${name} PRIVATE mqkit_warnings GTest::gmock GTest::gmock_main)
    target_compile_options(test_${name} PRIVATE -O0)
    target_precompile_headers(test_${name} REUSE_FROM mqkit_test_pch)
    foreach(room IN LISTS ROOM_USES)
        target_link_libraries(test_${name} PRIVATE mqkit_${room})
    endforeach()
    add_test(NAME unit.${name} COMMAND test_${name} --gtest_brief=1)
    set_tests_properties(unit.${name} PROPERTIES WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
endfunction()
