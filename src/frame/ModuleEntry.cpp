#include "frame/ModuleEntry.h"

#include "frame/Module.h"

using LibraryBrowser::Module;
using LibraryBrowser::ModuleFunction;
using LibraryBrowser::ModuleFunctionTable;

namespace {
// The module has no flat host functions: its scripted surface goes through
// the class systems.
const ModuleFunction moduleFunctions[] = {{nullptr, nullptr}};

// Identification words: the build's version in the first, the facility in the second.
const ModuleFunctionTable moduleFunctionTable = {moduleFunctions, {0x0001000000000000ull, 0x5Eull}, 0};
} // namespace

extern "C" {
const char* const libtd_lib_browse_version = TDLB_VERSION_STRING;
const char* const libtd_lib_browse_build_date = __DATE__;

void NRInitialize_td_lib_browse()
{
    Module::initialize();
}

void NRTerminate_td_lib_browse()
{
    Module::terminate();
}

const ModuleFunction* QueryNRFcns_td_lib_browse()
{
    return moduleFunctions;
}

const ModuleFunctionTable* QueryNRFcnTable_td_lib_browse()
{
    return &moduleFunctionTable;
}
}

void load_td_lib_browse_application()
{
    Module::loadApplication();
}
