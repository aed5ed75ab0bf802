#pragma once

#include <QLabel>

class QTextLayout;

namespace tavrin {

/// A label that wraps its text anywhere if it must, so that a long word (a path, an identifier, a name
/// without blanks) is never cut off. The text is shown as it is, never as markup.
class TextLabel final : public QLabel {
public:
    explicit TextLabel(const QString& text = {});

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Makes this the label of `control`. Qt would take an ampersand for the mark of a key.
    void nameControl(QWidget* control);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText() const;
    QString brokenText() const;
    /// Breaks the text into lines of at most `width`; returns the size they take.
    QSizeF lay(QTextLayout& layout, double width) const;
};

} // namespace tavrin
