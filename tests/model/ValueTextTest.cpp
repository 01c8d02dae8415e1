#include "model/ValueText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

using namespace LibraryBrowser;

namespace {

// The list readers as first written, a character and a vector at a time
// and with stream input: what the readers must still give for any text.
namespace Reference {

std::vector<std::string> firstLevelStrings(const std::string& text)
{
    std::string line = text.substr(0, text.find_first_of("\r\n"));
    std::vector<std::string> elements;
    if (line.empty())
        return elements;
    if (line.size() >= 2 && line.front() == '[' && line.back() == ']')
        line = line.substr(1, line.size() - 2);
    int depth = 0;
    std::string current;
    for (char c : line) {
        if (c == '[')
            ++depth;
        else if (c == ']' && depth > 0)
            --depth;
        if (c == ',' && depth == 0) {
            elements.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    elements.push_back(current);
    return elements;
}

// Stream input of an unsigned number; a sign is refused rather than wrapped.
template <class T>
bool number(const std::string& text, T& value)
{
    std::istringstream in(text);
    in >> std::ws;
    if (in.peek() == '-')
        return false;
    T parsed{};
    if (!(in >> parsed))
        return false;
    value = parsed;
    return true;
}

FileInfoVector fileInfos(const std::string& text)
{
    std::vector<std::string> records;
    bool open = false;
    for (const std::string& piece : firstLevelStrings(text)) {
        if (open)
            records.back() += ',' + piece;
        else
            records.push_back(piece);
        open = std::count(records.back().begin(), records.back().end(), '|') < 3;
    }
    FileInfoVector infos;
    for (const std::string& record : records) {
        std::vector<std::string> fields;
        std::size_t start = 0;
        for (std::size_t bar; (bar = record.find('|', start)) != std::string::npos; start = bar + 1)
            fields.push_back(record.substr(start, bar - start));
        fields.push_back(record.substr(start));
        fields.resize(std::max<std::size_t>(fields.size(), 4));
        FileInfo info{fields[0], fields[1], 0, 0};
        if (!number(fields[2], info.date))
            info.date = 0;
        if (!number(fields[3], info.size))
            info.size = 0;
        infos.push_back(info);
    }
    return infos;
}

bool ids(const std::string& text, std::vector<unsigned>& ids)
{
    std::vector<unsigned> parsed;
    for (const std::string& element : firstLevelStrings(text)) {
        unsigned id = 0;
        if (!number(element, id))
            return false;
        parsed.push_back(id);
    }
    ids = parsed;
    return true;
}

} // namespace Reference

} // namespace

// Lists, file records and id lists read from generated text made of what
// matters to them (brackets, commas, bars, line breaks, blanks, signs,
// digits) give what the first readers gave, element for element.
TEST(ValueText, ListReadersGiveWhatTheFirstReadersGaveForAnyText)
{
    static const char alphabet[] = "[],,,|||\n\r \t+-0123456789ab";
    std::mt19937 random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (int length = int(random() % 24); length > 0; --length)
            text += alphabet[random() % (sizeof alphabet - 1)];
        if (random() % 3 == 0)
            text = "[" + text + "]";
        SCOPED_TRACE(text);
        ASSERT_EQ(ValueText::firstLevelStrings(text), Reference::firstLevelStrings(text));
        FileInfoVector files{{"before", "", 1, 1}};
        ASSERT_TRUE(ValueText::fromText(text, files));
        ASSERT_EQ(files, Reference::fileInfos(text));
        std::vector<unsigned> ids{99}, expectedIds{99};
        ASSERT_EQ(ValueText::idsFromText(text, ids), Reference::ids(text, expectedIds));
        ASSERT_EQ(ids, expectedIds);
    }
}
