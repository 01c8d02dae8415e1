// Progress is for people: generate shows it when its output is a terminal,
// here a pseudo terminal, and the same run off a terminal stays quiet.

#include "TdlbProcess.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cerrno>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace LibraryBrowser::Testing {
namespace {

struct TerminalRun {
    int exitCode = -1;
    QString text;
};

// Pointers to the strings and a null after them, as exec takes them.
std::vector<char*> nullTerminated(std::vector<QByteArray>& strings)
{
    std::vector<char*> pointers;
    for (QByteArray& bytes : strings)
        pointers.push_back(bytes.data());
    pointers.push_back(nullptr);
    return pointers;
}

// Runs tdlb with all three standard streams on a pseudo terminal.
TerminalRun runOnTerminal(const QStringList& arguments)
{
    // Everything the child needs is made before the fork: after it, the
    // child only calls exec.
    std::vector<QByteArray> argumentBytes{QByteArray(TDLB_EXECUTABLE)};
    for (const QString& argument : arguments)
        argumentBytes.push_back(argument.toLocal8Bit());
    std::vector<QByteArray> environmentBytes;
    for (const QString& entry : TdlbProcess::environment().toStringList())
        environmentBytes.push_back(entry.toLocal8Bit());
    const std::vector<char*> argv = nullTerminated(argumentBytes);
    const std::vector<char*> envp = nullTerminated(environmentBytes);

    TerminalRun run;
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child < 0)
        return run;
    if (child == 0) {
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    QByteArray output;
    char buffer[4096];
    for (;;) {
        const ssize_t count = read(terminal, buffer, sizeof buffer);
        if (count > 0)
            output.append(buffer, count);
        else if (count < 0 && errno == EINTR)
            continue;
        else
            break; // the terminal reports an error once the child has closed it
    }
    int status = 0;
    waitpid(child, &status, 0);
    close(terminal);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.text = QString::fromLocal8Bit(output).remove('\r');
    return run;
}

using TdlbTerminalTest = UpdatedTdlbTest;

TEST_F(TdlbTerminalTest, GenerateShowsProgressOnATerminalOnly)
{
    const TerminalRun onTerminal = runOnTerminal(tdlb.withRoot({"generate"}));
    ASSERT_EQ(onTerminal.exitCode, 0) << qPrintable(onTerminal.text);
    EXPECT_TRUE(onTerminal.text.contains(QRegularExpression(R"(\[1/6\] Arithmetica \(\d+\.\d s\))")))
        << qPrintable(onTerminal.text);
    EXPECT_TRUE(onTerminal.text.contains("[6/6] Signal Workbench ("));
    EXPECT_TRUE(onTerminal.text.contains(QRegularExpression(R"(Generated 6 products in \d+\.\d s)")));

    const TdlbResult offTerminal = tdlb.run({"generate"});
    EXPECT_EQ(offTerminal.exitCode, 0);
    EXPECT_TRUE(offTerminal.out.isEmpty()) << qPrintable(offTerminal.out);
}

} // namespace
} // namespace LibraryBrowser::Testing
