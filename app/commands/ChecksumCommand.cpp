#include "ChecksumCommand.h"

#include "CommandContext.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace LibraryBrowser::Tdlb {

QString ChecksumCommand::name() const
{
    return "checksum";
}

QString ChecksumCommand::summary() const
{
    return "Print the checksum the repository records for a file.";
}

void ChecksumCommand::configure(QCommandLineParser& parser) const
{
    parser.addPositionalArgument("file", "The file to sum.");
}

int ChecksumCommand::run(const QCommandLineParser&, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() != 1)
        return context.usageError("needs exactly one file");
    const QFileInfo file(arguments.first());
    if (!file.isFile() || !file.isReadable())
        return context.fail("cannot read " + arguments.first());
    // No repository is opened: the sum needs none, only a report.
    RepositoryReport report;
    const std::string sum = computeCheckSum(report, file.absoluteFilePath().toStdString());
    if (report.hasError() || sum.empty()) {
        const RepositoryReport::IssueList& errors = report.getErrors();
        return context.fail(errors.empty() ? "cannot sum " + arguments.first()
                                           : QString::fromStdString(errors.front().message));
    }
    context.print(QString::fromStdString(sum) + "  " + arguments.first());
    return Success;
}

} // namespace LibraryBrowser::Tdlb
