#pragma once

#include <QPushButton>

namespace tavrin {

/// A row of a group that folds and unfolds the rows under it.
class FoldRow final : public QPushButton {
public:
    explicit FoldRow(const QString& text);

    void setExpanded(bool isExpanded);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isExpanded_ = false;
};

} // namespace tavrin
