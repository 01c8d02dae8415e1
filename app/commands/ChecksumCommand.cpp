#include "Commands.h"

#include "CommandContext.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace LibraryBrowser::Tdlb {

namespace {

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("file", "The file to sum.");
}

int run(const QCommandLineParser&, const QStringList& arguments, CommandContext& context)
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

} // namespace

Command checksumCommand()
{
    return {"checksum", "Print the checksum the repository records for a file.", configure, run};
}

} // namespace LibraryBrowser::Tdlb
