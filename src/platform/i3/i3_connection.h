#pragma once

#include "base/signal.h"
#include "base/timestamp.h"
#include "ports/runtime.h"

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tavrin {

/// What went wrong with a question over the i3 protocol, which sway speaks too.
enum class I3Error {
    unreachable, ///< no program listens at the socket
    timedOut,
    closed,    ///< the other end went before the answer was whole
    malformed, ///< an answer that makes no sense, or is too large
};

/// The kinds of questions.
enum class I3Question : std::uint32_t {
    runCommand = 0,
    workspaces = 1,
    subscribe = 2,
    tree = 4,
    version = 7,
    config = 9,
};

/// The kinds of events, as they stand in messages.
enum class I3Event : std::uint32_t {
    workspace = 0x80000000,
    output = 0x80000001,
    binding = 0x80000005,
    shutdown = 0x80000006,
};

/// One connection to the socket of i3 or sway. Every call takes the longest time that it may wait.
class I3Channel {
public:
    struct Message {
        std::uint32_t type = 0;
        std::string payload; ///< JSON; as it came, not checked
    };

    static std::expected<I3Channel, I3Error> open(const std::string& path);

    I3Channel(I3Channel&& other) noexcept
        : socket_(std::exchange(other.socket_, -1)), received_(std::move(other.received_)) {}
    I3Channel& operator=(I3Channel&&) = delete;
    ~I3Channel();

    int fileDescriptor() const { return socket_; }

    std::expected<void, I3Error> send(I3Question question, std::string_view payload, Seconds limit);

    /// The next message; `timedOut` when it is not whole by then. What came of it is kept for the next call.
    std::expected<Message, I3Error> receive(Seconds limit);

private:
    explicit I3Channel(int socket) : socket_(socket) {}

    int socket_; ///< owned; -1 after it has moved on
    std::string received_;
};

/// Questions and answers. Connects when it is first asked something, and again after the other end has gone.
/// Where an answer is overdue, the next questions fail at once until it has come.
class I3Questions {
public:
    explicit I3Questions(std::string path) : path_(std::move(path)) {}

    /// The answer: JSON as it came.
    std::expected<std::string, I3Error> ask(I3Question question, std::string_view payload = {},
                                            Seconds limit = Seconds{0.8});

private:
    std::expected<std::string, I3Error> askOnce(I3Question question, std::string_view payload, Seconds limit);

    std::string path_;
    std::optional<I3Channel> channel_;
    int overdueAnswers_ = 0;
};

/// Events, delivered by the event loop. When the other end has gone, it tries again at growing intervals.
class I3Events {
public:
    /// `events` is the list of what to subscribe to, as JSON.
    I3Events(std::string path, std::string events, EventLoop& eventLoop, Scheduler& scheduler);

    bool isConnected() const { return channel_.has_value(); }

    /// Looks for the other end now.
    void reconnect();

    Token observe(std::function<void(I3Event, const std::string& payload)> handler) {
        return events_.connect(std::move(handler));
    }
    /// The other end has gone or is back.
    Token observeConnection(std::function<void()> handler) { return connection_.connect(std::move(handler)); }

private:
    bool connect();
    void read();
    void retryLater();

    std::string path_;
    std::string subscription_;
    EventLoop& eventLoop_;
    Scheduler& scheduler_;
    std::optional<I3Channel> channel_;
    Token watch_;
    Token next_;
    Token retry_;
    Seconds retryDelay_{1};
    Signal<I3Event, const std::string&> events_;
    Signal<> connection_;
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

} // namespace tavrin
