#include "FileFaults.h"

namespace LibraryBrowser {

namespace {
FileFaults::Hook& installedHook()
{
    static FileFaults::Hook hook;
    return hook;
}
} // namespace

void FileFaults::setHook(Hook hook)
{
    installedHook() = std::move(hook);
}

bool FileFaults::failNow(Operation operation, const std::string& path)
{
    const Hook& hook = installedHook();
    return hook && hook(operation, path);
}

const char* FileFaults::name(Operation operation)
{
    switch (operation) {
    case Create:
        return "create";
    case Write:
        return "write";
    case Rename:
        return "rename";
    case Copy:
        return "copy";
    case Remove:
        return "remove";
    case ArchiveClose:
        return "archive close";
    }
    return "unknown";
}

} // namespace LibraryBrowser
