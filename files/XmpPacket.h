#pragma once

#include "files/ResultFacts.h"

#include <cstdint>
#include <string>
#include <vector>

// Packets of XMP: properties as XML text, each in a namespace. They are changed as text, so that
// everything else stays as it stands, down to the blanks.

// The packet as it is true of a result: upright, its size, its date of change; without what belongs
// to pictures that only the source's file has, such as gain maps, depth and moving scenes, and
// without its old preview. Empty when there is none.
std::vector<uint8_t> XmpOfResult(const std::vector<uint8_t>& packet, const ResultFacts& facts);

// A packet with the extension that a JPEG file keeps for it elsewhere, if it asks for the one of
// this name.
std::vector<uint8_t> WithXmpExtension(const std::vector<uint8_t>& packet,
                                      const std::vector<uint8_t>& extension,
                                      const std::string& name);

// The other way round: a short packet that asks for an extension, whose name it makes from its
// contents.
std::vector<uint8_t> XmpAskingFor(const std::vector<uint8_t>& extension, std::string* name);

// The orientation that a packet gives, or 1.
int XmpOrientation(const std::vector<uint8_t>& packet);
