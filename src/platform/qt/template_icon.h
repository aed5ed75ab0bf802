#pragma once

#include <QIcon>
#include <QImage>

namespace tavrin {

/// The surface a single-coloured drawing stands on.
enum class Shade { light, dark };

/// Whether there is a drawing with that name.
bool hasTemplateImage(const QString& name);

/// The drawing in the ink that reads well on `shade`, rendered at every size it is asked for. A drawing
/// with variants of its own (NAME + "Light", NAME + "Dark") is shown in these.
QIcon templateIcon(const QString& name, Shade shade);

/// A short text as an icon.
QIcon textIcon(const QString& text, Shade shade);

/// The colour of single-coloured drawings and letters on `shade`.
QColor inkColor(Shade shade);

} // namespace tavrin
