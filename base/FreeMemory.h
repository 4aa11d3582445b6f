#pragma once

#include <cstdint>

// Memory that can be taken now without pushing other programs out.
int64_t FreeMemoryBytes();

// The most that can be taken now: what the system gives by dropping its caches, within the limit of
// the group of processes (container, service) that this one belongs to.
int64_t AvailableMemoryBytes();
