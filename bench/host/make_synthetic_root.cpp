// Writes a synthetic root of block libraries for benchmarks and load tests:
//   td_make_synthetic_root --out DIR [--products P] [--blocks B] [--depth D]
//                          [--refs R|none] [--icons shapes|realistic] [--seed S]
// --refs none makes no references at all: each product reaches only its own
// library. (--refs 0 still references neighbours from the deepest level.)
#include "SyntheticRootGenerator.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

using LibraryBrowser::Host::SyntheticRootGenerator;

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments().mid(1);
    SyntheticRootGenerator::Settings settings;
    QString out;
    for (int i = 0; i + 1 < arguments.size(); i += 2) {
        const QString& flag = arguments[i];
        const QString& value = arguments[i + 1];
        bool ok = true;
        if (flag == "--out")
            out = value;
        else if (flag == "--products")
            settings.products = value.toInt(&ok);
        else if (flag == "--blocks")
            settings.blocksPerProduct = value.toInt(&ok);
        else if (flag == "--depth")
            settings.depth = value.toInt(&ok);
        else if (flag == "--refs" && value == "none")
            settings.crossReferences = false;
        else if (flag == "--refs")
            settings.referenceShare = value.toDouble(&ok);
        else if (flag == "--icons" && (value == "shapes" || value == "realistic"))
            settings.realisticIcons = value == "realistic";
        else if (flag == "--seed")
            settings.seed = value.toULongLong(&ok);
        else
            ok = false;
        if (!ok) {
            std::fprintf(stderr, "bad argument: %s %s\n", qPrintable(flag), qPrintable(value));
            return 2;
        }
    }
    if (out.isEmpty() || arguments.size() % 2 != 0) {
        std::fprintf(stderr, "usage: td_make_synthetic_root --out DIR [--products P] [--blocks B] [--depth D] "
                             "[--refs R|none] [--icons shapes|realistic] [--seed S]\n");
        return 2;
    }
    QString error;
    if (!SyntheticRootGenerator(settings).write(out, error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
