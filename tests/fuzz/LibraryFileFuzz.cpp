// The host's block library parser on arbitrary bytes: a document or an issue
// that says where, never both, never a crash.
#include "FuzzInput.h"

#include "LibraryFileParser.h"

#include <cstdio>
#include <cstdlib>

using namespace LibraryBrowser;
using namespace LibraryBrowser::Host;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = Fuzz::bytesOf(data, size);
    for (const std::string& expectedName : {std::string(), std::string("fuzzed")}) {
        FileIssue issue;
        const auto document =
            LibraryFileParser::parseBytes(QStringLiteral("fuzzed.tdlib.json"), bytes, expectedName, issue);
        if (bool(document) == !issue.message.isEmpty()) {
            std::fprintf(stderr, "parser gave %s and the issue '%s'\n", document ? "a document" : "nothing",
                         qPrintable(issue.message));
            std::abort();
        }
    }
    return 0;
}
