#pragma once

#include <string>

namespace LibraryBrowser::Testing {

// Makes a file or directory unchangeable for the life of the object: no
// write permission and, for a superuser whom permissions don't stop, the
// immutable attribute. active() is false where neither can be had.
class ReadOnlyPath {
public:
    explicit ReadOnlyPath(std::string path);
    ~ReadOnlyPath();
    ReadOnlyPath(const ReadOnlyPath&) = delete;
    ReadOnlyPath& operator=(const ReadOnlyPath&) = delete;

    bool active() const { return m_active; }

private:
    bool setImmutable(bool on);

    std::string m_path;
    bool m_immutable = false;
    bool m_active = false;
};

} // namespace LibraryBrowser::Testing
