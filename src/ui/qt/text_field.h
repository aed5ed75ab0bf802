#pragma once

#include <QLineEdit>

namespace tavrin {

/// A field for one line of text. `name` is announced by a screen reader.
class TextField final : public QLineEdit {
public:
    explicit TextField(const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor ground_;
};

} // namespace tavrin
