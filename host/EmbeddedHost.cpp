#include "EmbeddedHost.h"

#include "CallArguments.h"

#include "platform/Platform.h"

#include <exception>

namespace LibraryBrowser::Host {

EmbeddedHost::EmbeddedHost(const HostOptions& options)
    : m_options(options),
      m_environment(options.root.toStdString(), options.preferencesDirectory.toStdString()),
      m_pathCache(options.preferencesDirectory, options.root),
      m_path(options.root, options.path, m_pathCache),
      m_catalog(m_path),
      m_tree(m_catalog),
      m_repository(m_path, m_catalog, m_tree, m_pathCache),
      m_systems(m_tree),
      m_windows(m_systems, m_log, options.root.toStdString())
{
    if (options.verbose)
        m_log.setEcho([this](const std::string& line) { m_environment.print(line); });
}

EmbeddedHost::~EmbeddedHost()
{
    m_windows.setWindows(nullptr);
    uninstall();
}

void EmbeddedHost::showWindows()
{
    if (m_modelWindows)
        return;
    m_modelWindows = std::make_unique<ModelWindows>(m_systems);
    m_windows.setWindows(m_modelWindows.get());
    m_modelWindows->sync();
}

void EmbeddedHost::install()
{
    Platform::setInterpreter(this);
    Platform::setEnvironment(&m_environment);
    m_installed = true;
}

void EmbeddedHost::uninstall()
{
    if (!m_installed)
        return;
    if (&Platform::interpreter() == this)
        Platform::setInterpreter(nullptr);
    if (&Platform::environment() == &m_environment)
        Platform::setEnvironment(nullptr);
    m_installed = false;
}

EmbeddedHost::CallResult EmbeddedHost::callWithTrap(const std::string& function, int outputCount,
                                                    const std::vector<HostValue>& inputs)
{
    try {
        return dispatch(function, outputCount, inputs);
    } catch (const std::exception& error) {
        return CallArguments::failure("Tandril:Host:InternalError", function + ": " + error.what());
    } catch (...) {
        return CallArguments::failure("Tandril:Host:InternalError", function + ": unexpected failure");
    }
}

EmbeddedHost::CallResult EmbeddedHost::dispatch(const std::string& function, int outputCount,
                                                 const std::vector<HostValue>& inputs)
{
    if (function == "tdprivate") {
        const std::string operation = !inputs.empty() && inputs.front().isString() ? inputs.front().toString() : "";
        if (RepositoryOperations::isOperation(operation))
            return m_repository.call(operation, outputCount, inputs);
        if (operation == "showprefs")
            return m_windows.showPreferences(outputCount);
        return CallArguments::failure("Tandril:Host:UnknownOperation",
                                      "tdprivate: unknown operation \"" + operation + "\"");
    }
    if (WindowCommands::isCommand(function))
        return m_windows.call(function, outputCount, inputs);
    return CallArguments::failure("Tandril:Host:UndefinedFunction",
                                  "Undefined function '" + function + "' in the embedded host");
}

} // namespace LibraryBrowser::Host
