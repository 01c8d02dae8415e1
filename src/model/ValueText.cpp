#include "model/ValueText.h"

#include "platform/ByteScan.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>

namespace LibraryBrowser::ValueText {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Reads one number from [first, last) after optional blanks, as stream input
// would, but without the cost of a stream per value. Unsigned types refuse a
// sign rather than wrap it. Returns the position after the number, or null.
template <class T>
const char* parseNumber(const char* first, const char* last, T& value)
{
    while (first != last && isBlank(*first))
        ++first;
    if constexpr (std::is_integral_v<T>) {
        if (first != last && *first == '+')
            ++first;
    }
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() ? end : nullptr;
}

// Stream input: one number at the start of the text, after optional blanks;
// whatever follows it is not looked at. False if there is no number there or
// it does not fit the type.
template <class T>
bool streamIn(std::string_view text, T& value)
{
    T parsed{};
    if (!parseNumber(text.data(), text.data() + text.size(), parsed))
        return false;
    value = parsed;
    return true;
}

// Default stream output of a real: six significant digits, "%g" style.
void appendReal(std::string& out, double value)
{
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 6);
    out.append(buffer, result.ptr);
}

bool holdsListSyntax(std::uint64_t bytes)
{
    return ByteScan::hasByte(bytes, '[') || ByteScan::hasByte(bytes, ']') || ByteScan::hasByte(bytes, ',');
}

// The elements at the top nesting level of the first line of a list's text
// form, as views into it, handed to `take` until it returns false. False
// if it was stopped.
template <class Fn>
bool forEachFirstLevelString(std::string_view text, Fn&& take)
{
    std::string_view line = text;
    for (char lineBreak : {'\n', '\r'})
        if (const void* at = std::memchr(line.data(), lineBreak, line.size()))
            line = line.substr(0, std::size_t(static_cast<const char*>(at) - line.data()));
    if (line.empty())
        return true;
    if (line.size() >= 2 && line.front() == '[' && line.back() == ']')
        line = line.substr(1, line.size() - 2);
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        // Elements are mostly long runs without brackets or commas.
        while (line.size() - i >= 8 && !holdsListSyntax(ByteScan::eightBytesAt(line.data() + i)))
            i += 8;
        if (i == line.size())
            break;
        const char c = line[i];
        if (c == '[') {
            ++depth;
        } else if (c == ']') {
            if (depth > 0)
                --depth;
        } else if (c == ',' && depth == 0) {
            if (!take(line.substr(start, i - start)))
                return false;
            start = i + 1;
        }
    }
    return take(line.substr(start));
}

// Decimal, as stream output writes an integer.
template <class T>
void appendInteger(std::string& out, T value)
{
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr);
}

// "[" + each element appended by `append` + "]", commas between; the empty
// vector gives the empty text. Built in place: a manifest writes one per
// library.
template <class T, class Fn>
std::string joined(const std::vector<T>& values, Fn&& append)
{
    if (values.empty())
        return std::string();
    std::string text = "[";
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i)
            text += ',';
        append(text, values[i]);
    }
    text += ']';
    return text;
}

} // namespace

std::string toText(bool value) { return value ? "1" : "0"; }
std::string toText(std::int32_t value) { return std::to_string(value); }
std::string toText(std::int64_t value) { return std::to_string(value); }
std::string toText(const std::string& value) { return value; }
std::string toText(const StringId& value) { return value.str(); }
std::string toText(const SharedText& value) { return value.str(); }

std::string toText(const QRectF& value)
{
    std::string text;
    appendReal(text, value.x());
    text += ',';
    appendReal(text, value.y());
    text += ',';
    appendReal(text, value.width());
    text += ',';
    appendReal(text, value.height());
    return text;
}

std::string toText(const StringVector& value)
{
    return joined(value, [](std::string& text, const std::string& s) { text += s; });
}

std::string toText(const FileInfoVector& value)
{
    return joined(value, [](std::string& text, const FileInfo& f) {
        text += f.fileSpec;
        text += '|';
        text += f.checkSum;
        text += '|';
        appendInteger(text, f.date);
        text += '|';
        appendInteger(text, f.size);
    });
}

