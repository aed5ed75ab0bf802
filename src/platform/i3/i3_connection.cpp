#include "platform/i3/i3_connection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavrin {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view magic = "i3-ipc";
constexpr std::size_t headerSize = magic.size() + 2 * sizeof(std::uint32_t);

/// A thousand windows have about a megabyte.
constexpr std::uint32_t payloadLimit = 32 * 1024 * 1024;

constexpr Seconds longestRetryDelay{60};

std::uint32_t wordAt(const std::string& bytes, std::size_t position) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + position, sizeof word);
    return word;
}

/// Waits until the socket is ready; false at the deadline.
bool waitFor(int socket, short events, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd ready{.fd = socket, .events = events, .revents = 0};
        const int count = ::poll(&ready, 1, static_cast<int>(std::max<long>(left, 0)));
        if (count > 0)
            return true;
        if (count == 0 || errno != EINTR)
            return false;
    }
}

Clock::time_point after(Seconds limit) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
}

} // namespace

std::expected<I3Channel, I3Error> I3Channel::open(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path)
        return std::unexpected(I3Error::unreachable);
    std::ranges::copy(path, address.sun_path);
    I3Channel channel(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (channel.socket_ < 0 ||
        ::connect(channel.fileDescriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return std::unexpected(I3Error::unreachable);
    return channel;
}

I3Channel::~I3Channel() {
    if (socket_ >= 0)
        ::close(socket_);
}

std::expected<void, I3Error> I3Channel::send(I3Question question, std::string_view payload, Seconds limit) {
    const auto deadline = after(limit);
    std::string message(magic);
    for (const auto word : {static_cast<std::uint32_t>(payload.size()), static_cast<std::uint32_t>(question)})
        message.append(reinterpret_cast<const char*>(&word), sizeof word);
    message += payload;
    for (std::size_t sent = 0; sent < message.size();) {
        const auto count =
            ::send(fileDescriptor(), message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
        if (count > 0)
            sent += static_cast<std::size_t>(count);
        else if (count < 0 && errno == EINTR)
            continue;
        else if (count < 0 && errno != EAGAIN)
            return std::unexpected(I3Error::closed);
        else if (!waitFor(fileDescriptor(), POLLOUT, deadline))
            return std::unexpected(I3Error::timedOut);
    }
    return {};
}

std::expected<I3Channel::Message, I3Error> I3Channel::receive(Seconds limit) {
    const auto deadline = after(limit);
    for (;;) {
        if (received_.size() >= headerSize) {
            const auto size = wordAt(received_, magic.size());
            if (!received_.starts_with(magic) || size > payloadLimit)
                return std::unexpected(I3Error::malformed);
            if (received_.size() >= headerSize + size) {
                Message message{wordAt(received_, magic.size() + sizeof(std::uint32_t)),
                                received_.substr(headerSize, size)};
                received_.erase(0, headerSize + size);
                return message;
            }
        }
        std::array<char, 65536> buffer;
        const auto count = ::recv(fileDescriptor(), buffer.data(), buffer.size(), 0);
        if (count > 0)
            received_.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count < 0 && errno == EINTR)
            continue;
        else if (count == 0 || errno != EAGAIN)
            return std::unexpected(I3Error::closed);
        else if (!waitFor(fileDescriptor(), POLLIN, deadline))
            return std::unexpected(I3Error::timedOut);
    }
}

std::expected<std::string, I3Error> I3Questions::ask(I3Question question, std::string_view payload,
                                                     Seconds limit) {
    const bool wasConnected = channel_.has_value();
    auto answer = askOnce(question, payload, limit);
    // What was open may have ended long ago; a fresh connection tells.
    if (!answer && answer.error() == I3Error::closed && wasConnected)
        answer = askOnce(question, payload, limit);
    return answer;
}

std::expected<std::string, I3Error> I3Questions::askOnce(I3Question question, std::string_view payload,
                                                         Seconds limit) {
    const auto deadline = after(limit);
    const auto left = [&] { return std::max(Seconds(deadline - Clock::now()), Seconds{0}); };
    const auto failed = [&](I3Error error) {
        if (error == I3Error::timedOut)
            ++overdueAnswers_;
        else
            channel_.reset();
        return std::unexpected(error);
    };
    if (!channel_) {
        auto opened = I3Channel::open(path_);
        if (!opened)
            return std::unexpected(opened.error());
        channel_.emplace(std::move(*opened));
        overdueAnswers_ = 0;
    }
    for (; overdueAnswers_ > 0; --overdueAnswers_)
        if (const auto late = channel_->receive(Seconds{0}); !late) {
            if (late.error() != I3Error::timedOut)
                channel_.reset();
            return std::unexpected(late.error());
        }
    if (const auto sent = channel_->send(question, payload, left()); !sent) {
        channel_.reset(); // half a question cannot be taken back
        return std::unexpected(sent.error());
    }
    auto answer = channel_->receive(left());
    if (!answer)
        return failed(answer.error());
    if (answer->type != static_cast<std::uint32_t>(question))
        return failed(I3Error::malformed);
    return std::move(answer->payload);
}

I3Events::I3Events(std::string path, std::string events, EventLoop& eventLoop, Scheduler& scheduler)
    : path_(std::move(path)), subscription_(std::move(events)), eventLoop_(eventLoop), scheduler_(scheduler) {
    if (!connect())
        retryLater();
}

bool I3Events::connect() {
    auto channel = I3Channel::open(path_);
    if (!channel || !channel->send(I3Question::subscribe, subscription_, Seconds{0.2}))
        return false;
    channel_.emplace(std::move(*channel));
    watch_ = eventLoop_.watchReadable(channel_->fileDescriptor(), [this] { read(); });
    return true;
}

void I3Events::reconnect() {
    if (channel_ || !connect())
        return;
    retry_.release();
    retryDelay_ = Seconds{1};
    connection_.emit();
}

void I3Events::retryLater() {
    retry_ = scheduler_.after(retryDelay_, [this] {
        if (const std::weak_ptr<bool> alive = isAlive_; reconnect(), alive.expired() || channel_)
            return;
        retryDelay_ = std::min(retryDelay_ * 2, longestRetryDelay);
        retryLater();
    });
}

void I3Events::read() {
    const std::weak_ptr<bool> alive = isAlive_;
    constexpr int batch = 64; // so that a flood leaves time for everything else
    for (int i = 0; i < batch; ++i) {
        const auto message = channel_->receive(Seconds{0});
        if (!message && message.error() == I3Error::timedOut)
            return;
        if (!message) {
            watch_.release();
            channel_.reset();
            retryLater();
            connection_.emit();
            return;
        }
        if (message->type >> 31 != 0)
            events_.emit(static_cast<I3Event>(message->type), message->payload);
        if (alive.expired() || !channel_)
            return;
    }
    // What has been read already, the descriptor does not announce any more.
    next_ = scheduler_.after(Seconds{0}, [this] {
        if (channel_)
            read();
    });
}

} // namespace tavrin
