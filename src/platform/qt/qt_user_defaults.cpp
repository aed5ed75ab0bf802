#include "platform/qt/qt_user_defaults.h"

#include <QFile>
#include <QStandardPaths>

#include <algorithm>

namespace tavrin {

QtUserDefaults::QtUserDefaults(const std::filesystem::path& file)
    : settings_(QFile::decodeName(file.c_str()), QSettings::IniFormat) {}

std::filesystem::path QtUserDefaults::defaultFile() {
    const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(QFile::encodeName(folder).toStdString()) / "Tavrin" / "defaults.ini";
}

bool QtUserDefaults::isUsable() {
    settings_.sync();
    if (settings_.status() != QSettings::NoError || !settings_.isWritable())
        return false;
    // A file that is there has been written by this class. One that lost its values, or part of them, must
    // not look like one that never had any.
    const auto keys = settings_.allKeys();
    const auto isWhole = [this](const QString& key) {
        const auto value = settings_.value(key).toString();
        bool isNumber = false;
        value.toLongLong(&isNumber);
        return isNumber || value == QLatin1String("true") || value == QLatin1String("false");
    };
    return isEmpty() || (!keys.isEmpty() && std::all_of(keys.begin(), keys.end(), isWhole));
}

bool QtUserDefaults::isEmpty() {
    return !QFile::exists(settings_.fileName());
}

std::int64_t QtUserDefaults::integer(const std::string& key) {
    bool isNumber = false;
    const auto value = text(key).toLongLong(&isNumber);
    return isNumber ? value : 0;
}

bool QtUserDefaults::boolean(const std::string& key) {
    return text(key) == "true";
}

void QtUserDefaults::setInteger(const std::string& key, std::int64_t value) {
    setText(key, QString::number(value));
}

void QtUserDefaults::setBoolean(const std::string& key, bool value) {
    setText(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

QString QtUserDefaults::text(const std::string& key) {
    return settings_.value(QString::fromStdString(key)).toString();
}

void QtUserDefaults::setText(const std::string& key, const QString& text) {
    settings_.setValue(QString::fromStdString(key), text);
    settings_.sync();
}

} // namespace tavrin
