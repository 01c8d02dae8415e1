#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>

namespace LibraryBrowser::Tdlb {

namespace {

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("product", "Remove this product's data only.", "[product]");
}

int run(const QCommandLineParser&, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() > 1)
        return context.usageError("takes at most one product");
    Repository& repository = context.repository();
    if (arguments.isEmpty()) {
        repository.destroyRepository();
        context.print("Destroyed the repository");
        return Success;
    }
    const Library product = ObjectLookup(repository).product(arguments.first());
    if (product.isNull())
        return context.fail("no product '" + arguments.first() + "' in the repository");
    const QString path = QString::fromStdString(product.getPath());
    repository.destroyProduct(product);
    context.print("Destroyed " + path);
    return Success;
}

} // namespace

Command destroyCommand()
{
    return {"destroy", "Remove the stored data of every product or of one.", configure, run};
}

} // namespace LibraryBrowser::Tdlb
