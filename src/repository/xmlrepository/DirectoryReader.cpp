#include "repository/xmlrepository/DirectoryReader.h"

#include "repository/xmlrepository/RepositoryFiles.h"

#include <fcntl.h>
#include <unistd.h>

namespace LibraryBrowser {

DirectoryReader::~DirectoryReader()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool DirectoryReader::read(const std::string& path, QByteArray& bytes)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash == 0 || path.find('\0') != std::string::npos)
        return readFileBytes(path, bytes);
    if (m_descriptor < 0 || path.compare(0, slash, m_directory) != 0 || m_directory.size() != slash) {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_directory = path.substr(0, slash);
        m_descriptor = ::open(m_directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    }
    if (m_descriptor < 0)
        return readFileBytes(path, bytes);
    return readFileBytes(m_descriptor, path.substr(slash + 1), bytes);
}

} // namespace LibraryBrowser
