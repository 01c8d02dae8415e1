#include "CommandLine.h"

#include "CommandContext.h"
#include "Commands.h"

#include "EmbeddedHost.h"
#include "frame/ModuleEntry.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

namespace LibraryBrowser::Tdlb {

namespace {

int usageError(const QString& message)
{
    std::fprintf(stderr, "tdlb: %s\nTry 'tdlb --help'.\n", qPrintable(message));
    return UsageError;
}

// The host options, taken out of the arguments before parsing; listed so
// that every --help shows them.
void addHostOptions(QCommandLineParser& parser)
{
    parser.addOption({"root", "The host's root directory (else NUMORA_ROOT, else the build's copy of the example root).", "dir"});
    parser.addOption({"prefdir", "The preferences directory (else NUMORA_PREFDIR).", "dir"});
    parser.addOption({"path", "Directories searched first for tdblocks data, separated by ':'.", "dirs"});
}

void print(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
}

} // namespace

CommandLine::CommandLine()
    : m_commands{updateCommand(),  listCommand(),     searchCommand(), findCommand(), treeCommand(), showCommand(),
                 generateCommand(), destroyCommand(), checksumCommand(), reportCommand(),
                 pageCommand(), browseCommand()}
{
}

const Command* CommandLine::find(const QString& name) const
{
    for (const Command& command : m_commands) {
        if (command.name == name)
            return &command;
    }
    return nullptr;
}

QString CommandLine::overview() const
{
    QString text = "The block library browser's repository on the command line.\n\nCommands:\n";
    for (const Command& command : m_commands)
        text += QString("  %1  %2\n").arg(command.name, -9).arg(command.summary);
    text += "\nExit codes: 0 when the command did its work; 1 when it could not, when update, generate or\n"
            "destroy leave errors in the repository's report, and when find matches nothing; 2 for a usage\n"
            "error. list, tree, search, find and show only read: errors in the report about other products\n"
            "leave their answer standing; they go to standard error with a line that counts them.\n";
    text += "\n'tdlb COMMAND --help' tells more of one command.";
    return text;
}

void CommandLine::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(overview());
    parser.addHelpOption();
    parser.addVersionOption();
    addHostOptions(parser);
    parser.addOption({"verbose", "Echo the repository's report as it is written."});
    parser.addPositionalArgument("command", "The command to run.", "command [options] [arguments]");
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
}

bool CommandLine::usesWindowSystem(const QStringList& arguments) const
{
    Host::HostOptions options;
    QStringList rest;
    QString error;
    QCommandLineParser parser;
    configure(parser);
    if (!Host::HostOptions::resolve(arguments, QProcessEnvironment::systemEnvironment(), options, rest, error)
        || !parser.parse(rest) || parser.positionalArguments().isEmpty())
        return false;
    const Command* command = find(parser.positionalArguments().first());
    return command && command->usesWindowSystem;
}

int CommandLine::run(const QStringList& arguments)
{
    Host::HostOptions options;
    QStringList rest;
    QString error;
    if (!Host::HostOptions::resolve(arguments, QProcessEnvironment::systemEnvironment(), options, rest, error))
        return usageError(error);

    QCommandLineParser parser;
    configure(parser);
    if (!parser.parse(rest))
        return usageError(parser.errorText());
    if (parser.isSet("help") || parser.isSet("help-all")) {
        print(parser.helpText());
        return Success;
    }
    if (parser.isSet("version")) {
        print(QString("tdlb %1 (built %2)\n")
                  .arg(QString::fromUtf8(libtd_lib_browse_version), QString::fromUtf8(libtd_lib_browse_build_date)));
        return Success;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty())
        return usageError("no command given");
    const Command* command = find(positional.first());
    if (!command)
        return usageError("unknown command '" + positional.first() + "'");

    // The command's name stands first among its positional arguments, so
    // that its help reads "tdlb [options] search pattern".
    QCommandLineParser commandParser;
    commandParser.setApplicationDescription(command->summary);
    commandParser.addHelpOption();
    commandParser.addPositionalArgument(command->name, "", command->name);
    if (command->configure)
        command->configure(commandParser);
    addHostOptions(commandParser);
    CommandContext context(command->name, options.verbose);
    if (!commandParser.parse(QStringList{rest.first()} + positional))
        return context.usageError(commandParser.errorText());
    if (commandParser.isSet("help") || commandParser.isSet("help-all")) {
        print(commandParser.helpText());
        return Success;
    }

    const QStringList commandArguments = commandParser.positionalArguments().mid(1);
    if (!command->takesArguments && !commandArguments.isEmpty())
        return context.usageError("takes no arguments");

    // A mistyped root would look like a root without products.
    if (!QFileInfo(options.root).isDir())
        return usageError("the root directory '" + options.root + "' does not exist");

    Host::EmbeddedHost host(options);
    host.install();
    context.setHost(&host);
    // The echoed report is a diagnostic: standard output keeps the results.
    host.environment().setConsole([](const std::string& text) {
        std::fputs(text.c_str(), stderr);
        std::fflush(stderr);
    });
    NRInitialize_td_lib_browse();
    int code = command->run(commandParser, commandArguments, context);
    if (code == Success && context.reportHasErrors()) {
        if (command->readOnly && !context.readWasIncomplete()) {
            context.noteReportErrors();
        } else {
            context.printReportErrors();
            code = Failure;
        }
    }
    std::fflush(stdout);
    context.closeRepository();
    NRTerminate_td_lib_browse();
    return code;
}

} // namespace LibraryBrowser::Tdlb
