#pragma once

#include "platform/qt/template_icon.h"

#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <optional>

class QDBusPendingCallWatcher;

namespace tavrin {

/// Whether the panels of this desktop are light or dark, as far as the desktop tells: by its kind, by its
/// panel's own setting, by the colour scheme of its settings portal, else by the program's own palette.
class PanelShade final : public QObject {
    Q_OBJECT

public:
    explicit PanelShade(std::function<void()> changed);

    Shade shade() const { return shade_; }

    /// Whether dark windows go with `color`.
    static Shade shadeOf(const QColor& color);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private Q_SLOTS:
    void settingChanged(const QDBusMessage& message);
    void xfcePanelChanged(const QDBusMessage& message);

private:
    void askPortal();
    void askXfce();
    void answered(QDBusPendingCallWatcher& call);
    void update();

    std::function<void()> changed_;
    std::optional<Shade> scheme_; ///< what the portal says
    bool hasDarkXfcePanel_ = false;
    Shade shade_ = Shade::light;
};

} // namespace tavrin
