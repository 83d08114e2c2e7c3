include(GoogleTest)

# add_vor_test(NAME LABEL unit|system|slow SOURCES file... LIBRARIES target...)
#
# Every test case runs in a process of its own: locations, singletons and the wall clock are process-wide.
function(add_vor_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} vor_test_support vor_warnings GTest::gmock_main)
    target_compile_definitions(${name} PRIVATE VOR_GOLDEN_FOLDER="${PROJECT_SOURCE_DIR}/tests/golden")
    # The tests' wall clock has to be found by the loaded library, too.
    set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
    set(timeout 120)
    if(ARG_LABEL STREQUAL slow)
        set(timeout 1800)
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${ARG_LABEL} TIMEOUT ${timeout})
endfunction()
