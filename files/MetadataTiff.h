#pragma once

#include "files/ByteSource.h"
#include "files/Metadata.h"

// Of TIFF files and the camera raw files that are made like them. The source may hold anything.
void ReadTiffMetadata(const ByteSource& source, Metadata* metadata);
