// The browser's preferences file: every key round-trips through the INI
// file, and what can't be read falls back as the browser expects.

#include "gui/BrowserPreferences.h"
#include "support/Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace LibraryBrowser {
namespace {

// Every type round-trips through the file; what can't be read, like what
// isn't there, is the default.
TEST(BrowserPreferencesTest, EveryTypeRoundTripsThroughTheFileAndWhatCantBeReadIsTheDefault)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("prefs.ini");
    {
        BrowserPreferences prefs(file);
        prefs.setString(PrefKey::LBFontFamily, "Noto Sans, Bold");
        prefs.setInt(PrefKey::LBFontSize, 14);
        prefs.setBool(PrefKey::LBShowBlockDesc, false);
        prefs.setRect(PrefKey::LBGeometry4Window, QRect(-10, 20, 800, 700));
        prefs.setStringList(PrefKey::LBSearchHistory, {"gain", "a, b", "sum"});
        prefs.setColor(PrefKey::LBColorSearchResultsBackgroundTop, QColor::fromRgbF(0.25f, 0.5f, 0.75f, 1));
        ASSERT_TRUE(prefs.save());
    }
    const QByteArray text = Testing::readFile(file.toStdString());
    EXPECT_TRUE(text.contains("[LibraryBrowser]") && text.contains("LBColorSearchResultsBackgroundTop=0.25, 0.5, 0.75, 1"));

    const BrowserPreferences prefs(file);
    EXPECT_EQ(std::make_tuple(prefs.getString(PrefKey::LBFontFamily),
                              prefs.getInt(PrefKey::LBFontSize), prefs.getBool(PrefKey::LBShowBlockDesc),
                              prefs.getRect(PrefKey::LBGeometry4Window), prefs.getStringList(PrefKey::LBSearchHistory),
                              prefs.getColor(PrefKey::LBColorSearchResultsBackgroundTop)),
              std::make_tuple(QString("Noto Sans, Bold"), 14, false, QRect(-10, 20, 800, 700),
                              QStringList{"gain", "a, b", "sum"}, QColor::fromRgbF(0.25f, 0.5f, 0.75f, 1)));

    Testing::writeFile(file.toStdString(), "[LibraryBrowser]\nLBTreeSelectionTimeout=soon\nLBShowBlockDesc=perhaps\n"
                                             "LBGeometry4Window=1, 2, 3\nLBGeometry4Blocks=a, b, c, d\n"
                                             "LBColorBlocksDescriptionBackground=0.5, 2, 0, 1\n");
    const BrowserPreferences bad(file);
    EXPECT_EQ(std::make_tuple(bad.getInt(PrefKey::LBTreeSelectionTimeout), bad.getBool(PrefKey::LBShowBlockDesc),
                              bad.getRect(PrefKey::LBGeometry4Window), bad.getRect(PrefKey::LBGeometry4Blocks),
                              bad.getColor(PrefKey::LBColorBlocksDescriptionBackground),
                              bad.getStringList(PrefKey::LBSearchHistory)),
              std::make_tuple(111, true, QRect(32, 64, 600, 640), QRect(0, 0, 390, 410), QColor(Qt::white), QStringList()));
}

// Words are exact; what isn't one is the default, and Model is not offered.
// Font sizes outside 8 to 24 are the default.
TEST(BrowserPreferenceWords, LayoutIconSizeAndFontSizeRules)
{
    using P = BrowserPreferences;
    EXPECT_EQ((std::vector<int>{int(P::layoutFromWord("List")), int(P::layoutFromWord("Model")), int(P::layoutFromWord("list")),
                                int(P::iconSizeFromWord("Huge")), int(P::iconSizeFromWord(P::wordOf(IconSize::Large))),
                                P::correctedFontSize(7), P::correctedFontSize(8), P::correctedFontSize(24),
                                P::correctedFontSize(25)}),
              (std::vector<int>{int(LayoutType::List), int(LayoutType::Grid), int(LayoutType::Grid), int(IconSize::Compact),
                                int(IconSize::Large), P::defaultFontSize(), 8, 24, P::defaultFontSize()}));
}

} // namespace
} // namespace LibraryBrowser
