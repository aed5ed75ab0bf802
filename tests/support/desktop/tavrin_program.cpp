#include "support/desktop/tavrin_program.h"

#include "support/desktop/wait.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <unistd.h>

namespace tavrin::desktop {

namespace {

const std::string automaticMark = " (auto)";

// The title under which a layout of the present setup stands in the menu.
std::optional<std::string> titleOf(const std::string& layout, const std::vector<TrayMenuItem>& menu) {
    for (const auto& item : menu)
        if (item.children.empty() && (item.title == layout || item.title == layout + automaticMark))
            return item.title;
    return std::nullopt;
}

} // namespace

bool TavrinProgram::launch() {
    process_ = desktop_.startProgram(qEnvironmentVariable("TAVRIN_PROGRAM", TAVRIN_PROGRAM_PATH));
    return process_ != nullptr;
}

bool TavrinProgram::start() {
    if (!launch() || !desktop_.tray().waitForItem())
        return false;
    restingPicture_ = desktop_.tray().picture();
    return true;
}

bool TavrinProgram::waitUntilRegistered() {
    const QString name = "org.tavrin.Tavrin";
    auto bus = desktop_.sessionBus().connection();
    QDBusServiceWatcher arrival(name, bus); // wakes the waiting
    return waitUntil([&] { return bus.interface()->isServiceRegistered(name).value(); });
}

TavrinProgram::Usage TavrinProgram::usage() const {
    const auto read = [&](const char* name) {
        QFile file(QString("/proc/%1/%2").arg(process_->pid()).arg(name));
        return file.open(QIODevice::ReadOnly) ? QString(file.readAll()) : QString();
    };
    const auto peak = read("status").section("VmHWM:", 1).section("kB", 0, 0).trimmed();
    // After the name in brackets; the times of user and system are the 14th and 15th value of all.
    const auto values = read("stat").section(") ", -1).split(' ');
    const auto ticks = values.value(11).toDouble() + values.value(12).toDouble();
    return {peak.toLong(), ticks / static_cast<double>(::sysconf(_SC_CLK_TCK))};
}

std::string TavrinProgram::menu() {
    const auto items = desktop_.tray().openMenu();
    return items ? describe(*items) : std::string();
}

bool TavrinProgram::offers(const std::string& layout) {
    const auto items = desktop_.tray().openMenu();
    return items && titleOf(layout, *items);
}

std::optional<Rect> TavrinProgram::formArea() {
    return desktop_.windows().areaOfProcess(process_->pid());
}

bool TavrinProgram::openSaveForm() {
    return desktop_.tray().choose({"Save Layout…"}) &&
           waitUntil([this] { return desktop_.windows().processWithKeyboard() == process_->pid(); });
}

bool TavrinProgram::saveLayout(const std::string& name) {
    return openSaveForm() && desktop_.keyboard().type(name) &&
           desktop_.keyboard().press(Keyboard::returnKey) && waitUntil([this] { return !formArea(); });
}

bool TavrinProgram::restoreLayout(const std::string& name) {
    const auto items = desktop_.tray().openMenu();
    const auto title = items ? titleOf(name, *items) : std::nullopt;
    return title && restoreBy({*title});
}

bool TavrinProgram::restoreBy(const std::vector<std::string>& path) {
    return waitForRest() && desktop_.tray().choose(path) && waitForFeedback();
}

bool TavrinProgram::waitForFeedback() {
    return waitUntil([this] { return desktop_.tray().picture() != restingPicture_; });
}

bool TavrinProgram::waitForRest() {
    return waitUntil([this] { return desktop_.tray().picture() == restingPicture_; });
}

QJsonValue TavrinProgram::payload(const QString& file) const {
    QFile stored(path(file));
    if (!stored.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(stored.readAll()).object().value("payload");
}

bool TavrinProgram::setPayload(const QString& file, const QJsonValue& payload) {
    QSaveFile stored(path(file));
    const QJsonObject envelope{
        {"schemaVersion", 1}, {"updatedAt", "2024-01-01T00:00:00Z"}, {"payload", payload}};
    return stored.open(QIODevice::WriteOnly) && stored.write(QJsonDocument(envelope).toJson()) > 0 &&
           stored.commit();
}

bool TavrinProgram::makeDefault(const std::string& layout) {
    auto profiles = payload("profiles.json").toArray();
    for (const QJsonValue saved : payload("layouts.json").toArray()) {
        if (saved["name"].toString().toStdString() != layout)
            continue;
        for (QJsonValueRef profile : profiles) {
            auto changed = profile.toObject();
            if (changed["id"] != saved["profileID"])
                continue;
            changed["defaultLayoutID"] = saved["id"];
            profile = changed;
            return setPayload("profiles.json", profiles);
        }
    }
    return false;
}

} // namespace tavrin::desktop
