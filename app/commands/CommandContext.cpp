#include "CommandContext.h"

#include "Command.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
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
    return m_repository && (m_repository->getRepositoryReport()->hasError() || !reportErrorLines().empty());
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
    // The history, not the log: a generation later in the run clears the
    // errors a read met before it, and a long one pushes their lines out of
    // the bounded log.
    for (const std::string& message : m_repository->getRepositoryReport()->getErrorHistory())
        lines.push_back(std::string(ErrorMark) + "   " + message + "\n");
    return lines;
}

void CommandContext::printReportErrors() const
{
    for (const std::string& line : reportErrorLines())
        std::fputs(line.c_str(), stderr);
}

void CommandContext::noteReportErrors() const
{
    // Shown here: an error a read met (a damaged archive entry) is of this
    // run, and 'tdlb report' in another run would not meet it again.
    const std::vector<std::string> lines = reportErrorLines();
    for (const std::string& line : lines)
        std::fputs(line.c_str(), stderr);
    const std::size_t count = lines.size();
    std::fprintf(stderr, "tdlb %s: the repository's report holds %zu error%s, shown above\n",
                 qPrintable(m_commandName), count, count == 1 ? "" : "s");
}

} // namespace LibraryBrowser::Tdlb
