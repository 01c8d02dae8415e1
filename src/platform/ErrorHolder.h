#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser {

// Collects the errors of one operation; passed by reference to whatever may
// fail, examined by the caller afterwards. Nothing in the module throws for
// bad data: this is where the reason goes instead.
class ErrorHolder {
public:
    void addError(const std::string& message) { m_errors.push_back(message); }
    // Something the operation got past: the result is usable, but the caller
    // should say what was left out.
    void addWarning(const std::string& message) { m_warnings.push_back(message); }

    bool hasError() const { return !m_errors.empty(); }
    const std::vector<std::string>& errors() const { return m_errors; }
    const std::vector<std::string>& warnings() const { return m_warnings; }
    // The first error, or the empty string.
    std::string message() const { return m_errors.empty() ? std::string() : m_errors.front(); }
    void clear()
    {
        m_errors.clear();
        m_warnings.clear();
    }

private:
    std::vector<std::string> m_errors;
    std::vector<std::string> m_warnings;
};

} // namespace LibraryBrowser
