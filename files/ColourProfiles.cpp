#include "files/ColourProfiles.h"

#include <lcms2.h>

static cmsHTRANSFORM MakeTransform(const std::vector<uint8_t>& bytes, int bits, bool inverted)
{
    cmsHPROFILE inks = bytes.empty()
                           ? nullptr
                           : cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size()));
    if (!inks)
        return nullptr;
    cmsHTRANSFORM transform = nullptr;
    cmsHPROFILE screen = cmsCreate_sRGBProfile();
    if (cmsGetColorSpace(inks) == cmsSigCmykData)
    {
        const cmsUInt32Number flavor = FLAVOR_SH(inverted ? 1 : 0);
        const auto from = (bits == 8 ? TYPE_CMYK_8 : TYPE_CMYK_16) | flavor;
        transform = cmsCreateTransform(inks, from, screen, bits == 8 ? TYPE_BGR_8 : TYPE_BGR_16,
                                       INTENT_RELATIVE_COLORIMETRIC,
                                       cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE);
    }
    cmsCloseProfile(screen);
    cmsCloseProfile(inks);
    return transform;
}

InkTransform::InkTransform(const std::vector<uint8_t>& profile, int sampleBits, bool fromFull)
    : bits(sampleBits), inverted(fromFull)
{
    transform = MakeTransform(profile, bits, inverted);
}

InkTransform::~InkTransform()
{
    if (transform)
        cmsDeleteTransform(transform);
}

template <typename T>
static void LetThrough(T* colours, const T* inks, int pixels, bool inverted)
{
    const uint32_t top = T(~T(0)), flip = inverted ? 0 : top;
    for (int x = 0; x < pixels; ++x, colours += 3, inks += 4)
        for (int c = 0; c < 3; ++c)
            colours[c] = T(((inks[2 - c] ^ flip) * uint64_t(inks[3] ^ flip) + top / 2) / top);
}

void InkTransform::ToColours(void* colours, const void* inks, int pixels) const
{
    if (transform)
        cmsDoTransform(transform, inks, colours, cmsUInt32Number(pixels));
    else if (bits == 8)
        LetThrough(static_cast<uint8_t*>(colours), static_cast<const uint8_t*>(inks), pixels,
                   inverted);
    else
        LetThrough(static_cast<uint16_t*>(colours), static_cast<const uint16_t*>(inks), pixels,
                   inverted);
}

std::string InkTransform::Note() const
{
    return transform ? "CMYK was converted to sRGB through its profile"
                     : "CMYK without a profile was converted to sRGB simply";
}
