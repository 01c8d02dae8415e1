// The browser's preferences file: every key round-trips through the INI
// file, and what can't be read falls back as the browser expects.

#include "gui/BrowserPreferences.h"
#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

class BrowserPreferencesTest : public ::testing::Test {
protected:
    QString file() const { return dir.filePath("prefs.ini"); }
    void writeIni(const std::string& body) const
    {
        Testing::writeFile(file().toStdString(), QByteArray("[LibraryBrowser]\n") + body.c_str());
    }
    QTemporaryDir dir;
};

TEST_F(BrowserPreferencesTest, EveryTypeRoundTripsThroughTheFile)
{
    {
        BrowserPreferences prefs(file());
        prefs.setString(PrefKey::LBLayout, "List");
        prefs.setString(PrefKey::LBFontFamily, "Noto Sans, Bold");
        prefs.setInt(PrefKey::LBFontSize, 14);
        prefs.setBool(PrefKey::LBShowBlockDesc, false);
        prefs.setRect(PrefKey::LBGeometry4Window, QRect(-10, 20, 800, 700));
        prefs.setStringList(PrefKey::LBSearchHistory, {"gain", "a, b", "sum"});
        prefs.setColor(PrefKey::LBColorSearchResultsBackgroundTop, QColor::fromRgbF(0.25f, 0.5f, 0.75f, 1));
        ASSERT_TRUE(prefs.save());
    }
    const QByteArray text = Testing::readFile(file().toStdString());
    EXPECT_TRUE(text.contains("[LibraryBrowser]"));
    EXPECT_TRUE(text.contains("LBColorSearchResultsBackgroundTop=0.25, 0.5, 0.75, 1"));

    const BrowserPreferences prefs(file());
    EXPECT_EQ(prefs.getString(PrefKey::LBLayout), "List");
    EXPECT_EQ(prefs.getString(PrefKey::LBFontFamily), "Noto Sans, Bold");
    EXPECT_EQ(prefs.getInt(PrefKey::LBFontSize), 14);
    EXPECT_FALSE(prefs.getBool(PrefKey::LBShowBlockDesc));
    EXPECT_EQ(prefs.getRect(PrefKey::LBGeometry4Window), QRect(-10, 20, 800, 700));
    EXPECT_EQ(prefs.getStringList(PrefKey::LBSearchHistory), (QStringList{"gain", "a, b", "sum"}));
    EXPECT_EQ(prefs.getColor(PrefKey::LBColorSearchResultsBackgroundTop),
              QColor::fromRgbF(0.25f, 0.5f, 0.75f, 1));
}

// What can't be read, like what isn't there, is the default.
TEST_F(BrowserPreferencesTest, UnreadableValuesFallBackToTheDefaults)
{
    writeIni("LBTreeSelectionTimeout=soon\n"
             "LBShowBlockDesc=perhaps\n"
             "LBGeometry4Window=1, 2, 3\n"
             "LBGeometry4Blocks=a, b, c, d\n"
             "LBColorBlocksDescriptionBackground=0.5, 2, 0, 1\n");
    const BrowserPreferences prefs(file());
    EXPECT_EQ(prefs.getInt(PrefKey::LBTreeSelectionTimeout), 111);
    EXPECT_TRUE(prefs.getBool(PrefKey::LBShowBlockDesc));
    EXPECT_EQ(prefs.getRect(PrefKey::LBGeometry4Window), QRect(32, 64, 600, 640));
    EXPECT_EQ(prefs.getRect(PrefKey::LBGeometry4Blocks), QRect(0, 0, 390, 410));
    EXPECT_EQ(prefs.getColor(PrefKey::LBColorBlocksDescriptionBackground), QColor(Qt::white));
    EXPECT_TRUE(prefs.getStringList(PrefKey::LBSearchHistory).isEmpty());
    // The library page's bottom shares its default with the results page's.
    EXPECT_EQ(prefs.getColor(PrefKey::LBColorLibraryBlocksBackgroundBot),
              prefs.getColor(PrefKey::LBColorSearchResultsBackgroundBot));
}

TEST(BrowserPreferenceWords, LayoutIconSizeAndFontSizeRules)
{
    // Words are exact; what isn't one is the default, and Model is not offered.
    EXPECT_EQ(BrowserPreferences::layoutFromWord("List"), LayoutType::List);
    EXPECT_EQ(BrowserPreferences::layoutFromWord("Model"), LayoutType::Grid);
    EXPECT_EQ(BrowserPreferences::layoutFromWord("list"), LayoutType::Grid);
    EXPECT_EQ(BrowserPreferences::iconSizeFromWord("Huge"), IconSize::Compact);
    for (IconSize size : {IconSize::Compact, IconSize::Small, IconSize::Medium, IconSize::Large})
        EXPECT_EQ(BrowserPreferences::iconSizeFromWord(BrowserPreferences::wordOf(size)), size);
    const int fallback = BrowserPreferences::defaultFontSize();
    for (const auto& [size, corrected] : {std::pair{7, fallback}, {8, 8}, {24, 24}, {25, fallback}})
        EXPECT_EQ(BrowserPreferences::correctedFontSize(size), corrected) << size;
}

} // namespace
} // namespace LibraryBrowser
