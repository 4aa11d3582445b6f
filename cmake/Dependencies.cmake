# The outside libraries: FreeImage::FreeImage and TBB::tbb, and GoogleTest's sources. Debian brings
# them for this machine. For Windows, and for the thread sanitizer, which needs a task library
# built with it, cmake/deps.sh builds them from Debian's source packages into a cache.

# Sets `prefix` to the folder where deps.sh has put the given set of libraries.
function(vc_built_dependencies set prefix)
    execute_process(COMMAND "${CMAKE_SOURCE_DIR}/cmake/deps.sh" path ${set}
        OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT EXISTS "${folder}")
        message(FATAL_ERROR "Build the libraries first: cmake/deps.sh ${set}")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
        "${CMAKE_SOURCE_DIR}/cmake/deps.sh")
    set(${prefix} "${folder}" PARENT_SCOPE)
endfunction()

if(WIN32)
    vc_built_dependencies(windows PLENOVIZ_DEPS)
elseif(PLENOVIZ_SANITIZE STREQUAL "thread")
    vc_built_dependencies(tsan PLENOVIZ_DEPS)
endif()

if(WIN32)
    # Nothing outside the program: the OpenMP runtime has an import library next to the static one.
    set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
endif()

# The folder changes with the recipe, so it is named at each configure run and found anew.
find_package(Threads REQUIRED) # what a static task library links
if(PLENOVIZ_DEPS)
    set(TBB_DIR "${PLENOVIZ_DEPS}/lib/cmake/TBB")
    set(FreeImage_DIR "${PLENOVIZ_DEPS}/lib/cmake/FreeImage")
endif()
find_package(TBB REQUIRED CONFIG)

if(WIN32)
    find_package(FreeImage REQUIRED CONFIG)
elseif(PLENOVIZ_PRESET STREQUAL "fuzz")
    # Built with the fuzzer's instruments, so that it sees into the decoders.
    execute_process(COMMAND "${CMAKE_SOURCE_DIR}/fuzz/libraries.sh" path
        OUTPUT_VARIABLE fuzz_libraries OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
    add_library(FreeImage::FreeImage STATIC IMPORTED)
    set_target_properties(FreeImage::FreeImage PROPERTIES
        IMPORTED_LOCATION "${fuzz_libraries}/lib/libfreeimage.a"
        INTERFACE_INCLUDE_DIRECTORIES "${fuzz_libraries}/include"
        INTERFACE_COMPILE_DEFINITIONS FREEIMAGE_LIB
        INTERFACE_LINK_LIBRARIES
            "${fuzz_libraries}/lib/libtiff.a;${fuzz_libraries}/lib/libraw.a;webpmux;webp;jpeg;png16;z")
else()
    find_library(FREEIMAGE_LIBRARY freeimage REQUIRED)
    find_path(FREEIMAGE_INCLUDE_DIR FreeImage.h REQUIRED)
    add_library(FreeImage::FreeImage UNKNOWN IMPORTED)
    set_target_properties(FreeImage::FreeImage PROPERTIES
        IMPORTED_LOCATION "${FREEIMAGE_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${FREEIMAGE_INCLUDE_DIR}")
endif()

# Debian's googletest package: built with the flags of the preset, as sanitizers want it.
set(PLENOVIZ_GOOGLETEST "/usr/src/googletest" CACHE PATH "Folder of GoogleTest's sources")
