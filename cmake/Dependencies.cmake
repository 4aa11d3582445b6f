# The outside libraries: FreeImage::FreeImage, TBB::tbb, one Vc:: target for each codec, and
# GoogleTest's sources. Debian brings them for this machine. For Windows, and for the thread
# sanitizer, which needs a task library built with it, cmake/deps.sh builds them from Debian's source
# packages into a cache.

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

# The codecs, each a target of its own: a header that tells its folder, then the libraries in link
# order. FreeImage uses the same ones.
if(WIN32)
    set(codec_folders "${PLENOVIZ_DEPS}" /usr/x86_64-w64-mingw32)
    set(codec_search NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
else()
    set(codec_folders ${fuzz_libraries})
    set(codec_search "")
endif()
function(vc_codec name header)
    find_path(folder "${header}" HINTS ${codec_folders} PATH_SUFFIXES include NO_CACHE REQUIRED
        ${codec_search})
    add_library(Vc::${name} INTERFACE IMPORTED)
    target_include_directories(Vc::${name} INTERFACE "${folder}")
    foreach(library IN LISTS ARGN)
        find_library(file "${library}" HINTS ${codec_folders} PATH_SUFFIXES lib NO_CACHE REQUIRED
            ${codec_search})
        target_link_libraries(Vc::${name} INTERFACE "${file}")
        unset(file)
    endforeach()
endfunction()

if(WIN32)
    vc_codec(Jpeg jpeglib.h jpeg)
    vc_codec(Png png.h png16 z)
    vc_codec(Webp webp/decode.h webpmux webp)
    vc_codec(Tiff tiffio.h tiff zstd lzma Lerc webp jpeg z)
    vc_codec(Raw libraw/libraw.h raw jpeg z ws2_32)
    target_compile_definitions(Vc::Raw INTERFACE LIBRAW_NODLL)
    vc_codec(Lcms2 lcms2.h lcms2)
else()
    vc_codec(Jpeg jpeglib.h jpeg)
    vc_codec(Png png.h png16 z)
    vc_codec(Webp webp/decode.h webpmux webp)
    vc_codec(Lcms2 lcms2.h lcms2)
    if(PLENOVIZ_PRESET STREQUAL "fuzz")
        vc_codec(Tiff tiffio.h tiff jpeg z)
        vc_codec(Raw libraw/libraw.h raw jpeg z)
    else()
        vc_codec(Tiff tiffio.h tiff)
        vc_codec(Raw libraw/libraw.h raw_r)
    endif()
endif()
add_library(Vc::Codecs INTERFACE IMPORTED)
target_link_libraries(Vc::Codecs INTERFACE
    FreeImage::FreeImage Vc::Jpeg Vc::Png Vc::Tiff Vc::Webp Vc::Raw Vc::Lcms2)

# Debian's googletest package: built with the flags of the preset, as sanitizers want it.
set(PLENOVIZ_GOOGLETEST "/usr/src/googletest" CACHE PATH "Folder of GoogleTest's sources")
