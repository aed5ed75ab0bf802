#include "platform/qt/icon_resources.h"

#include <QtGlobal>

// The macro has to stand outside of every namespace.
static void initializeIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace tavrin {

void registerIconResources() {
    initializeIcons();
}

} // namespace tavrin
