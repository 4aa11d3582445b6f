// Formats that our Windows build of FreeImage leaves out: OpenEXR, JPEG 2000 and JPEG XR.
//
// FreeImage numbers formats in the order in which they are registered, and FreeImage.h fixes the
// numbers. So each of them still registers, with its name and its file extensions but without the
// functions that load and save; FreeImage then says that it can neither read nor write it.

#include "FreeImage.h"
#include "Utilities.h"

// Registers one format under `name`. Plugins answer through plain functions, hence one set each.
#define VC_FORMAT_STUB(initFunction, name, description, extensions, mimeType)                      \
    static const char* DLL_CALLCONV initFunction##Format()                                         \
    {                                                                                              \
        return name;                                                                               \
    }                                                                                              \
    static const char* DLL_CALLCONV initFunction##Description()                                    \
    {                                                                                              \
        return description;                                                                        \
    }                                                                                              \
    static const char* DLL_CALLCONV initFunction##Extensions()                                     \
    {                                                                                              \
        return extensions;                                                                         \
    }                                                                                              \
    static const char* DLL_CALLCONV initFunction##MimeType()                                       \
    {                                                                                              \
        return mimeType;                                                                           \
    }                                                                                              \
    void DLL_CALLCONV initFunction(Plugin* plugin, int)                                            \
    {                                                                                              \
        plugin->format_proc = initFunction##Format;                                                \
        plugin->description_proc = initFunction##Description;                                      \
        plugin->extension_proc = initFunction##Extensions;                                         \
        plugin->mime_proc = initFunction##MimeType;                                                \
    }

VC_FORMAT_STUB(InitEXR, "EXR", "ILM OpenEXR", "exr", "image/x-exr")
VC_FORMAT_STUB(InitJ2K, "J2K", "JPEG-2000 codestream", "j2k,j2c", "image/j2k")
VC_FORMAT_STUB(InitJP2, "JP2", "JPEG-2000 File Format", "jp2", "image/jp2")
VC_FORMAT_STUB(InitJXR, "JPEG-XR", "JPEG XR image format", "jxr,wdp,hdp", "image/vnd.ms-photo")
