#pragma once

#include <QColor>
#include <QIcon>

#include <optional>
#include <string>

namespace tavrin {

/// A single-coloured drawing of the program (:/icons/NAME.svg) in the text colour of the palette it stands
/// on, or in `color`. Rendered afresh at every size.
QIcon symbolIcon(const QString& name, std::optional<QColor> color = {});

/// The icon of an application by the name or the path in its desktop entry; a null icon when the theme has
/// none.
QIcon applicationIcon(const std::optional<std::string>& iconName);

/// As above, or a plain drawing for an application without an icon.
QIcon applicationIconOrPlaceholder(const std::optional<std::string>& iconName);

} // namespace tavrin
