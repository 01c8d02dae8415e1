#include "BlockPath.h"

namespace LibraryBrowser::Host {

std::vector<std::string> BlockPath::split(const std::string& path)
{
    std::vector<std::string> segments;
    std::string current;
    std::size_t i = 0;
    while (i < path.size()) {
        if (path[i] != '/') {
            current += path[i++];
            continue;
        }
        std::size_t run = 0;
        while (i < path.size() && path[i] == '/') {
            ++run;
            ++i;
        }
        if (run % 2 == 0) {
            current.append(run / 2, '/');
        } else {
            segments.push_back(current);
            current.clear();
        }
    }
    segments.push_back(current);
    return segments;
}

std::string BlockPath::escape(const std::string& name)
{
    std::string out;
    out.reserve(name.size());
    for (char c : name) {
        out += c;
        if (c == '/')
            out += '/';
    }
    return out;
}

std::string BlockPath::join(const std::vector<std::string>& names)
{
    std::string out;
    for (const std::string& name : names) {
        if (!out.empty())
            out += '/';
        out += escape(name);
    }
    return out;
}

std::string BlockPath::matchKey(const std::string& name)
{
    std::string key = name;
    for (char& c : key)
        if (c == '\n')
            c = ' ';
    return key;
}

bool BlockPath::isAddressable(const std::string& name)
{
    return !name.empty() && name.front() != '/' && name.back() != '/';
}

} // namespace LibraryBrowser::Host
