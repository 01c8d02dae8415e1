// Progress is for people: generate shows it when its output is a terminal,
// here a pseudo terminal, and the same run off a terminal stays quiet.

#include "TdlbProcess.h"

#include <QRegularExpression>

namespace LibraryBrowser::Testing {
namespace {

using TdlbTerminalTest = UpdatedTdlbTest;

TEST_F(TdlbTerminalTest, GenerateShowsProgressOnATerminalOnly)
{
    // Python's pty module runs tdlb with all three streams on a pseudo
    // terminal and copies what it shows.
    QProcess terminal;
    terminal.setProcessEnvironment(TdlbProcess::environment());
    const char* script = "import os, pty, sys; sys.exit(os.waitstatus_to_exitcode(pty.spawn(sys.argv[1:])))";
    terminal.start("/usr/bin/python3", QStringList{"-c", script, TDLB_EXECUTABLE} + tdlb.withRoot({"generate"}));
    terminal.closeWriteChannel();
    ASSERT_TRUE(terminal.waitForFinished(TDLB_PROCESS_WAIT_MS));
    const QString text = QString::fromLocal8Bit(terminal.readAllStandardOutput()).remove('\r');
    ASSERT_EQ(terminal.exitCode(), 0) << qPrintable(text) << qPrintable(terminal.readAllStandardError());
    for (const char* line : {R"(\[1/6\] Arithmetica \(\d+\.\d s\))", R"(\[6/6\] Signal Workbench \()",
                             R"(Generated 6 products in \d+\.\d s)"})
        EXPECT_TRUE(text.contains(QRegularExpression(line))) << line << "\n" << qPrintable(text);
    const TdlbResult offTerminal = tdlb.run({"generate"});
    EXPECT_TRUE(offTerminal.exitCode == 0 && offTerminal.out.isEmpty()) << qPrintable(offTerminal.out);
}

} // namespace
} // namespace LibraryBrowser::Testing
