#pragma once

#include "support/desktop/x_connection.h"

#include <QString>

namespace tavrin::desktop {

/// Waits until nothing has been drawn on the screen for a moment, so that a picture shows finished windows.
void waitUntilDrawn(XConnection& connection);

/// Writes the picture of the whole screen as PNG.
bool takeScreenshot(XConnection& connection, const QString& file);

} // namespace tavrin::desktop
