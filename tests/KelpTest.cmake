# SPDX-License-Identifier: Apache-2.0
# How a test is made known to CTest: with its labels, a bound on its time and the thread sanitizer's suppressions.
include_guard()

# Clang's thread sanitizer insists on its own operators new and delete: tests that need others are left out under it.
set(KELP_HAS_OPERATORS TRUE)
if(KELP_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(KELP_HAS_OPERATORS FALSE)
endif()

# The programs of all tests labelled "thread".
if(NOT TARGET thread-tests)
    add_custom_target(thread-tests)
endif()

# kelp_register_test(<name> COMMAND <command>... LABELS <label>... [ENVIRONMENT <NAME=value>...])
function(kelp_register_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "" "COMMAND;LABELS;ENVIRONMENT")
    if(KELP_SANITIZE STREQUAL "thread")
        list(APPEND test_ENVIRONMENT "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp")
    endif()
    add_test(NAME ${name} COMMAND ${test_COMMAND})
    set_tests_properties(${name} PROPERTIES
        LABELS "${test_LABELS}" ENVIRONMENT "${test_ENVIRONMENT}" TIMEOUT 120)
endfunction()

# kelp_add_test(<name> SOURCES <file>... LIBRARIES <target>... LABELS <label>...): one program, one test
function(kelp_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "" "SOURCES;LIBRARIES;LABELS")
    add_executable(${name} ${test_SOURCES})
    target_link_libraries(${name} PRIVATE ${test_LIBRARIES})
    if("thread" IN_LIST test_LABELS)
        add_dependencies(thread-tests ${name})
    endif()
    kelp_register_test(${name} COMMAND ${name} LABELS ${test_LABELS})
endfunction()
