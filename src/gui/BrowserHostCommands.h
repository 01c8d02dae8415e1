#pragma once

#include "gui/BrowserUtils.h"

#include <string>

namespace LibraryBrowser::BrowserUtils {

// The window's commands to the host. Each is a trapped call: a failure gives
// the empty or false result and no message, never an exception. All but the
// ones that ask about the current system or show the host's own dialogs keep
// the host's command warnings from the console while they run.

void showPrefsDialog();
// A null path asks for the general help.
void displayHTMLBlockHelp(const char* path);
void dropBlock(const std::string& block, const std::string& target, double x, double y);
void closeBlockDialogsOpenedByBrowser();
void openBlockDialog(const std::string& path, BlockDialogType type);
bool isSystemLoaded(const std::string& name);
// A null option opens the system; "loadOnly" only loads it.
void openSystem(const std::string& name, const char* option);
void mdlFileOpenDialog();
void addBlockToModel(const std::string& source, const std::string& destination);
std::string getCurrentOpenSystem();
std::string tdSysNameUnderMouse();
std::string openNewSystem(ModelType type);
void getCurrentOpenSystemWithTypeAndLockState(std::string& name, ModelType& type, bool& locked);
std::string getDocPath();
void displayLibBrowseHelp();

} // namespace LibraryBrowser::BrowserUtils
