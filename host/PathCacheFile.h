#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <cstdint>

namespace LibraryBrowser::Host {

// What the host learnt of its path in one process, kept in the preferences
// directory for the next: the directories the walk below the root listed
// and the tdblocks.json files it parsed, each with the state it had then.
// Every process of a large root would otherwise list some two thousand
// directories and parse a thousand files to learn what it learnt last time.
//
// The file is read in one go when the host starts. Several processes share
// a preferences directory, so a new file is written and renamed into place;
// a file that is missing, cut short, damaged, of another version or for
// another root is taken as empty and replaced at the next write. A
// directory that can't be written only means nothing is kept: the cache is
// never worth a failure or a message.
class PathCacheFile {
public:
    static constexpr const char* fileName = "NumoraPathCache.bin";
    // Bumped whenever what a section holds changes.
    static constexpr std::uint8_t version = 1;
    enum Section { Walk, TdBlocks, SectionCount };

    // With an empty directory nothing is read or written.
    PathCacheFile(const QString& preferencesDirectory, const QString& root);

    const QString& root() const { return m_root; }
    const QString& path() const { return m_path; }
    // The bytes of a section as the file held them, or as last stored.
    const QByteArray& section(Section which) const { return m_sections[which]; }
    // Replaces a section and writes the file anew.
    void store(Section which, const QByteArray& bytes);

    // Whether what was learnt at `learntAt` of something whose latest change
    // is `changedAt` (both nanoseconds since the epoch) may be taken again
    // while its state is the same. Dates have a granularity: a change made
    // in the same tick as the state was read leaves the state as it was, so
    // only what had not changed for a while before is trusted.
    bool trusted(std::int64_t changedAt, std::int64_t learntAt) const { return changedAt < learntAt - m_margin; }
    void setTrustMargin(std::int64_t nanoseconds) { m_margin = nanoseconds; }
    // The wall clock, in the file system's terms.
    static std::int64_t now();

private:
    void load();
    QByteArray serialize() const;

    QString m_root;
    QString m_path;
    std::array<QByteArray, SectionCount> m_sections;
    std::int64_t m_margin = 2'000'000'000;
    bool m_leftOversRemoved = false;
};

} // namespace LibraryBrowser::Host
