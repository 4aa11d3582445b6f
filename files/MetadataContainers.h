#pragma once

#include "files/ByteSource.h"
#include "files/Metadata.h"

// Where each kind of file keeps its metadata. What a source has is put into `metadata`; the rest
// stays as it is. Sources may hold anything.

void ReadJpegMetadata(const ByteSource& source, Metadata* metadata);
void ReadPngMetadata(const ByteSource& source, Metadata* metadata);
void ReadWebpMetadata(const ByteSource& source, Metadata* metadata);

// The captions among the resources that JPEG and TIFF files keep for editors; empty when there are
// none.
std::vector<uint8_t> CaptionsInResources(const std::vector<uint8_t>& resources);

// The other way round: the one resource of these captions; empty for none.
std::vector<uint8_t> CaptionsAsResource(const std::vector<uint8_t>& captions);

constexpr double kInchMetres = 0.0254;
constexpr double kInchCentimetres = 2.54;
