#pragma once

#include "repository/RepositoryReport.h"

#include <string>
#include <vector>

namespace LibraryBrowser::Testing {

// How many log lines of the report contain the text; whether one does.
int loggedCount(const RepositoryReport& report, const std::string& text);
inline bool logged(const RepositoryReport& report, const std::string& text) { return loggedCount(report, text) > 0; }
// The messages of a list of issues, oldest first.
std::vector<std::string> messages(const RepositoryReport::IssueList& issues);
inline std::vector<std::string> errorMessages(const RepositoryReport& report) { return messages(report.getErrors()); }

} // namespace LibraryBrowser::Testing
