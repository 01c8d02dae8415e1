#include "support/ReportLines.h"

#include <algorithm>

namespace LibraryBrowser::Testing {

int loggedCount(const RepositoryReport& report, const std::string& text)
{
    const auto& log = report.getLog();
    return int(std::count_if(log.begin(), log.end(), [&](const std::string& line) { return line.find(text) != line.npos; }));
}

std::vector<std::string> messages(const RepositoryReport::IssueList& issues)
{
    std::vector<std::string> texts;
    for (const RepositoryReport::Issue& issue : issues)
        texts.push_back(issue.message);
    return texts;
}

} // namespace LibraryBrowser::Testing
