#include "Commands.h"

#include "CommandContext.h"
#include "ObjectLookup.h"

#include <QCommandLineParser>
#include <QElapsedTimer>

namespace LibraryBrowser::Tdlb {

namespace {

bool parseMode(const QString& text, GenerationMode& mode)
{
    if (text == "Minimal")
        mode = GenerationMode::Minimal;
    else if (text == "IgnoreTimestamp")
        mode = GenerationMode::IgnoreTimestamp;
    else if (text == "Regenerate")
        mode = GenerationMode::Regenerate;
    else
        return false;
    return true;
}

QString seconds(const QElapsedTimer& timer)
{
    return QString::number(double(timer.elapsed()) / 1000.0, 'f', 1) + " s";
}

void configure(QCommandLineParser& parser)
{
    parser.addPositionalArgument("product", "Generate this product only.", "[product]");
    parser.addOption({"mode", "How much to redo: Minimal, IgnoreTimestamp or Regenerate.", "mode", "Minimal"});
    // Taken by the host options before the command sees it; listed for --help.
    parser.addOption({"verbose", "Echo the report as it is written."});
}

int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context)
{
    if (arguments.size() > 1)
        return context.usageError("takes at most one product");
    GenerationMode mode = GenerationMode::Minimal;
    if (!parseMode(parser.value("mode"), mode))
        return context.usageError("unknown mode '" + parser.value("mode") + "'");

    Repository& repository = context.repository();
    repository.getRepositoryReport()->logToConsoleInteractively(context.verbose());
    const bool progress = context.interactive();
    QElapsedTimer timer;
    timer.start();

    std::vector<TandrilObject> products;
    if (!arguments.isEmpty()) {
        const Library product = ObjectLookup(repository).product(arguments.first());
        if (product.isNull())
            return context.fail("no product '" + arguments.first() + "' in the repository");
        products.push_back(product);
    } else if (mode == GenerationMode::Regenerate) {
        // Regeneration starts from nothing: the whole store at once.
        if (progress)
            context.print("Regenerating every product");
        repository.generateRepository(mode);
        if (progress)
            context.print("Done in " + seconds(timer));
        return Success;
    } else {
        products = ObjectLookup(repository).products();
    }

    const int count = int(products.size());
    for (int n = 0; n < count; ++n) {
        if (progress) {
            context.print(QString("[%1/%2] %3 (%4)")
                              .arg(n + 1)
                              .arg(count)
                              .arg(QString::fromStdString(products[n].getDisplayName()), seconds(timer)));
        }
        repository.generateProduct(products[n].toLibrary(), mode);
    }
    if (progress)
        context.print(QString("Generated %1 products in %2").arg(count).arg(seconds(timer)));
    return Success;
}

} // namespace

Command generateCommand()
{
    return {"generate", "Generate the stored data of every product or of one.", configure, run};
}

} // namespace LibraryBrowser::Tdlb
