#pragma once

namespace tavrin {

/// Whether the desktop lets this program see and move the windows of other applications.
enum class AccessibilityPermissionState { unknown, denied, granted };

} // namespace tavrin
