#pragma once

#include "BlockTree.h"
#include "CommandLog.h"
#include "EmbeddedEnvironment.h"
#include "HostOptions.h"
#include "LibraryCatalog.h"
#include "ModelWindows.h"
#include "PathCacheFile.h"
#include "RepositoryOperations.h"
#include "SearchPath.h"
#include "SystemRegistry.h"
#include "WindowCommands.h"

#include "platform/HostInterpreter.h"

namespace LibraryBrowser::Host {

// The host that programs and tests run the module in: it answers "tdprivate"
// and the window commands from the block library files on its path, and
// serves the root and preferences directory. A program makes one, installs
// it before it starts the module, and keeps it alive until the module ends:
//
//     HostOptions options;
//     HostOptions::resolve(arguments, QProcessEnvironment::systemEnvironment(), options, rest, error);
//     EmbeddedHost host(options);
//     host.install();
//
// Nothing thrown inside a call leaves it: every failure is a trapped one.
class EmbeddedHost : public HostInterpreter {
public:
    explicit EmbeddedHost(const HostOptions& options);
    ~EmbeddedHost() override;
    EmbeddedHost(const EmbeddedHost&) = delete;
    EmbeddedHost& operator=(const EmbeddedHost&) = delete;

    // Makes this the interpreter and environment of the process; uninstall
    // (and the destructor) put the standalone defaults back.
    void install();
    void uninstall();
    // Gives every shown system a window and shows the block dialogs, help
    // and file dialogs; needs a QApplication. A host without it only records
    // what it was asked.
    void showWindows();
    // Null until showWindows.
    ModelWindows* modelWindows() { return m_modelWindows.get(); }

    CallResult callWithTrap(const std::string& function, int outputCount,
                            const std::vector<HostValue>& inputs) override;

    const HostOptions& options() const { return m_options; }
    EmbeddedEnvironment& environment() { return m_environment; }
    SearchPath& searchPath() { return m_path; }
    SystemRegistry& systems() { return m_systems; }
    WindowCommands& windowCommands() { return m_windows; }
    const CommandLog& commandLog() const { return m_log; }
    CommandLog& commandLog() { return m_log; }

private:
    CallResult dispatch(const std::string& function, int outputCount, const std::vector<HostValue>& inputs);

    HostOptions m_options;
    EmbeddedEnvironment m_environment;
    PathCacheFile m_pathCache;
    SearchPath m_path;
    LibraryCatalog m_catalog;
    BlockTree m_tree;
    RepositoryOperations m_repository;
    CommandLog m_log;
    SystemRegistry m_systems;
    WindowCommands m_windows;
    std::unique_ptr<ModelWindows> m_modelWindows;
    bool m_installed = false;
};

} // namespace LibraryBrowser::Host
