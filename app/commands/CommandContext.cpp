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

void CommandContext::printReportErrors() const
{
    if (!m_repository)
        return;
    const RepositoryReportPtr report = m_repository->getRepositoryReport();
    std::set<std::string> shown;
    for (const std::string& line : report->getLog()) {
        if (line.find(ErrorMark) != std::string::npos && shown.insert(line).second)
            std::fputs(line.c_str(), stderr);
    }
    // An error whose line fell out of the bounded log is still shown.
    for (const RepositoryReport::Issue& error : report->getErrors()) {
        const std::string line = std::string(ErrorMark) + "   " + error.message + "\n";
        if (shown.insert(line).second)
            std::fputs(line.c_str(), stderr);
    }
}

} // namespace LibraryBrowser::Tdlb
