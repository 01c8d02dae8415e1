#pragma once

#include <QFrame>

#include <string>

class QLabel;

namespace LibraryBrowser {

class LBImageLink;
class SectionTitleLink;

// The header bar of a results section: the library's display path as a link
// to it in the tree, the number of hits with its tool tip, and the image that
// hides or shows the section.
class SectionHeader : public QFrame {
    Q_OBJECT

public:
    struct Look {
        QFont font;
        // The bar runs from the first colour at its top to the second.
        QColor background;
        QColor backgroundBottom;
        QColor frame;
        // Space before the title, so that it lines up with the tiles below.
        int indent = 0;
        std::string expandImage;
        std::string collapseImage;
    };

    SectionHeader(const std::string& name, int hits, const Look& look, int width, int height, QWidget* parent);

    // The image and its tool tip for a section that shows or not.
    void setExpanded(bool expanded);

    SectionTitleLink* titleLink() const { return m_titleLink; }
    QLabel* count() const { return m_count; }
    LBImageLink* imageLink() const { return m_imageLink; }
    int countWidth() const { return m_countWidth; }

signals:
    void titleActivated();
    void toggleClicked();

private:
    Look m_look;
    SectionTitleLink* m_titleLink;
    QLabel* m_count;
    LBImageLink* m_imageLink;
    int m_countWidth;
};

} // namespace LibraryBrowser
