#include "platform/qt/qt_local_key_monitor.h"

#include "records/key_combo.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include <vector>

namespace tavrin {

QtLocalKeyMonitor::QtLocalKeyMonitor(KeyPosition keyPosition) : keyPosition_(std::move(keyPosition)) {
    QCoreApplication::instance()->installEventFilter(this);
}

std::optional<KeyEvent> QtLocalKeyMonitor::keyEvent(const QKeyEvent& event) const {
    const auto keyCode = keyPosition_(event.nativeScanCode()).and_then(virtualKeyCode);
    if (!keyCode)
        return {};
    ModifierSet modifiers;
    const auto add = [&](Qt::KeyboardModifier held, ModifierSet modifier) {
        if (event.modifiers() & held)
            modifiers = modifiers | modifier;
    };
    add(Qt::ControlModifier, ModifierSet::control);
    add(Qt::AltModifier, ModifierSet::option);
    add(Qt::MetaModifier, ModifierSet::command);
    add(Qt::ShiftModifier, ModifierSet::shift);
    return KeyEvent{*keyCode, modifiers.rawValue};
}

Token QtLocalKeyMonitor::add(Handler handler) {
    handlers_->push_back(std::make_shared<Handler>(std::move(handler)));
    const std::weak_ptr list = handlers_;
    const std::weak_ptr added = handlers_->back();
    return Token([list, added] {
        const auto handlers = list.lock();
        const auto own = added.lock();
        if (handlers && own)
            handlers->remove(own);
    });
}

bool QtLocalKeyMonitor::eventFilter(QObject* object, QEvent* event) {
    const bool isPress = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    if (!isPress || handlers_->empty())
        return QObject::eventFilter(object, event);
    auto& key = static_cast<QKeyEvent&>(*event);
    if (!isConsumed(key))
        return QObject::eventFilter(object, event);
    // An accepted override keeps Qt from looking for a shortcut.
    key.accept();
    return true;
}

bool QtLocalKeyMonitor::isConsumed(const QKeyEvent& event) {
    // The repetitions of a consumed press do nothing either.
    if (event.isAutoRepeat())
        return lastPress_ && lastPress_->scanCode == event.nativeScanCode() && lastPress_->isConsumed;
    const auto press = keyEvent(event);
    if (!press)
        return false;
    const bool isKnown = lastPress_ && lastPress_->timestamp == event.timestamp() &&
                         lastPress_->scanCode == event.nativeScanCode();
    if (!isKnown) {
        lastPress_ = Press{event.timestamp(), event.nativeScanCode(), false};
        const bool consumed = offer(*press);
        lastPress_ = Press{event.timestamp(), event.nativeScanCode(), consumed};
    }
    return lastPress_->isConsumed;
}

bool QtLocalKeyMonitor::offer(const KeyEvent& press) {
    // A handler may add and remove handlers, itself among them.
    std::vector<std::weak_ptr<Handler>> asked(handlers_->begin(), handlers_->end());
    for (const auto& weak : asked)
        if (const auto handler = weak.lock(); handler && (*handler)(press))
            return true;
    return false;
}

} // namespace tavrin
