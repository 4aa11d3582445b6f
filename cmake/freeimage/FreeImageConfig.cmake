# FreeImage::FreeImage with everything that the static library needs, in link order.

get_filename_component(freeimage_prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
add_library(FreeImage::FreeImage STATIC IMPORTED)
set(freeimage_needs tiff zstd lzma Lerc raw webpmux webp jpeg png16)
list(TRANSFORM freeimage_needs REPLACE "(.+)" "${freeimage_prefix}/lib/lib\\1.a")
set_target_properties(FreeImage::FreeImage PROPERTIES
    IMPORTED_LOCATION "${freeimage_prefix}/lib/libfreeimage.a"
    INTERFACE_INCLUDE_DIRECTORIES "${freeimage_prefix}/include"
    INTERFACE_COMPILE_DEFINITIONS FREEIMAGE_LIB
    INTERFACE_LINK_LIBRARIES "${freeimage_needs};z;ws2_32")
