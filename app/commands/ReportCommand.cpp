#include "Commands.h"

#include "CommandContext.h"

#include <QCommandLineParser>

namespace LibraryBrowser::Tdlb {

namespace {

int run(const QCommandLineParser&, const QStringList&, CommandContext& context)
{
    for (const std::string& line : context.repository().getRepositoryReport()->getLog()) {
        QString text = QString::fromStdString(line);
        if (text.endsWith('\n'))
            text.chop(1);
        context.print(text);
    }
    return Success;
}

} // namespace

Command reportCommand()
{
    return {"report", "Open the repository and print the log of the run.", nullptr, run, false};
}

} // namespace LibraryBrowser::Tdlb
