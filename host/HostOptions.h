#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace LibraryBrowser::Host {

// Where the host finds its files: the root, the preferences directory and
// the extra directories of the path, from the command line, else from the
// environment (NUMORA_ROOT, NUMORA_PREFDIR, NUMORA_PATH), else defaults.
struct HostOptions {
    QString root;
    QString preferencesDirectory;
    QStringList path;
    bool verbose = false;

    // Takes --root, --prefdir, --path (each as "--flag value" or
    // "--flag=value") and --verbose out of the arguments; what is left over
    // goes to remaining, for the program. False with a reason for a flag
    // without its value, and when no root is named and the default root has
    // not been built.
    static bool resolve(const QStringList& arguments, const QProcessEnvironment& environment, HostOptions& out,
                        QStringList& remaining, QString& error);
    // The defaults alone, with the environment applied.
    static HostOptions fromEnvironment(const QProcessEnvironment& environment);
    // The example root that ships with the sources. Nothing may write there.
    static QString bundledRoot();
    // The root used when none is named: the build's copy of the example root,
    // with its shipped store, so that no run writes into the sources.
    static QString defaultRoot();
};

} // namespace LibraryBrowser::Host
