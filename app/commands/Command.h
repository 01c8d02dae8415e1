#pragma once

#include <QStringList>

class QCommandLineParser;

namespace LibraryBrowser::Tdlb {

class CommandContext;

// What a run of tdlb ends with.
enum ExitCode { Success = 0, Failure = 1, UsageError = 2 };

// One command of tdlb: its name, its options and the work it does. The
// command line parses the arguments with the parser the command configured.
struct Command {
    QString name;
    // One line for the list of commands.
    QString summary;
    // Adds the command's options and positional arguments; null for none.
    void (*configure)(QCommandLineParser& parser);
    // The positional arguments come without the command's name. A usage
    // error is reported through the context, which gives its exit code.
    int (*run)(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context);
    // False: any positional argument is a usage error, reported before run.
    bool takesArguments = true;
    // Only reads the repository. An answer given stands, whatever errors the
    // report holds about other products: they are counted on standard error
    // and the exit code stays 0, unless another process changed the store
    // under the read: then the answer may be short, and the run fails.
    bool readOnly = false;
    // Shows a window or paints an image, and so needs the window system's
    // toolkit; the others run without it, whose start (a platform, its
    // fonts) takes longer than the whole work of a small command.
    bool usesWindowSystem = false;
};

} // namespace LibraryBrowser::Tdlb
