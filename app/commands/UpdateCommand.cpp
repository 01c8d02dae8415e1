#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>

namespace LibraryBrowser::Tdlb {

namespace {

int run(const QCommandLineParser&, const QStringList&, CommandContext& context)
{
    Repository& repository = context.repository();
    const std::vector<TandrilObject> products = ObjectLookup(repository).products();
    // Each product's store is chosen now: a product that neither store holds
    // up to date, or whose data is damaged, is generated again here rather
    // than at the first read.
    for (const TandrilObject& product : products)
        repository.getChildrenIterator(product);
    // One fault met in many places is shown once.
    const RepositoryReport::IssueList warnings = repository.getRepositoryReport()->takeUniqueWarnings();
    std::size_t shown = 0;
    for (const RepositoryReport::Issue& warning : warnings) {
        // Said once on standard error already.
        if (warning.id == Repository::ReadOnlyWarningId)
            continue;
        context.print("Warning: " + QString::fromStdString(warning.message));
        ++shown;
    }
    context.print(QString("Updated: %1 products, %2 warnings").arg(products.size()).arg(shown));
    return Success;
}

} // namespace

Command updateCommand()
{
    return {"update", "Synchronise the stores, update the list of products and generate those out of date.", nullptr,
            run, false};
}

} // namespace LibraryBrowser::Tdlb
