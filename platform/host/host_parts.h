// The parts of the host layer, each put back to its start by a function of its own.
#ifndef ZYR_PLATFORM_HOST_PARTS_H
#define ZYR_PLATFORM_HOST_PARTS_H

void Reset_HostMemory();
void Reset_HostLog();
void Reset_HostProperties();
void Reset_HostNames();
void Reset_HostFiles();

// The caption device and the font are a library of their own, which a program with another caption device
// goes without; these two are null then.
[[gnu::weak]] void Reset_HostDevice();
[[gnu::weak]] void Reset_HostFont();

#endif
