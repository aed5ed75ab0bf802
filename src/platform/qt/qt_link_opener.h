#pragma once

#include "ports/session.h"

#include <QTextBrowser>

#include <filesystem>
#include <functional>
#include <memory>

namespace tavrin {

/// Opens pages and folders with what the desktop has for them; nothing waits for the program that opens. The
/// page about the permission is shown in a window of this program where nothing else can show it.
class QtLinkOpener final : public LinkOpener {
public:
    /// `helpPage` is the page's file; `canOpenPages` tells whether some program shows web pages.
    QtLinkOpener(std::filesystem::path helpPage, std::function<bool()> canOpenPages);
    ~QtLinkOpener() override;

    bool openAccessibilitySettings() override;

    /// False also when there is no such folder.
    bool openFolder(const std::filesystem::path& folder) override;

private:
    std::filesystem::path helpPage_;
    std::function<bool()> canOpenPages_;
    std::unique_ptr<QTextBrowser> window_; ///< made when first needed
};

} // namespace tavrin