std::string idsToText(const std::vector<unsigned>& ids)
{
    return joined(ids, [](std::string& text, unsigned id) { appendInteger(text, id); });
}

bool fromText(const std::string& text, bool& value)
{
    int number = 0;
    if (!streamIn(text, number) || (number != 0 && number != 1))
        return false;
    value = number == 1;
    return true;
}

bool fromText(const std::string& text, std::int32_t& value) { return streamIn(text, value); }
bool fromText(const std::string& text, std::int64_t& value) { return streamIn(text, value); }

bool fromText(const std::string& text, std::string& value)
{
    value = text;
    return true;
}

bool fromText(const std::string& text, StringId& value)
{
    value = StringId(text);
    return true;
}

bool fromText(const std::string& text, SharedText& value)
{
    value = SharedText(text);
    return true;
}

bool fromText(const std::string& text, QRectF& value)
{
    // Number, character, number, character, number, character, number: the
    // separator is whatever single character stands there.
    double numbers[4];
    const char* p = text.data();
    const char* last = p + text.size();
    for (int i = 0; i < 4; ++i) {
        if (i > 0) {
            while (p != last && isBlank(*p))
                ++p;
            if (p == last)
                return false;
            ++p;
        }
        p = parseNumber(p, last, numbers[i]);
        if (!p)
            return false;
    }
    value = QRectF(numbers[0], numbers[1], numbers[2], numbers[3]);
    return true;
}

bool fromText(const std::string& text, StringVector& value)
{
    value = firstLevelStrings(text);
    return true;
}

namespace {

// One record "fileSpec|checkSum|date|size", read field by field as far as
// it goes: missing fields are empty, fields past the fourth are ignored, a
// number that does not read is zero.
FileInfo fileInfoOf(std::string_view record)
{
    std::string_view fields[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t bar = record.find('|');
        fields[i] = record.substr(0, bar);
        if (bar == std::string_view::npos)
            break;
        record.remove_prefix(bar + 1);
    }
    FileInfo info;
    info.fileSpec = fields[0];
    info.checkSum = fields[1];
    if (!streamIn(fields[2], info.date))
        info.date = 0;
    if (!streamIn(fields[3], info.size))
        info.size = 0;
    return info;
}

} // namespace

bool fromText(const std::string& text, FileInfoVector& value)
{
    // A record has three bars. A comma in a file name has cut its record in
    // two at the top level; the pieces are joined again until the record is
    // whole, so such a name survives. A record that stays short or holds
    // more bars is read field by field as far as it goes. The pieces of one
    // record stand side by side in the text, one comma apart.
    FileInfoVector parsed;
    const char* recordBegin = nullptr;
    const char* recordEnd = nullptr;
    std::size_t bars = 0;
    forEachFirstLevelString(text, [&](std::string_view piece) {
        const std::size_t pieceBars = std::size_t(std::count(piece.begin(), piece.end(), '|'));
        if (recordBegin && bars < 3) {
            bars += pieceBars;
        } else {
            if (recordBegin)
                parsed.push_back(fileInfoOf(std::string_view(recordBegin, std::size_t(recordEnd - recordBegin))));
            recordBegin = piece.data();
            bars = pieceBars;
        }
        recordEnd = piece.data() + piece.size();
        return true;
    });
    if (recordBegin)
        parsed.push_back(fileInfoOf(std::string_view(recordBegin, std::size_t(recordEnd - recordBegin))));
    value = std::move(parsed);
    return true;
}

bool idsFromText(const std::string& text, std::vector<unsigned>& ids)
{
    std::vector<unsigned> parsed;
    const bool read = forEachFirstLevelString(text, [&](std::string_view element) {
        unsigned id = 0;
        if (!streamIn(element, id))
            return false;
        parsed.push_back(id);
        return true;
    });
    if (!read)
        return false;
    ids = std::move(parsed);
    return true;
}

std::vector<std::string> firstLevelStrings(const std::string& text)
{
    std::vector<std::string> elements;
    forEachFirstLevelString(text, [&](std::string_view element) {
        elements.emplace_back(element);
        return true;
    });
    return elements;
}

} // namespace LibraryBrowser::ValueText
