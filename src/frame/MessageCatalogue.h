#pragma once

#include "frame/MessageCatalogueRows.h"
#include "platform/MessageTable.h"

#include <cstdint>

namespace LibraryBrowser {

// Full message numbers by mnemonic, for readable call sites.
namespace MessageId {
#define TDLB_MESSAGE_ID(row, mnemonic, text) constexpr std::uint32_t mnemonic = 0x5E0000u + row;
TDLB_MESSAGE_CATALOGUE(TDLB_MESSAGE_ID)
#undef TDLB_MESSAGE_ID
} // namespace MessageId

// The module's primary message table, as handed to the host's message service.
class MessageCatalogue {
public:
    static constexpr std::uint32_t Facility = 0x5E;
    static constexpr std::uint32_t RowCount = 129;
    static constexpr std::uint32_t ReservedRow = 4;

    static const MessageTable& table();
    static constexpr std::uint32_t numberOfRow(std::uint32_t row) { return (Facility << 16) + row; }
};

} // namespace LibraryBrowser
