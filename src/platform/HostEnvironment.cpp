#include "platform/HostEnvironment.h"

#include <cstdio>
#include <cstdlib>

namespace LibraryBrowser {

void HostEnvironment::assertionFailed(const std::string& source, int line, const std::string& message)
{
    std::fprintf(stderr, "%s:%d: Forced Assertion: %s\n", source.c_str(), line, message.c_str());
    std::fflush(stderr);
    std::abort();
}

} // namespace LibraryBrowser
