#include "repository/RepositoryReport.h"

#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <algorithm>
#include <set>

namespace LibraryBrowser {

namespace {
const char* const WarningPrefix = "**Warning**   ";
const char* const ErrorPrefix = "??? **Error**   ";
} // namespace

std::shared_ptr<RepositoryReport> RepositoryReport::create()
{
    return std::make_shared<RepositoryReport>();
}

std::string RepositoryReport::getIndentation() const
{
    return indentation > 0 ? std::string(std::size_t(indentation) * 2, ' ') : std::string();
}

void RepositoryReport::appendLine(const std::string& line)
{
    if (m_consoleEcho)
        Platform::environment().print(line);
    // Bounded so that a long generation cannot grow the log without end.
    while (m_log.size() > std::size_t(MaximumLogLines - 1))
        m_log.pop_front();
    m_log.push_back(line);
}

void RepositoryReport::log(const std::string& message)
{
    if (isDropped())
        return;
    appendLine(getIndentation() + "Action: " + message + "\n");
}

void RepositoryReport::logWarning(const std::string& id, const std::string& message)
{
    // The flag is raised even for a dropped line: it steers callers.
    m_hasWarningFlag = true;
    if (isDropped())
        return;
    appendLine(WarningPrefix + message + "\n");
    m_warnings.push_back({id, message});
}

void RepositoryReport::logWarning(const std::string& message)
{
    logWarning("InternalWarning", message);
}

void RepositoryReport::logError(const std::string& id, const std::string& message)
{
    m_hasErrorFlag = true;
    if (isDropped())
        return;
    appendLine(ErrorPrefix + message + "\n");
    m_errors.push_back({id, message});
    constexpr std::size_t HistoryBound = 200;
    if (m_errorHistory.size() < HistoryBound
        && std::find(m_errorHistory.begin(), m_errorHistory.end(), message) == m_errorHistory.end())
        m_errorHistory.push_back(message);
}

void RepositoryReport::logError(const std::string& message)
{
    logError("InternalError", message);
}

void RepositoryReport::clearError()
{
    m_hasErrorFlag = false;
    m_errors.clear();
}

void RepositoryReport::clearWarning()
{
    m_hasWarningFlag = false;
    m_warnings.clear();
}

RepositoryReport::IssueList RepositoryReport::takeErrors()
{
    IssueList taken;
    taken.swap(m_errors);
    m_hasErrorFlag = false;
    return taken;
}

RepositoryReport::IssueList RepositoryReport::takeWarnings()
{
    IssueList taken;
    taken.swap(m_warnings);
    m_hasWarningFlag = false;
    return taken;
}

RepositoryReport::IssueList RepositoryReport::takeUniqueWarnings()
{
    IssueList unique;
    std::set<std::string> seen;
    for (Issue& issue : takeWarnings())
        if (seen.insert(issue.message).second)
            unique.push_back(std::move(issue));
    return unique;
}

} // namespace LibraryBrowser
