#include "model/ValueText.h"

#include <sstream>

namespace LibraryBrowser::ValueText {

namespace {

template <class T>
std::string streamed(const T& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

// Stream input that must consume the whole text (surrounding blanks allowed).
template <class T>
bool streamIn(const std::string& text, T& value)
{
    std::istringstream in(text);
    T parsed{};
    if (!(in >> parsed))
        return false;
    in >> std::ws;
    if (!in.eof())
        return false;
    value = parsed;
    return true;
}

std::string firstLine(const std::string& text)
{
    const auto end = text.find_first_of("\r\n");
    return end == std::string::npos ? text : text.substr(0, end);
}

template <class T, class Fn>
std::string joined(const std::vector<T>& values, Fn&& form)
{
    if (values.empty())
        return std::string();
    std::string text = "[";
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i)
            text += ',';
        text += form(values[i]);
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

std::string toText(const QRectF& value)
{
    std::ostringstream out;
    out << value.x() << ',' << value.y() << ',' << value.width() << ',' << value.height();
    return out.str();
}

std::string toText(const StringVector& value)
{
    return joined(value, [](const std::string& s) { return s; });
}

std::string toText(const FileInfoVector& value)
{
    return joined(value, [](const FileInfo& f) {
        return f.fileSpec + '|' + f.checkSum + '|' + std::to_string(f.date) + '|' + std::to_string(f.size);
    });
}

std::string idsToText(const std::vector<unsigned>& ids)
{
    return joined(ids, [](unsigned id) { return std::to_string(id); });
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

bool fromText(const std::string& text, QRectF& value)
{
    std::istringstream in(text);
    double x = 0, y = 0, w = 0, h = 0;
    char c1 = 0, c2 = 0, c3 = 0;
    if (!(in >> x >> c1 >> y >> c2 >> w >> c3 >> h) || c1 != ',' || c2 != ',' || c3 != ',')
        return false;
    in >> std::ws;
    if (!in.eof())
        return false;
    value = QRectF(x, y, w, h);
    return true;
}

bool fromText(const std::string& text, StringVector& value)
{
    value = firstLevelStrings(text);
    return true;
}

bool fromText(const std::string& text, FileInfoVector& value)
{
    FileInfoVector parsed;
    for (const std::string& element : firstLevelStrings(text)) {
        std::vector<std::string> fields;
        std::size_t start = 0;
        for (std::size_t bar; (bar = element.find('|', start)) != std::string::npos; start = bar + 1)
            fields.push_back(element.substr(start, bar - start));
        fields.push_back(element.substr(start));
        FileInfo info;
        if (fields.size() != 4 || !streamIn(fields[2], info.date) || !streamIn(fields[3], info.size))
            return false;
        info.fileSpec = fields[0];
        info.checkSum = fields[1];
        parsed.push_back(std::move(info));
    }
    value = std::move(parsed);
    return true;
}

bool idsFromText(const std::string& text, std::vector<unsigned>& ids)
{
    std::vector<unsigned> parsed;
    for (const std::string& element : firstLevelStrings(text)) {
        unsigned id = 0;
        if (!streamIn(element, id))
            return false;
        parsed.push_back(id);
    }
    ids = std::move(parsed);
    return true;
}

std::vector<std::string> firstLevelStrings(const std::string& text)
{
    std::string line = firstLine(text);
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
            elements.push_back(std::move(current));
            current.clear();
        } else {
            current += c;
        }
    }
    elements.push_back(std::move(current));
    return elements;
}

} // namespace LibraryBrowser::ValueText
