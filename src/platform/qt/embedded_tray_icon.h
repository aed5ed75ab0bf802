#pragma once

#include "platform/qt/template_icon.h"

#include <QSystemTrayIcon>
#include <QTimer>

#include <functional>
#include <optional>

namespace tavrin {

/// The status item as a small window inside a panel of the older kind (XEmbed). What is drawn in it has to
/// suit the panel behind it, which is found out by looking at the screen.
class EmbeddedTrayIcon final : public QObject {
    Q_OBJECT

public:
    using IconForShade = std::function<QIcon(Shade)>;

    /// To be created only while no panel on the session bus shows status items: Qt decides for the whole
    /// process at its first tray icon which kind it makes. `activated` is called at a click.
    EmbeddedTrayIcon(Shade assumedShade, std::function<void()> activated);

    void setIcon(IconForShade icon);
    void setToolTip(const QString& text);
    void show();
    void hide();

    /// There is a panel that takes such windows.
    static bool isPanelThere() { return QSystemTrayIcon::isSystemTrayAvailable(); }

    /// Where the icon stands on the screen; absent while no panel shows it.
    std::optional<QRect> geometry() const;

    /// Looks at the panel again, soon.
    void checkShade();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void lookAtPanel();

    QSystemTrayIcon trayIcon_;
    QTimer lookSoon_;
    Shade shade_;
    IconForShade icon_;
};

} // namespace tavrin
