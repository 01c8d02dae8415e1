#include "gui/BrowserPreferences.h"

#include "platform/HostEnvironment.h"
#include "platform/Platform.h"

#include <QApplication>
#include <QDir>
#include <QSettings>

#include <cstring>

namespace LibraryBrowser {

namespace {

struct KeyInfo {
    const char* key;
    BrowserPreferences::Type type;
    QVariant defaultValue;
};

const std::vector<KeyInfo>& keyTable()
{
    using Type = BrowserPreferences::Type;
#define TDLB_PREFERENCE_ROW(key, type, value) {#key, Type::type, QVariant::fromValue(value)},
    static const std::vector<KeyInfo> table{TDLB_PREFERENCE_KEYS(TDLB_PREFERENCE_ROW)};
#undef TDLB_PREFERENCE_ROW
    return table;
}

const KeyInfo& infoOf(const char* key)
{
    for (const KeyInfo& info : keyTable())
        if (std::strcmp(info.key, key) == 0)
            return info;
    static const KeyInfo unknown{"", BrowserPreferences::Type::String, QVariant()};
    return unknown;
}

// A list of numbers as the file keeps it; empty when any item isn't one.
QList<double> numbersOf(const QVariant& value, int count)
{
    QList<double> numbers;
    for (const QString& item : value.toStringList()) {
        bool ok = false;
        const double number = item.trimmed().toDouble(&ok);
        if (!ok)
            return {};
        numbers.append(number);
    }
    return numbers.size() == count ? numbers : QList<double>();
}

// Colour parts to four digits: enough for every 8-bit value, short to read.
QStringList textsOf(const QList<double>& numbers)
{
    QStringList texts;
    for (double number : numbers)
        texts.append(QString::number(number, 'g', 4));
    return texts;
}

const char* const LayoutWords[] = {"List", "Grid", "Model"};
const char* const IconSizeWords[] = {"Compact", "Small", "Medium", "Large"};

} // namespace

BrowserPreferences::BrowserPreferences(const QString& fileName)
    : m_settings(std::make_unique<QSettings>(fileName, QSettings::IniFormat))
{
}

BrowserPreferences::~BrowserPreferences() = default;

QString BrowserPreferences::defaultFileName()
{
    return QDir(QString::fromStdString(Platform::environment().preferencesDirectory())).filePath(FileName);
}

BrowserPreferences::Type BrowserPreferences::typeOf(const char* key) { return infoOf(key).type; }

QVariant BrowserPreferences::defaultOf(const char* key)
{
    if (std::strcmp(key, PrefKey::LBFontSize) == 0)
        return defaultFontSize();
    return infoOf(key).defaultValue;
}

int BrowserPreferences::defaultFontSize()
{
    const int toolkit = qApp ? QApplication::font().pointSize() : 0;
    return toolkit <= 9 ? 10 : toolkit;
}

QVariant BrowserPreferences::value(const char* key) const
{
    return m_settings->value(QString(Group) + "/" + key);
}

void BrowserPreferences::setValue(const char* key, const QVariant& value)
{
    m_settings->setValue(QString(Group) + "/" + key, value);
}

bool BrowserPreferences::contains(const char* key) const
{
    return m_settings->contains(QString(Group) + "/" + key);
}

bool BrowserPreferences::getBool(const char* key) const
{
    const QString text = value(key).toString().trimmed().toLower();
    if (text == "true" || text == "1")
        return true;
    if (text == "false" || text == "0")
        return false;
    return defaultOf(key).toBool();
}

int BrowserPreferences::getInt(const char* key) const
{
    bool ok = false;
    const int number = value(key).toString().trimmed().toInt(&ok);
    return ok ? number : defaultOf(key).toInt();
}

QString BrowserPreferences::getString(const char* key) const
{
    const QVariant stored = value(key);
    // A text with a comma comes back from the file as a list.
    return stored.isValid() ? stored.toStringList().join(", ") : defaultOf(key).toString();
}

QStringList BrowserPreferences::getStringList(const char* key) const
{
    const QVariant stored = value(key);
    return stored.isValid() ? stored.toStringList() : defaultOf(key).toStringList();
}

QRect BrowserPreferences::getRect(const char* key) const
{
    const QList<double> numbers = numbersOf(value(key), 4);
    if (numbers.isEmpty())
        return defaultOf(key).toRect();
    return QRect(int(numbers[0]), int(numbers[1]), int(numbers[2]), int(numbers[3]));
}

QColor BrowserPreferences::getColor(const char* key) const
{
    const QList<double> numbers = numbersOf(value(key), 4);
    for (double number : numbers)
        if (number < 0 || number > 1)
            return defaultOf(key).value<QColor>();
    if (numbers.isEmpty())
        return defaultOf(key).value<QColor>();
    return QColor::fromRgbF(float(numbers[0]), float(numbers[1]), float(numbers[2]), float(numbers[3]));
}

void BrowserPreferences::setBool(const char* key, bool value) { setValue(key, value ? "true" : "false"); }

void BrowserPreferences::setInt(const char* key, int value) { setValue(key, value); }

void BrowserPreferences::setString(const char* key, const QString& value) { setValue(key, value); }

void BrowserPreferences::setStringList(const char* key, const QStringList& value) { setValue(key, value); }

void BrowserPreferences::setRect(const char* key, const QRect& value)
{
    setValue(key, QStringList{QString::number(value.x()), QString::number(value.y()), QString::number(value.width()),
                              QString::number(value.height())});
}

void BrowserPreferences::setColor(const char* key, const QColor& value)
{
    setValue(key, textsOf({value.redF(), value.greenF(), value.blueF(), value.alphaF()}));
}

bool BrowserPreferences::save()
{
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}

QString BrowserPreferences::fileName() const { return m_settings->fileName(); }

LayoutType BrowserPreferences::layoutFromWord(const QString& word)
{
    // The model layout isn't restored: it reads back as the grid.
    return word == "List" ? LayoutType::List : LayoutType::Grid;
}

QString BrowserPreferences::wordOf(LayoutType layout) { return LayoutWords[int(layout)]; }

IconSize BrowserPreferences::iconSizeFromWord(const QString& word)
{
    for (int size = 1; size < 4; ++size)
        if (word == IconSizeWords[size])
            return IconSize(size);
    return IconSize::Compact;
}

QString BrowserPreferences::wordOf(IconSize size) { return IconSizeWords[int(size)]; }

int BrowserPreferences::correctedFontSize(int stored)
{
    return stored < 8 || stored > 24 ? defaultFontSize() : stored;
}

} // namespace LibraryBrowser
