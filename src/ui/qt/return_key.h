#pragma once

#include <QKeyEvent>

namespace tavrin {

/// The keys that press what has the focus in every control of the settings, as Space does.
inline bool isReturnKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace tavrin
