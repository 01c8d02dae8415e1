#pragma once

#include <QString>

class QCommandLineParser;

namespace LibraryBrowser::Tdlb {

class CommandContext;

// What a run of tdlb ends with.
enum ExitCode { Success = 0, Failure = 1, UsageError = 2 };

// One command of tdlb: its name, its options and the work it does. The
// command line parses the arguments with the parser the command configured.
class Command {
public:
    virtual ~Command() = default;
    virtual QString name() const = 0;
    // One line for the list of commands.
    virtual QString summary() const = 0;
    // Adds the command's options and positional arguments.
    virtual void configure(QCommandLineParser& parser) const = 0;
    // The positional arguments come without the command's name. A usage
    // error is reported through the context, which gives its exit code.
    virtual int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) = 0;
};

} // namespace LibraryBrowser::Tdlb
