// The tdblocks.json parser on arbitrary bytes: the file is taken whole or
// not at all.
#include "FuzzInput.h"

#include "TdBlocksParser.h"

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Host;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = Fuzz::writeScratchFile(QString::fromLatin1(TdBlocksParser::fileName), data, size);
    std::vector<TdBlocksEntry> entries;
    FileIssue issue;
    std::vector<FileIssue> refused;
    const bool ok = TdBlocksParser::parse(path, Fuzz::scratchDirectory(), entries, issue, refused);
    if (ok == !issue.message.isEmpty() || (!ok && (!entries.empty() || !refused.empty()))) {
        std::fprintf(stderr, "parse answered %d with %zu entries, %zu refused names and the issue '%s'\n",
                     int(ok), entries.size(), refused.size(), qPrintable(issue.message));
        std::abort();
    }
    return 0;
}
