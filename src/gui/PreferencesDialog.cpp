#include "gui/PreferencesDialog.h"

#include "gui/BrowserPreferences.h"
#include "gui/StandaloneBrowser.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QMainWindow>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <vector>

namespace LibraryBrowser {

// One row of the colours: the keys it sets. The two page bottoms are one
// colour, as the preferences file keeps them.
struct PreferencesDialog::ColorRow {
    const char* label;
    std::vector<const char*> keys;
};

namespace {

const char* const layoutWords[] = {"List", "Grid"};
const char* const sizeWords[] = {"Compact", "Small", "Medium", "Large"};

QIcon swatch(const QColor& color)
{
    QPixmap pixmap(36, 16);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::darkGray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}

} // namespace

PreferencesDialog::PreferencesDialog(StandaloneBrowser& browser) : QDialog(browser.window()), m_browser(browser)
{
    setWindowTitle(QStringLiteral("Library Browser Preferences"));
    auto* layout = new QVBoxLayout(this);

    auto* look = new QGroupBox(QStringLiteral("Blocks"));
    auto* lookForm = new QFormLayout(look);
    m_fontFamily = new QFontComboBox;
    m_fontFamily->setObjectName(QStringLiteral("fontFamily"));
    connect(m_fontFamily, &QFontComboBox::currentFontChanged, this, [this] { m_familyPicked = true; });
    lookForm->addRow(QStringLiteral("Font:"), m_fontFamily);
    m_fontSize = new QSpinBox;
    m_fontSize->setObjectName(QStringLiteral("fontSize"));
    m_fontSize->setRange(BrowserSettings::minFontSize, BrowserSettings::maxFontSize);
    m_fontSize->setSuffix(QStringLiteral(" pt"));
    lookForm->addRow(QStringLiteral("Font size:"), m_fontSize);
    m_layout = new QComboBox;
    m_layout->setObjectName(QStringLiteral("layout"));
    for (const char* word : layoutWords)
        m_layout->addItem(QString::fromLatin1(word));
    lookForm->addRow(QStringLiteral("Layout:"), m_layout);
    m_iconSize = new QComboBox;
    m_iconSize->setObjectName(QStringLiteral("iconSize"));
    for (const char* word : sizeWords)
        m_iconSize->addItem(QString::fromLatin1(word));
    lookForm->addRow(QStringLiteral("Icon size:"), m_iconSize);
    m_treeTimeout = new QSpinBox;
    m_treeTimeout->setObjectName(QStringLiteral("treeSelectionTimeout"));
    m_treeTimeout->setRange(0, BrowserSettings::maxTreeSelectionTimeout);
    m_treeTimeout->setSingleStep(50);
    m_treeTimeout->setSuffix(QStringLiteral(" ms"));
    m_treeTimeout->setToolTip(QStringLiteral("How long the tree waits on a selection before the page follows it"));
    lookForm->addRow(QStringLiteral("Tree selection delay:"), m_treeTimeout);
    layout->addWidget(look);

    auto* colors = new QGroupBox(QStringLiteral("Colours"));
    auto* colorForm = new QFormLayout(colors);
    const ColorRow rows[] = {
        {"Block description", {PrefKey::LBColorBlocksDescriptionBackground}},
        {"Library page, top", {PrefKey::LBColorLibraryBlocksBackgroundTop}},
        {"Search results, top", {PrefKey::LBColorSearchResultsBackgroundTop}},
        {"Pages, bottom",
         {PrefKey::LBColorLibraryBlocksBackgroundBot, PrefKey::LBColorSearchResultsBackgroundBot}},
        {"Section bar, top", {PrefKey::LBColorSearchResultsDividerBarTop}},
        {"Section bar, bottom", {PrefKey::LBColorSearchResultsDividerBarBot}},
    };
    for (const ColorRow& row : rows)
        addColorRow(colorForm, row);
    layout->addWidget(colors);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel |
                                         QDialogButtonBox::RestoreDefaults);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, &PreferencesDialog::apply);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this, [this] {
        BrowserSettings defaults;
        defaults.fontFamily = BrowserPreferences::defaultOf(PrefKey::LBFontFamily).toString();
        defaults.fontSize = BrowserPreferences::defaultFontSize();
        defaults.layout = BrowserPreferences::layoutFromWord(BrowserPreferences::defaultOf(PrefKey::LBLayout).toString());
        defaults.iconSize =
            BrowserPreferences::iconSizeFromWord(BrowserPreferences::defaultOf(PrefKey::LBIconSize).toString());
        defaults.treeSelectionTimeout = BrowserPreferences::defaultOf(PrefKey::LBTreeSelectionTimeout).toInt();
        for (const auto& entry : m_colors)
            defaults.colors[entry.first] = BrowserPreferences::defaultOf(entry.first.c_str()).value<QColor>();
        setSettings(defaults);
    });
    layout->addWidget(buttons);
    setSettings(browser.getSettings());
}

