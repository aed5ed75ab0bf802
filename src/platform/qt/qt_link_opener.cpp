#include "platform/qt/qt_link_opener.h"

#include "platform/qt/panel_icon.h"

#include <QDesktopServices>
#include <QUrl>

#include <utility>

namespace tavrin {
namespace {

QUrl urlOf(const std::filesystem::path& path) {
    return QUrl::fromLocalFile(QString::fromStdString(path.string()));
}

} // namespace

QtLinkOpener::QtLinkOpener(std::filesystem::path helpPage, std::function<bool()> canOpenPages)
    : helpPage_(std::move(helpPage)), canOpenPages_(std::move(canOpenPages)) {}

QtLinkOpener::~QtLinkOpener() = default;

bool QtLinkOpener::openAccessibilitySettings() {
    std::error_code error;
    // What opens things succeeds when it could be started, so ask first whether it will find a browser.
    if (std::filesystem::is_regular_file(helpPage_, error) && canOpenPages_() &&
        QDesktopServices::openUrl(urlOf(helpPage_)))
        return true;
    if (!window_) {
        registerResources();
        window_ = std::make_unique<QTextBrowser>();
        window_->setSource(QUrl(QStringLiteral("qrc:/help/permission.html")));
        window_->setWindowTitle(window_->documentTitle());
        window_->setOpenLinks(false);
        constexpr QSize readable(560, 480);
        window_->resize(readable);
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
    return true;
}

bool QtLinkOpener::openFolder(const std::filesystem::path& folder) {
    std::error_code error;
    return folder.is_absolute() && std::filesystem::is_directory(folder, error) &&
           QDesktopServices::openUrl(urlOf(folder));
}

} // namespace tavrin
