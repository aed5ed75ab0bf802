#pragma once

#include "ui/qt/controls/labels.h"

#include <QVBoxLayout>
#include <QWidget>

namespace tavrin {

/// The content of one pane of the settings window.
class SettingsPaneWidget : public QWidget {
public:
    SettingsPaneWidget() : sections_(new QVBoxLayout) {
        auto* rows = new QVBoxLayout(this);
        rows->setContentsMargins(0, 0, 0, 0);
        rows->addLayout(sections_);
        rows->addStretch(1);
        sections_->setSpacing(0);
    }

    /// The pane is shown, or the window has come to the front: reads again what it shows.
    virtual void appear() = 0;

    /// A line under the pane's title; may be empty.
    virtual QString description() const { return {}; }

    /// A control beside the pane's title; null without one. The caller owns it.
    virtual QWidget* makeHeaderControl() { return nullptr; }

protected:
    QVBoxLayout& sections() { return *sections_; }

private:
    QVBoxLayout* sections_;
};

} // namespace tavrin
