#pragma once

#include <QAccessible>
#include <QLabel>
#include <QTextEdit>

#include <string_view>

class QTextLayout;

namespace tavrin {

inline QString qText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// `text` without the invisible marks that turn the direction of writing. In names they would rearrange the
/// sentences around them.
QString withoutDirectionMarks(QString text);

/// Gives a widget that has not been shown yet another role for screen readers than the usual one.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Has a screen reader say the text now; `widget` stands in the window that it is about.
void announce(const QWidget& widget, const QString& text);

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

/// A short text in a rounded frame.
class Badge final : public QLabel {
public:
    enum class Ground { plain, accented };

    explicit Badge(const QString& text, Ground ground = Ground::plain);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Ground ground_;
};

/// A text that can be selected and copied, by mouse and by keyboard. It wraps as `TextLabel` does and shows
/// all of itself.
class SelectableText final : public QTextEdit {
public:
    SelectableText(const QString& text, const QString& accessibleName);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void fit();
};

/// A text in the colour of ordinary or of less important text, or of a warning.
enum class TextRole { ordinary, secondary, warning };
TextLabel* makeText(const QString& text, TextRole role = TextRole::ordinary);

/// The heading of a section, or of the whole pane.
TextLabel* makeSectionTitle(const QString& text);
TextLabel* makePaneTitle(const QString& text);

} // namespace tavrin
