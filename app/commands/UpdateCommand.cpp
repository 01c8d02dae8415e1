#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>

namespace LibraryBrowser::Tdlb {

namespace {

int run(const QCommandLineParser&, const QStringList&, CommandContext& context)
{
    Repository& repository = context.repository();
    const std::size_t products = ObjectLookup(repository).products().size();
    // One fault met in many places is shown once.
    const RepositoryReport::IssueList warnings = repository.getRepositoryReport()->takeUniqueWarnings();
    for (const RepositoryReport::Issue& warning : warnings)
        context.print("Warning: " + QString::fromStdString(warning.message));
    context.print(QString("Updated: %1 products, %2 warnings").arg(products).arg(warnings.size()));
    return Success;
}

} // namespace

Command updateCommand()
{
    return {"update", "Synchronise the stores and update the list of products.", nullptr, run, false};
}

} // namespace LibraryBrowser::Tdlb
