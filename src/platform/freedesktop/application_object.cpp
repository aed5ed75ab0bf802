#include "platform/freedesktop/application_object.h"

#include "base/text.h"

#include <utility>

namespace tavrin {

ApplicationObject::ApplicationObject(const std::string& address)
    : connection_(QDBusConnection::connectToBus(QString::fromStdString(address), connectionName())) {}

ApplicationObject::~ApplicationObject() {
    QDBusConnection::disconnectFromBus(connectionName());
}

QString ApplicationObject::connectionName() const {
    return QString::asprintf("tavrin-%p", static_cast<const void*>(this));
}

QString ApplicationObject::objectPath(QString name) {
    return QLatin1Char('/') +
           name.replace(QLatin1Char('.'), QLatin1Char('/')).replace(QLatin1Char('-'), QLatin1Char('_'));
}

void ApplicationObject::serve(const QString& name) {
    connection_.registerObject(objectPath(name), this, QDBusConnection::ExportScriptableSlots);
}

void ApplicationObject::setOnActivate(std::function<void(const std::string&)> activated) {
    activated_ = std::move(activated);
    if (activated_)
        if (const auto token = std::exchange(pending_, std::nullopt))
            activated_(*token);
}

void ApplicationObject::Activate(const QVariantMap& platformData) {
    constexpr std::size_t maximumTokenLength = 1024;
    std::string token;
    for (const auto* key : {"activation-token", "desktop-startup-id"})
        if (token.empty())
            token = sanitizedUtf8(platformData.value(QLatin1String(key)).toString().toStdString(),
                                  maximumTokenLength);
    if (activated_)
        activated_(token);
    else
        pending_ = token;
}

void ApplicationObject::Open(const QStringList& uris, const QVariantMap& platformData) {
    Q_UNUSED(uris)
    Activate(platformData);
}

void ApplicationObject::ActivateAction(const QString& name, const QVariantList& parameter,
                                       const QVariantMap& platformData) {
    Q_UNUSED(name)
    Q_UNUSED(parameter)
    Activate(platformData);
}

} // namespace tavrin
