// The load gate: the plug-in loads only into a host whose version resource names the maker and
// interface level 16, and is lenient when the executable has no version resource at all.
#pragma once

// The maker's name and the interface level that the host's version resource must carry.
extern const char kGateCompanyName[];
constexpr int kGateFileVersion = 16;

// Nonzero when the strings read from "\StringFileInfo\040904E4" let the library load: the
// FileVersion read as an integer (as atoi reads it) is 16 and the CompanyName equals
// kGateCompanyName exactly, case included. A missing string (null) refuses.
int HostGateAccepts(const char* fileVersion, const char* companyName);

// The whole gate for the executable that loads the library; nonzero to load. Its name or a
// version resource that cannot be had, allocated or read lets the library load.
int HostGateAcceptsProcess();
