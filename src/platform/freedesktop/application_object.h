#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// The object org.freedesktop.Application of this program, on a bus connection of its own. It can do one
/// thing: be activated.
class ApplicationObject : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    static constexpr QLatin1String interface{"org.freedesktop.Application"};

    explicit ApplicationObject(const std::string& address);
    ~ApplicationObject() override;

    QDBusConnection& connection() { return connection_; }

    /// Answers calls at the path that belongs to `name`: org.tavrin.Tavrin is at /org/tavrin/Tavrin.
    void serve(const QString& name);
    static QString objectPath(QString name);

    void setOnActivate(std::function<void(const std::string&)> activated);

public Q_SLOTS:
    // NOLINTBEGIN(readability-identifier-naming): the interface's names
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE void ActivateAction(const QString& name, const QVariantList& parameter,
                                     const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

private:
    QString connectionName() const;

    QDBusConnection connection_;
    std::function<void(const std::string&)> activated_;
    std::optional<std::string> pending_; ///< the token of an activation that nobody has heard of yet
};

} // namespace tavrin
