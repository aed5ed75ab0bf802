#pragma once

#include <QObject>

#include <functional>
#include <optional>

class QDBusServiceWatcher;

namespace tavrin {

/// Watches whether a panel on the session bus shows status notifier items.
class StatusNotifierHosts final : public QObject {
    Q_OBJECT

public:
    static constexpr const char* watcherService = "org.kde.StatusNotifierWatcher";
    static constexpr const char* watcherPath = "/StatusNotifierWatcher";

    /// Which panel is there.
    enum class Presence { absent, present };

    /// `changed` is called with the first answer, with every change, and with `present` again when the
    /// registry of items was restarted and has forgotten them.
    explicit StatusNotifierHosts(std::function<void(Presence)> changed);

private Q_SLOTS:
    void ask();

private:
    void report(Presence presence);

    std::function<void(Presence)> changed_;
    std::optional<Presence> reported_;
    unsigned question_ = 0; ///< only the answer to the latest question counts
};

} // namespace tavrin
