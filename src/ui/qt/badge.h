#pragma once

#include <QLabel>

namespace tavrin {

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

} // namespace tavrin
