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

if(PLENOVIZ_DEPS)
    find_package(TBB REQUIRED CONFIG PATHS "${PLENOVIZ_DEPS}" NO_DEFAULT_PATH)
else()
    find_package(TBB REQUIRED CONFIG)
endif()

if(WIN32)
    find_package(FreeImage REQUIRED CONFIG PATHS "${PLENOVIZ_DEPS}" NO_DEFAULT_PATH)
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
