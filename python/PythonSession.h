#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace LibraryBrowser::Python {

// The module and its embedded host inside a Python process, brought up
// once: a Qt application if the process has none (offscreen without a
// display), the host on the given or environment's directories, and the
// module's start. The module moves one way only, so a session cannot be
// started twice; ending it is left to the process's exit.
class PythonSession;

// A pybind11 call guard: the call goes on only on the starting thread.
struct OnStartingThread {
    OnStartingThread();
};

class PythonSession {
public:
    struct Settings {
        std::optional<QString> root;
        std::optional<QString> preferencesDirectory;
        std::optional<QStringList> path;
    };

    // Starts with the settings, the environment filling in the rest
    // (NUMORA_ROOT, NUMORA_PREFDIR, NUMORA_PATH, else the defaults). Throws
    // std::logic_error if a session is already running, and
    // std::invalid_argument for an empty directory name, a root that is no
    // readable directory, or a preferences directory that can't be made or
    // written.
    static void start(const Settings& settings);
    static constexpr const char* Ended = "Tandril:Session:Ended";
    static constexpr const char* WrongThread = "Tandril:Session:WrongThread";

    // Starts with the environment's settings unless a session runs; after
    // finish, a ScriptingError (Ended); on a thread other than the one that
    // started the session, a ScriptingError (WrongThread).
    static void ensureStarted();
    // The window's widgets and the repository's signals belong to the thread
    // that started the session: calls from any other throw WrongThread.
    static void checkThread();
    static bool isStarted();
    // Ends the module, at the interpreter's exit. The host stays installed:
    // objects released after this still reach it.
    static void finish();

    static QString root();
    static QString preferencesDirectory();
    static QStringList path();
};

} // namespace LibraryBrowser::Python
