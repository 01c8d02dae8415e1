#include "CommandContext.h"

#include "Command.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <set>
#include <unistd.h>

namespace LibraryBrowser::Tdlb {

namespace {

const char* const ErrorMark = "??? **Error**";

} // namespace

CommandContext::CommandContext(QString commandName, bool verbose)
    : m_commandName(std::move(commandName)), m_verbose(verbose)
{
}

CommandContext::~CommandContext() = default;

Repository& CommandContext::repository()
{
    if (!m_repository)
        m_repository = Repository::open();
    return *m_repository;
}

void CommandContext::closeRepository()
{
    m_repository.reset();
}

bool CommandContext::interactive() const
{
    return isatty(fileno(stdout)) != 0;
}

void CommandContext::print(const QString& text) const
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fputc('\n', stdout);
}

void CommandContext::printUtf8(const std::string& text) const
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

void CommandContext::printJson(const QJsonObject& document) const
{
    std::fputs(QJsonDocument(document).toJson(QJsonDocument::Indented).constData(), stdout);
}

int CommandContext::fail(const QString& message) const
{
    std::fprintf(stderr, "tdlb %s: %s\n", qPrintable(m_commandName), qPrintable(message));
    return Failure;
}

int CommandContext::usageError(const QString& message) const
{
    std::fprintf(stderr, "tdlb %s: %s\nTry 'tdlb %s --help'.\n", qPrintable(m_commandName), qPrintable(message),
                 qPrintable(m_commandName));
    return UsageError;
}

bool CommandContext::reportHasErrors() const
{
    if (!m_repository)
        return false;
    const RepositoryReportPtr report = m_repository->getRepositoryReport();
    if (report->hasError())
        return true;
    for (const std::string& line : report->getLog()) {
        if (line.find(ErrorMark) != std::string::npos)
            return true;
    }
    return false;
}

bool CommandContext::readWasIncomplete() const
{
    return m_repository && m_repository->getRepositoryReport()->hadIncompleteRead();
}

std::vector<std::string> CommandContext::reportErrorLines() const
{
    std::vector<std::string> lines;
    if (!m_repository)
        return lines;
    const RepositoryReportPtr report = m_repository->getRepositoryReport();
    std::set<std::string> shown;
    for (const std::string& line : report->getLog()) {
        if (line.find(ErrorMark) != std::string::npos && shown.insert(line).second)
            lines.push_back(line);
    }
    // An error whose line fell out of the bounded log is still shown.
    for (const RepositoryReport::Issue& error : report->getErrors()) {
        const std::string line = std::string(ErrorMark) + "   " + error.message + "\n";
        if (shown.insert(line).second)
            lines.push_back(line);
    }
    return lines;
}

void CommandContext::printReportErrors() const
{
    for (const std::string& line : reportErrorLines())
        std::fputs(line.c_str(), stderr);
}

void CommandContext::noteReportErrors() const
{
    const std::size_t count = reportErrorLines().size();
    std::fprintf(stderr, "tdlb %s: the repository's report holds %zu error%s; 'tdlb report' shows %s\n",
                 qPrintable(m_commandName), count, count == 1 ? "" : "s", count == 1 ? "it" : "them");
}

} // namespace LibraryBrowser::Tdlb
