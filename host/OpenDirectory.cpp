#include "OpenDirectory.h"

#include "FileStamp.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

namespace LibraryBrowser::Host {

OpenDirectory::OpenDirectory(const QString& directory)
    : m_prefix(QFile::encodeName(directory))
{
    m_descriptor = ::open(m_prefix.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (!m_prefix.endsWith('/'))
        m_prefix += '/';
}

OpenDirectory::~OpenDirectory()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool OpenDirectory::stamp(const QByteArray& path, FileStamp& stamp) const
{
    if (m_descriptor >= 0 && path.size() > m_prefix.size() && path.startsWith(m_prefix))
        return stamp.read(path.constData() + m_prefix.size(), true, m_descriptor);
    return stamp.read(path, true);
}

} // namespace LibraryBrowser::Host
