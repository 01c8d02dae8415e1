// The browser's preferences dialog: what a person sets there reaches the
// open window at once and the preferences file (read back at a restart: BrowserWindowTest).

#include "BrowserWindowFixture.h"

#include "gui/BrowserPreferences.h"
#include "gui/LibraryBlocksPage.h"
#include "gui/PreferencesDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QMainWindow>
#include <QPushButton>
#include <QSpinBox>

namespace LibraryBrowser::Testing {
namespace {

using PreferencesDialogTest = BrowserWindowFixture;

template <typename Widget>
Widget* field(PreferencesDialog& dialog, const char* name)
{
    auto* widget = dialog.findChild<Widget*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void press(PreferencesDialog& dialog, QDialogButtonBox::StandardButton which)
{
    dialog.findChild<QDialogButtonBox*>()->button(which)->click();
}

TEST_F(PreferencesDialogTest, AppliedValuesChangeTheOpenWindowAndAreSaved)
{
    StandaloneBrowser& window = open();
    window.setLayout(LayoutType::Grid);
    window.setIconSize(IconSize::Small);
    settle();
    PreferencesDialog& dialog = *PreferencesDialog::open(window);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(field<QComboBox>(dialog, "layout")->currentText(), "Grid");
    EXPECT_EQ(field<QSpinBox>(dialog, "fontSize")->value(), int(window.getFontPointSize()));

    const QColor sand(230, 215, 170);
    field<QSpinBox>(dialog, "fontSize")->setValue(14);
    field<QComboBox>(dialog, "layout")->setCurrentText("List");
    field<QComboBox>(dialog, "iconSize")->setCurrentText("Large");
    field<QSpinBox>(dialog, "treeSelectionTimeout")->setValue(400);
    dialog.chooseColor(PrefKey::LBColorLibraryBlocksBackgroundTop, sand);
    EXPECT_EQ(window.getLayoutType(), LayoutType::Grid) << "nothing changes before Apply";
    press(dialog, QDialogButtonBox::Apply);
    settle();

    EXPECT_EQ(std::make_tuple(window.getFontPointSize(), window.window()->font().pointSize(), window.getLayoutType(),
                              window.getIconSize(), window.libraryPage()->getBackgroundColor()),
              std::make_tuple(14.0, 14, LayoutType::List, IconSize::Large, sand));
    const BrowserPreferences stored(preferencesFile());
    EXPECT_EQ(std::make_tuple(stored.getInt(PrefKey::LBFontSize), stored.getString(PrefKey::LBLayout),
                              stored.getString(PrefKey::LBIconSize), stored.getInt(PrefKey::LBTreeSelectionTimeout),
                              stored.getColor(PrefKey::LBColorLibraryBlocksBackgroundTop).rgb()),
              std::make_tuple(14, QString("List"), QString("Large"), 400, sand.rgb()));

    // Restore Defaults fills the fields only; Cancel leaves the window as it is.
    press(dialog, QDialogButtonBox::RestoreDefaults);
    EXPECT_EQ(field<QComboBox>(dialog, "layout")->currentText(), "Grid");
    EXPECT_EQ(field<QSpinBox>(dialog, "treeSelectionTimeout")->value(), 111);
    press(dialog, QDialogButtonBox::Cancel);
    settle();
    EXPECT_EQ(window.getLayoutType(), LayoutType::List);
}

} // namespace
} // namespace LibraryBrowser::Testing
