#pragma once

#include "base/token.h"
#include "records/key_combo.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>

class QKeyEvent;

namespace tavrin {

/// Key presses that go to this program's own windows, seen before any window, menu or shortcut of them.
class QtLocalKeyMonitor final : public QObject {
public:
    using Handler = std::function<bool(const KeyEvent&)>;
    /// The number of a key in the input layer, by the number that the display server gives it; absent when
    /// the key's position is unknown.
    using KeyPosition = std::function<std::optional<std::uint32_t>(std::uint32_t)>;

    explicit QtLocalKeyMonitor(KeyPosition keyPosition);

    /// `handler` is called with every press that is not a repetition until the token is released. It
    /// returns true to consume the press; handlers added later are then not asked.
    Token add(Handler handler);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    /// A press, which Qt delivers twice: first to find out whether it is a shortcut.
    struct Press {
        quint64 timestamp = 0;
        quint32 scanCode = 0;
        bool isConsumed = false;
    };

    std::optional<KeyEvent> keyEvent(const QKeyEvent& event) const;
    bool isConsumed(const QKeyEvent& event);
    bool offer(const KeyEvent& press);

    KeyPosition keyPosition_;
    std::shared_ptr<std::list<std::shared_ptr<Handler>>> handlers_ =
        std::make_shared<std::list<std::shared_ptr<Handler>>>();
    std::optional<Press> lastPress_;
};

} // namespace tavrin
