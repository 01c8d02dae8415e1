#pragma once

#include <cstdint>

// The module's exported entry points, called by the host that loads it.

namespace LibraryBrowser {

// A function the module offers to the host language as a flat function.
struct ModuleFunction {
    const char* name;
    void (*function)();
};

// What the host reads through QueryNRFcnTable_td_lib_browse.
struct ModuleFunctionTable {
    const ModuleFunction* functions; // terminated by an entry with a null name
    std::uint64_t identification[2];
    std::uint64_t reserved;
};

} // namespace LibraryBrowser

extern "C" {
extern const char* const libtd_lib_browse_version;
extern const char* const libtd_lib_browse_build_date;

void NRInitialize_td_lib_browse();
void NRTerminate_td_lib_browse();
const LibraryBrowser::ModuleFunction* QueryNRFcns_td_lib_browse();
const LibraryBrowser::ModuleFunctionTable* QueryNRFcnTable_td_lib_browse();
}

// The one entry point with a C++ name.
void load_td_lib_browse_application();
