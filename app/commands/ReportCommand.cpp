#include "ReportCommand.h"

#include "CommandContext.h"

#include <QCommandLineParser>

namespace LibraryBrowser::Tdlb {

QString ReportCommand::name() const
{
    return "report";
}

QString ReportCommand::summary() const
{
    return "Open the repository and print the log of the run.";
}

void ReportCommand::configure(QCommandLineParser&) const {}

int ReportCommand::run(const QCommandLineParser&, const QStringList& arguments, CommandContext& context)
{
    if (!arguments.isEmpty())
        return context.usageError("takes no arguments");
    for (const std::string& line : context.repository().getRepositoryReport()->getLog()) {
        QString text = QString::fromStdString(line);
        if (text.endsWith('\n'))
            text.chop(1);
        context.print(text);
    }
    return Success;
}

} // namespace LibraryBrowser::Tdlb
