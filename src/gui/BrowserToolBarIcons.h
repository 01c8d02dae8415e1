#pragma once

#include <QIcon>

#include <string>
#include <vector>

namespace LibraryBrowser::BrowserToolBarIcons {

// A tool-bar or menu image by its file name: from the host's tool-bar icon
// directory when the root has it, else the browser's own drawing of it.
QIcon icon(const std::string& fileName);
// The file names of every image the window asks for.
const std::vector<std::string>& fileNames();
// Renders every drawing into a directory under its file name, as a root
// ships them; false when one can't be written.
bool writeImages(const std::string& directory, int size = 32);

} // namespace LibraryBrowser::BrowserToolBarIcons
