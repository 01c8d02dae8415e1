#include "repository/xmlrepository/GeneratedNames.h"

#include <cstdint>

namespace LibraryBrowser {

namespace {
std::uint32_t directoryCounter = 0;
std::uint32_t fileCounter = 0;
} // namespace

std::string GeneratedNames::directoryName()
{
    return "d" + std::to_string(++directoryCounter);
}

std::string GeneratedNames::fileName()
{
    return "f" + std::to_string(++fileCounter);
}

} // namespace LibraryBrowser
