#pragma once

#include <QToolButton>

#include <optional>

namespace tavrin {

/// A button with a symbol, or with a symbol and a menu.
class SymbolButton final : public QToolButton {
public:
    enum class Ground {
        always, ///< stands beside other buttons
        onHover ///< stands in a row or a field
    };

    /// `name` is announced by a screen reader.
    SymbolButton(const QString& symbol, const QString& name, Ground ground,
                 std::optional<QColor> color = std::nullopt);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int iconSide() const { return fontMetrics().height() * 5 / 4; }

    Ground ground_;
};

} // namespace tavrin
