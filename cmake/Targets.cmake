# Helpers for the folders: tuned sources, tests and benchmarks.

# Compiles one engine source of the calling folder with flags of its own, such as the instruction
# set that the end of its name promises.
function(vc_tuned_source source)
    set_property(SOURCE "${CMAKE_CURRENT_SOURCE_DIR}/${source}" TARGET_DIRECTORY vcengine
        APPEND PROPERTY COMPILE_OPTIONS ${ARGN})
endfunction()

# A test program. Natively each of its cases becomes a test of its own; under wine, where every
# start costs, the whole program is one test. Names start with the preset, so that one ctest run
# can hold several presets.
function(vc_add_test name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE vcengine vctestsupport gtest gtest_main)
    if(WIN32)
        add_test(NAME "${PLENOVIZ_PRESET}/${name}" COMMAND ${name} --gtest_brief=1)
        set_tests_properties("${PLENOVIZ_PRESET}/${name}" PROPERTIES
            LABELS ${PLENOVIZ_PRESET} TIMEOUT 300)
    else()
        gtest_discover_tests(${name} TEST_PREFIX "${PLENOVIZ_PRESET}/" NO_PRETTY_VALUES
            DISCOVERY_TIMEOUT 60
            PROPERTIES LABELS ${PLENOVIZ_PRESET} TIMEOUT 120)
    endif()
endfunction()

# A benchmark program. As a test it checks all of its results on small pictures; times mean something
# only when it is started by hand on an idle machine.
function(vc_add_bench name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE vcbench)
    add_test(NAME "${PLENOVIZ_PRESET}/${name}" COMMAND ${name} --small --benchmark_min_time=0.001)
    set_tests_properties("${PLENOVIZ_PRESET}/${name}" PROPERTIES
        LABELS ${PLENOVIZ_PRESET} TIMEOUT 300 COST 100)
endfunction()

# Flags of the loops that the compiler is to vectorise. Neither of the first two changes a result:
# square roots of negative numbers and floating-point traps do not occur.
set(VC_KERNEL_FLAGS -O3 -fno-math-errno -fno-trapping-math)
set(VC_AVX2_FLAGS -mavx2 -mtune=haswell)
set(VC_AVX512_FLAGS -mavx512f -mavx512dq -mavx512bw -mavx512vl -mprefer-vector-width=512 -mtune=skylake-avx512)
