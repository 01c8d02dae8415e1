#include "BlockDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace LibraryBrowser::Host {

namespace {

QString counted(int count, const char* one, const char* many)
{
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

QLabel* textLabel(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

QString BlockDialog::portsText(const BlockRecord& block)
{
    if (!block.icon.svg.empty())
        return QString();
    if (block.icon.inputs == 0 && block.icon.outputs == 0)
        return QStringLiteral("none");
    return counted(block.icon.inputs, "input", "inputs") + ", " + counted(block.icon.outputs, "output", "outputs");
}

BlockDialog::BlockDialog(const std::string& path, const BlockRecord& block, const std::string& kind)
{
    const QString name = QString::fromStdString(block.name);
    const bool params = kind == "params";
    setWindowTitle(params ? "Block Parameters: " + name : name);
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    auto* heading = new QLabel("<b>" + name.toHtmlEscaped() + "</b>");
    layout->addWidget(heading);

    auto* description = textLabel(QString::fromStdString(block.description));
    description->setMinimumWidth(320);
    layout->addWidget(description);

    layout->addSpacing(6);
    auto* form = new QFormLayout();
    form->addRow(QStringLiteral("Path:"), textLabel(QString::fromStdString(path)));
    form->addRow(QStringLiteral("Type:"), textLabel(QString::fromLatin1(blockTypeName(block.type))));
    const QString ports = portsText(block);
    if (!ports.isEmpty())
        form->addRow(QStringLiteral("Ports:"), textLabel(ports));
    layout->addLayout(form);

    if (!block.parameters.empty() || params) {
        layout->addSpacing(6);
        auto* title = new QLabel(QStringLiteral("<b>Parameters</b>"));
        layout->addWidget(title);
        auto* values = new QFormLayout();
        for (const auto& [parameter, value] : block.parameters)
            values->addRow(QString::fromStdString(parameter) + ":", textLabel(QString::fromStdString(value)));
        if (block.parameters.empty())
            values->addRow(textLabel(QStringLiteral("This block has no parameters.")));
        layout->addLayout(values);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addWidget(buttons);
}

} // namespace LibraryBrowser::Host
