#pragma once

namespace tavrin {

/// The desktop's own answer to whether this program may see and move other applications' windows.
class AccessibilityTrust {
public:
    virtual ~AccessibilityTrust() = default;

    /// The answer now, without showing anything; false when the desktop cannot be asked.
    virtual bool isProcessTrusted() = 0;

    enum class Prompt { show, suppress };

    /// As above, after showing the desktop's permission prompt to an untrusted program where there is one.
    virtual bool isProcessTrusted(Prompt prompt) = 0;
};

} // namespace tavrin
