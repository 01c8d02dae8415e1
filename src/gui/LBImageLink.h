#pragma once

#include <QLabel>

#include <string>

namespace LibraryBrowser {

// The small image in a section's header that hides or shows the section: a
// link cursor over it, a click on it. When the image file is missing a
// triangle stands in, pointing right for "show" and down for "hide", so the
// header never loses its control.
class LBImageLink : public QLabel {
    Q_OBJECT

public:
    LBImageLink(int size, QWidget* parent);

    // The image of a file, or the drawn triangle of the state when the file
    // can't be read.
    void setImage(const std::string& file, bool expandsOnClick);
    bool expandsOnClick() const { return m_expandsOnClick; }

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPixmap fallbackImage(bool pointsRight) const;

    int m_size;
    bool m_expandsOnClick = false;
    bool m_pressed = false;
};

} // namespace LibraryBrowser
