#pragma once

#include <string>
#include <vector>

namespace LibraryBrowser {

class RepositoryReport;

// The string forms of names and paths in the repository store. All pure but
// the two store directories, which ask the host.

// Each line feed replaced by a blank.
std::string blankLineFeeds(const std::string& text);
// Each backslash replaced by a slash.
std::string forwardSlashes(const std::string& path);
// A name made safe as one file name: "_" doubled, backslashes taken as
// slashes, and every character that is not a letter, a digit or "_" written
// as "_" and two or more hexadecimal digits. "a/b_c d" gives "a_2fb__c_20d".
std::string sanitizeName(const std::string& name);
// The segments of a block path, each sanitised, joined with "/".
std::string sanitizePath(const std::string& path);
// A block path cut at its slashes. A doubled slash belongs to the name: an
// even run of slashes stays in the segment as it stands, an odd run ends the
// segment and is dropped.
std::vector<std::string> splitBlockPath(const std::string& path);
// root + "/" + path for a relative path; an absolute path as it stands.
std::string absolutePath(const std::string& root, const std::string& path);
// A relative path as it stands; an absolute one with every occurrence of
// root removed, and then its first character (the separator).
std::string relativePath(const std::string& root, const std::string& path);
// Whether a name holds a control character other than tab and line feed:
// a manifest can't keep one, so such names are refused wherever they come in.
bool holdsControlCharacter(const std::string& name);
// The name with each such character written as "\xHH", for messages.
std::string showControlCharacters(const std::string& name);

// Why a directory given for a store's data (a product's "repository") would
// not stay inside the store: empty, absolute, a drive or a "." or ".."
// segment, an empty segment, or a control character. The empty string for
// a path that stays inside. Backslashes count as slashes.
std::string storePathProblem(const std::string& path);

// The read-only store below the host's root.
std::string shippedRepositoryDirectory();
// The writable store below the user's preferences directory, made if
// missing; a failure is a warning and the path is given all the same.
std::string writableRepositoryDirectory(RepositoryReport& report);

} // namespace LibraryBrowser
