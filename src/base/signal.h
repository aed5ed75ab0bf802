#pragma once

#include "base/token.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace tavrin {

/// A list of callbacks. A callback may connect, disconnect or destroy the signal while it is being
/// called: a callback that is disconnected meanwhile is not called any more, a new one is called next time.
template <class... Arguments>
class Signal {
public:
    using Callback = std::function<void(Arguments...)>;

    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    /// The callback is called, in the order of connection, until the token is released.
    Token connect(Callback callback) {
        const auto key = state_->nextKey++;
        state_->callbacks.emplace(key, std::make_shared<Callback>(std::move(callback)));
        return Token([weak = std::weak_ptr(state_), key] {
            if (const auto state = weak.lock())
                state->callbacks.erase(key);
        });
    }

    void emit(Arguments... arguments) const {
        const std::weak_ptr<State> weak = state_;
        std::vector<std::uint64_t> keys;
        for (const auto& [key, callback] : state_->callbacks)
            keys.push_back(key);
        for (const auto key : keys) {
            const auto state = weak.lock();
            if (!state)
                return;
            const auto found = state->callbacks.find(key);
            if (found == state->callbacks.end())
                continue;
            const auto callback = found->second;
            (*callback)(arguments...);
        }
    }

    std::size_t connectionCount() const { return state_->callbacks.size(); }
    bool isConnected() const { return connectionCount() > 0; }

private:
    struct State {
        std::map<std::uint64_t, std::shared_ptr<Callback>> callbacks;
        std::uint64_t nextKey = 0;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace tavrin