void PreferencesDialog::addColorRow(QFormLayout* form, const ColorRow& row)
{
    auto* button = new QToolButton;
    const std::string key = row.keys.front();
    button->setObjectName(QString::fromStdString("color:" + key));
    button->setIconSize(QSize(36, 16));
    connect(button, &QToolButton::clicked, this, [this, key, label = QString::fromLatin1(row.label)] {
        const QColor chosen = QColorDialog::getColor(m_colors[key], this, label);
        if (chosen.isValid())
            chooseColor(key, chosen);
    });
    for (const char* each : row.keys) {
        m_colors[each] = QColor();
        m_colorButtons[each] = button;
    }
    form->addRow(QString::fromLatin1(row.label) + ":", button);
}

void PreferencesDialog::chooseColor(const std::string& key, const QColor& color)
{
    const auto button = m_colorButtons.find(key);
    if (button == m_colorButtons.end())
        return;
    // Every key of the row takes the colour.
    for (auto& [each, shown] : m_colorButtons)
        if (shown == button->second)
            m_colors[each] = color;
    showColor(key);
}

void PreferencesDialog::showColor(const std::string& key) { m_colorButtons.at(key)->setIcon(swatch(m_colors[key])); }

BrowserSettings PreferencesDialog::settings() const
{
    BrowserSettings settings;
    settings.fontFamily = m_familyPicked ? m_fontFamily->currentFont().family() : m_shownFamily;
    settings.fontSize = m_fontSize->value();
    settings.layout = BrowserPreferences::layoutFromWord(m_layout->currentText());
    settings.iconSize = BrowserPreferences::iconSizeFromWord(m_iconSize->currentText());
    settings.treeSelectionTimeout = m_treeTimeout->value();
    settings.colors = m_colors;
    return settings;
}

void PreferencesDialog::setSettings(const BrowserSettings& settings)
{
    m_fontFamily->setCurrentFont(QFont(settings.fontFamily));
    m_shownFamily = settings.fontFamily;
    m_familyPicked = false;
    m_fontSize->setValue(settings.fontSize);
    m_layout->setCurrentText(BrowserPreferences::wordOf(settings.layout));
    m_iconSize->setCurrentText(BrowserPreferences::wordOf(settings.iconSize));
    m_treeTimeout->setValue(settings.treeSelectionTimeout);
    for (auto& [key, color] : m_colors) {
        const auto given = settings.colors.find(key);
        if (given != settings.colors.end())
            color = given->second;
        showColor(key);
    }
}

void PreferencesDialog::apply() { m_browser.applySettings(settings()); }

PreferencesDialog* PreferencesDialog::open(StandaloneBrowser& browser)
{
    static QPointer<PreferencesDialog> shown;
    if (!shown || &shown->m_browser != &browser) {
        delete shown.data();
        shown = new PreferencesDialog(browser);
        shown->setAttribute(Qt::WA_DeleteOnClose);
    } else {
        shown->setSettings(browser.getSettings());
    }
    shown->show();
    shown->raise();
    shown->activateWindow();
    return shown;
}

} // namespace LibraryBrowser
