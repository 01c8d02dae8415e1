// pybind11 before Qt: Qt's "slots" keyword would break the interpreter's headers.
#include "PythonHostFunctions.h"

#include "BrowserHandle.h"
#include "PythonSession.h"

#include "EmbeddedHost.h"
#include "frame/ModuleEntry.h"
#include "platform/HostFramework.h"
#include "platform/Platform.h"
#include "platform/ShutdownRegistry.h"
#include "scripting/ScriptingError.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <memory>
#include <stdexcept>
#include <thread>

namespace LibraryBrowser::Python {

namespace {

// Never freed: objects of a script (repositories, handles) may be released
// after the interpreter's exit hooks, and the host must still answer them;
// from then on without the script's callables.
Host::EmbeddedHost* theHost = nullptr;
PythonHostFunctions* theFunctions = nullptr;
bool finished = false;
std::thread::id startingThread;

void ensureApplication()
{
    if (QCoreApplication::instance())
        return;
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!environment.contains("QT_QPA_PLATFORM") && environment.value("DISPLAY").isEmpty() &&
        environment.value("WAYLAND_DISPLAY").isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // QApplication keeps references to both for its whole life.
    static int argc = 1;
    static char name[] = "tandril";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
}

// A directory the script named; an empty text would silently be the
// current directory, where the store would then be written.
QString absolute(const char* what, const QString& directory)
{
    if (directory.trimmed().isEmpty())
        throw std::invalid_argument(std::string(what) + " is empty; name a directory");
    return QDir::cleanPath(QDir(directory).absolutePath());
}

// The writable store and the preferences live there: it must be a directory
// this process can write, made if it is missing.
void checkPreferencesDirectory(const QString& directory)
{
    const QFileInfo info(directory);
    if (info.exists() && !info.isDir())
        throw std::invalid_argument("the preferences directory '" + directory.toStdString() +
                                    "' is a file, not a directory");
    if (!info.exists() && !QDir().mkpath(directory))
        throw std::invalid_argument("the preferences directory '" + directory.toStdString() +
                                    "' does not exist and can't be made");
    if (!QFileInfo(directory).isWritable())
        throw std::invalid_argument("the preferences directory '" + directory.toStdString() +
                                    "' can't be written");
}

} // namespace

void PythonSession::start(const Settings& settings)
{
    if (theHost || finished)
        throw std::logic_error("the tandril session has already started; start() must come before the first "
                               "repository call");
    Host::HostOptions options = Host::HostOptions::fromEnvironment(QProcessEnvironment::systemEnvironment());
    if (settings.root)
        options.root = absolute("root", *settings.root);
    if (settings.preferencesDirectory)
        options.preferencesDirectory = absolute("prefdir", *settings.preferencesDirectory);
    if (settings.path) {
        options.path.clear();
        for (const QString& directory : *settings.path)
            options.path << absolute("a directory of path", directory);
    }
    // A mistyped root would look like a root without products.
    if (!QFileInfo(options.root).isDir())
        throw std::invalid_argument("the root directory '" + options.root.toStdString() + "' does not exist");
    if (!QFileInfo(options.root).isReadable() || !QFileInfo(options.root).isExecutable())
        throw std::invalid_argument("the root directory '" + options.root.toStdString() + "' can't be read");
    checkPreferencesDirectory(options.preferencesDirectory);

    ensureApplication();
    startingThread = std::this_thread::get_id();
    theHost = new Host::EmbeddedHost(options);
    theHost->install();
    // Callables a script registers answer in front of the embedded host.
    theFunctions = new PythonHostFunctions(*theHost);
    Platform::setInterpreter(theFunctions);
    NRInitialize_td_lib_browse();
}

void PythonSession::ensureStarted()
{
    // The module has ended at the interpreter's exit; an exit hook that runs
    // after the package's own would get a window or repository of a module
    // that is no more.
    if (finished)
        throw ScriptingError(Ended, "The tandril session has ended at the interpreter's exit; nothing new can be "
                                    "opened or made from here on.");
    if (!theHost)
        start(Settings());
    checkThread();
}

OnStartingThread::OnStartingThread() { PythonSession::checkThread(); }

void PythonSession::checkThread()
{
    if (theHost && std::this_thread::get_id() != startingThread)
        throw ScriptingError(WrongThread, "tandril is used from the thread that started it, and this is another; "
                                          "the window and the repository's work can't run here. Hand the call "
                                          "to the thread that started the package.");
}

bool PythonSession::isStarted()
{
    return theHost != nullptr && !finished;
}

void PythonSession::finish()
{
    if (!isStarted())
        return;
    finished = true;
    // The windows go before the module that their pages read from: the
    // script's own first, then the process's one by the host's exit sequence.
    BrowserHandle::destroyCreatedWindows();
    Platform::framework().shutdownRegistry().runExitSequence();
    NRTerminate_td_lib_browse();
    PythonHostFunctions::clear();
}

QString PythonSession::root()
{
    return theHost ? theHost->options().root : QString();
}

QString PythonSession::preferencesDirectory()
{
    return theHost ? theHost->options().preferencesDirectory : QString();
}

QStringList PythonSession::path()
{
    return theHost ? theHost->options().path : QStringList();
}

} // namespace LibraryBrowser::Python
