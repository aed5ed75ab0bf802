#pragma once

#include <QIcon>

#include <optional>
#include <string>

namespace tavrin {

/// The icon of an application by the name or the path in its desktop entry; a null icon when the theme has
/// none.
QIcon applicationIcon(const std::optional<std::string>& iconName);

/// As above, or a plain drawing for an application without an icon.
QIcon applicationIconOrPlaceholder(const std::optional<std::string>& iconName);

} // namespace tavrin
