#include "frame/MessageCatalogue.h"

#include <array>

namespace LibraryBrowser {

namespace {

struct Rows {
    std::array<std::uint32_t, MessageCatalogue::RowCount> numbers{};
    std::array<const char*, MessageCatalogue::RowCount> names{};
    std::array<const char*, MessageCatalogue::RowCount> texts{};

    Rows()
    {
        for (std::uint32_t row = 1; row <= MessageCatalogue::RowCount; ++row) {
            numbers[row - 1] = MessageCatalogue::numberOfRow(row);
            names[row - 1] = "";
            texts[row - 1] = nullptr; // the reserved row stays without text
        }
#define TDLB_MESSAGE_ROW(row, mnemonic, text) \
    names[row - 1] = #mnemonic;               \
    texts[row - 1] = text;
        TDLB_MESSAGE_CATALOGUE(TDLB_MESSAGE_ROW)
#undef TDLB_MESSAGE_ROW
    }
};

} // namespace

const MessageTable& MessageCatalogue::table()
{
    static const Rows rows;
    static const MessageTable table{RowCount, Facility, rows.numbers.data(), rows.names.data(),
                                    rows.texts.data(), ""};
    return table;
}

} // namespace LibraryBrowser
