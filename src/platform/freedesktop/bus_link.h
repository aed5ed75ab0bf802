#pragma once

#include "base/timestamp.h"

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// A connection of its own to a message bus that is opened again when the bus went away. Without an address
/// it does nothing.
class BusLink : public QObject {
    Q_OBJECT
public:
    /// `opened` is called with every new connection, at the earliest in `open`. While there is no bus,
    /// another attempt is made every `retryInterval`.
    BusLink(std::optional<std::string> address, Seconds retryInterval,
            std::function<void(QDBusConnection)> opened);
    ~BusLink() override;

    void open();

private Q_SLOTS:
    void closed();

private:
    QString connectionName() const;

    QString address_;
    std::function<void(QDBusConnection)> opened_;
    QTimer retry_;
    unsigned attempt_ = 0;
};

} // namespace tavrin
