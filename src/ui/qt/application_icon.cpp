#include "ui/qt/application_icon.h"

#include "ui/qt/symbol_icon.h"

#include <QDir>
#include <QFileInfo>

namespace tavrin {
namespace {

constexpr qint64 largestIconFile = 4 * 1024 * 1024;

} // namespace

QIcon applicationIcon(const std::optional<std::string>& iconName) {
    if (!iconName || iconName->empty())
        return {};
    const auto name = QString::fromStdString(*iconName);
    if (QDir::isAbsolutePath(name)) {
        const QFileInfo file(name);
        return file.isFile() && file.size() <= largestIconFile ? QIcon(name) : QIcon();
    }
    // Older entries name the file.
    QIcon icon = QIcon::fromTheme(name);
    if (icon.isNull() && name.contains(QLatin1Char('.')))
        icon = QIcon::fromTheme(QFileInfo(name).completeBaseName());
    return icon;
}

QIcon applicationIconOrPlaceholder(const std::optional<std::string>& iconName) {
    const QIcon icon = applicationIcon(iconName);
    return icon.isNull() ? symbolIcon(QStringLiteral("app.badge")) : icon;
}

} // namespace tavrin
