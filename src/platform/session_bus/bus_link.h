#pragma once

#include "base/signal.h"

#include <QDBusConnection>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

class QSocketNotifier;

namespace tavrin {

/// Where the message buses are reached, in D-Bus's notation; absent where there is none.
struct BusAddresses {
    std::optional<std::string> session;
    std::optional<std::string> system;
};

/// The buses of the session and of the computer as the environment names them, else in their usual places.
/// A session without a bus has none; nothing here starts one.
BusAddresses busAddresses();

/// A question to a bus, over a socket of its own, whether it lets this user in. libdbus would wait half a
/// minute for a bus that accepts connections and never answers, and hold up every other connection of the
/// process meanwhile, so it gets to see only buses that have answered.
class BusProbe {
public:
    enum class State { waiting, answered, refused };

    /// Only local sockets are asked; an address of another kind is refused.
    explicit BusProbe(const std::string& address);
    ~BusProbe();
    BusProbe(const BusProbe&) = delete;
    BusProbe& operator=(const BusProbe&) = delete;

    /// Reads what has come so far, waiting for it at most as long as that.
    State state(std::chrono::milliseconds patience = std::chrono::milliseconds(0));

    /// Readable when the state may have changed.
    int descriptor() const { return descriptor_; }

private:
    void read();

    int descriptor_ = -1;
    State state_ = State::waiting;
    std::string answer_;
};

/// The one connection of the program to a message bus, opened again when the bus comes back. Waiting costs
/// nothing: a missing bus is noticed when the file of its socket appears, a silent one when it answers.
class BusLink : public QObject {
    Q_OBJECT
public:
    /// Without an address there never is a bus.
    explicit BusLink(std::optional<std::string> address);
    ~BusLink() override;

    /// Waits at most as long as `patience` for the bus, then goes on in the event loop.
    void open(std::chrono::milliseconds patience = std::chrono::milliseconds(0));

    bool isOpen() const { return isOpen_; }

    /// Not connected while there is no bus; another object after the bus came back.
    QDBusConnection connection() const { return QDBusConnection(name_); }

    Token observeOpened(std::function<void()> handler) { return opened_.connect(std::move(handler)); }
    Token observeClosed(std::function<void()> handler) { return closed_.connect(std::move(handler)); }

private Q_SLOTS:
    void disconnected();

private:
    void follow(std::chrono::milliseconds patience);
    void connectTo();
    void waitForSocket();
    void socketMayHaveChanged();

    const std::string address_;
    QString name_;
    bool isOpen_ = false;
    std::unique_ptr<BusProbe> probe_;
    std::unique_ptr<QSocketNotifier> answer_;
    QFileSystemWatcher folders_;
    static constexpr std::chrono::milliseconds firstRetry{100};
    QTimer retry_;                                 ///< only for a while after the socket or the bus changed
    std::chrono::milliseconds delay_ = firstRetry; ///< of the next retry
    Signal<> opened_;
    Signal<> closed_;
};

} // namespace tavrin
