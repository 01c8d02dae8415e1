#pragma once

#include "model/FileInfo.h"
#include "platform/SharedText.h"
#include "platform/StringId.h"

#include <QRectF>

#include <cstdint>
#include <string>
#include <vector>

namespace LibraryBrowser {

// The text forms of manifest values. Numbers are written with the standard
// streams at their default precision (six significant digits for reals);
// strings stand as they are, without quoting. Numbers are read as stream
// input reads them: the number at the start of the text, the rest unread. A
// reader returns false, leaving `value` alone, for text that holds no value of
// the type at all; the file-dependency list is always read, as far as it goes.
namespace ValueText {

std::string toText(bool value);
std::string toText(std::int32_t value);
std::string toText(std::int64_t value);
std::string toText(const std::string& value);
std::string toText(const StringId& value);
std::string toText(const SharedText& value);
// "x,y,width,height"
std::string toText(const QRectF& value);
// "[a,b,c]"; the empty vector gives the empty text.
std::string toText(const StringVector& value);
// "[fileSpec|checkSum|date|size,...]"; the empty vector gives the empty text.
std::string toText(const FileInfoVector& value);
// "[3,5,8]" for node ids.
std::string idsToText(const std::vector<unsigned>& ids);

bool fromText(const std::string& text, bool& value);
bool fromText(const std::string& text, std::int32_t& value);
bool fromText(const std::string& text, std::int64_t& value);
bool fromText(const std::string& text, std::string& value);
bool fromText(const std::string& text, StringId& value);
bool fromText(const std::string& text, SharedText& value);
bool fromText(const std::string& text, QRectF& value);
bool fromText(const std::string& text, StringVector& value);
bool fromText(const std::string& text, FileInfoVector& value);
bool idsFromText(const std::string& text, std::vector<unsigned>& ids);

// The elements at the top nesting level of a list's text form: "[a,[b,c],d]"
// gives "a", "[b,c]", "d". Only the first line of the text counts.
std::vector<std::string> firstLevelStrings(const std::string& text);

} // namespace ValueText
} // namespace LibraryBrowser
