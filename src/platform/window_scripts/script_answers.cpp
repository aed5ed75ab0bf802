#include "platform/window_scripts/script_answers.h"

#include "base/text.h"

#include <QJsonArray>
#include <QUuid>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tavrin {
namespace {

constexpr qsizetype windowLimit = 10'000;
constexpr qsizetype screenLimit = 64;
constexpr double coordinateLimit = 1e6;
constexpr std::size_t titleLimit = 1024;
constexpr std::size_t nameLimit = 256;

std::string text(const QJsonValue& value, std::size_t limit) {
    return sanitizedUtf8(value.toString().toStdString(), limit);
}

std::optional<std::string> name(const QJsonValue& value) {
    auto result = text(value, nameLimit);
    return result.empty() ? std::nullopt : std::optional(std::move(result));
}

/// Frames on a screen with a fractional scale carry noise in the last digits.
double withoutNoise(double value) {
    return std::round(value * 1024) / 1024;
}

std::optional<Rect> rectangle(const QJsonValue& value) {
    const auto numbers = value.toArray();
    if (numbers.size() != 4)
        return std::nullopt;
    std::array<double, 4> sides{};
    for (int i = 0; i < 4; ++i)
        sides.at(static_cast<std::size_t>(i)) =
            withoutNoise(numbers[i].toDouble(std::numeric_limits<double>::quiet_NaN()));
    const Rect rect{sides[0], sides[1], sides[2], sides[3]};
    return isSaneFrame(rect, coordinateLimit) ? std::optional(rect) : std::nullopt;
}

/// GNOME's identifiers are numbers. KWin's are random, so half of one identifies a window just as well.
std::optional<WindowID> windowID(const QString& identifier) {
    bool isNumber = false;
    if (const auto number = identifier.toLongLong(&isNumber); isNumber && number >= 0)
        return number;
    const QUuid uuid(identifier);
    if (uuid.isNull())
        return std::nullopt;
    return static_cast<WindowID>(qFromBigEndian<quint64>(uuid.toRfc4122().constData()) >> 1);
}

std::optional<ProcessID> processID(const QJsonValue& value) {
    const auto number = value.toInteger();
    if (number <= 0 || number > std::numeric_limits<ProcessID>::max())
        return std::nullopt;
    return static_cast<ProcessID>(number);
}

WindowKind kind(const QJsonValue& value) {
    if (value == QLatin1String("dialog"))
        return WindowKind::dialog;
    return value == QLatin1String("floating") ? WindowKind::floating : WindowKind::standard;
}

ApplicationClues clues(const QJsonObject& window) {
    ApplicationClues clues{.pid = processID(window["pid"]), .applicationID = name(window["application"])};
    // The class of a Wayland window is its application ID once more.
    if (window["x11"].toBool() || !clues.applicationID) {
        clues.instanceName = name(window["instance"]);
        clues.className = name(window["class"]);
    }
    return clues;
}

} // namespace

std::optional<ScriptListing> readListing(const QJsonObject& answer) {
    if (!answer["windows"].isArray())
        return std::nullopt;
    ScriptListing result;
    const auto windows = answer["windows"].toArray();
    for (qsizetype i = 0; i < std::min(windows.size(), windowLimit); ++i) {
        const auto window = windows[i].toObject();
        const auto identifier = window["id"].toString();
        const auto id = windowID(identifier);
        const auto frame = rectangle(window["frame"]);
        if (!id || !frame || !result.identifiers.emplace(*id, identifier).second)
            continue;
        result.listing.windows.push_back({.id = *id,
                                          .application = clues(window),
                                          .title = text(window["title"], titleLimit),
                                          .frame = *frame,
                                          .isOnScreen = window["visible"].toBool(),
                                          .kind = kind(window["kind"])});
    }
    if (const auto active = windowID(answer["active"].toString());
        active && result.identifiers.contains(*active))
        result.listing.activeWindow = active;
    return result;
}

ScriptAreas readAreas(const QJsonObject& answer) {
    ScriptAreas result{.version = answer["version"].toInt()};
    const auto screens = answer["screens"].toArray();
    for (qsizetype i = 0; i < std::min(screens.size(), screenLimit); ++i) {
        const auto screen = screens[i].toObject();
        if (const auto frame = rectangle(screen["frame"]))
            result.screens.push_back(
                {*frame, rectangle(screen["work"]).value_or(*frame), screen["primary"].toBool()});
    }
    return result;
}

std::vector<DesktopScreen> screensOf(const WaylandOutputs& outputs, const ScriptAreas& areas,
                                     const std::filesystem::path& systemRoot) {
    const auto usual = outputs.primary();
    const bool knowsPrimary =
        std::ranges::find(areas.screens, true, &ScriptScreen::isPrimary) != areas.screens.end();
    std::vector<DesktopScreen> screens;
    for (const auto& output : outputs.outputs()) {
        // Scripts do not know the outputs' names everywhere.
        const auto area = std::ranges::find(areas.screens, output.frame, &ScriptScreen::frame);
        const bool isKnown = area != areas.screens.end();
        auto screen = std::ranges::find(screens, output.frame, &DesktopScreen::frame);
        if (screen == screens.end())
            screen = screens.insert(screen, {.frame = output.frame,
                                             .workArea = isKnown ? area->workArea : output.frame,
                                             .scale = output.scale});
        screen->isPrimary |= knowsPrimary ? isKnown && area->isPrimary : output.name == usual;
        screen->hardware.push_back(outputHardware(output, systemRoot));
    }
    return screens;
}

std::optional<std::vector<PlacementOutcome>> readOutcomes(const QJsonObject& answer, std::size_t count) {
    const auto words = answer["outcomes"].toArray();
    if (static_cast<std::size_t>(words.size()) != count)
        return std::nullopt;
    const std::map<QString, PlacementOutcome> meanings = {{"done", PlacementOutcome::done},
                                                          {"adjusted", PlacementOutcome::adjusted},
                                                          {"pending", PlacementOutcome::pending},
                                                          {"gone", PlacementOutcome::gone},
                                                          {"refused", PlacementOutcome::refused}};
    std::vector<PlacementOutcome> result;
    for (const auto& word : words) {
        const auto found = meanings.find(word.toString());
        result.push_back(found == meanings.end() ? PlacementOutcome::timedOut : found->second);
    }
    return result;
}

std::optional<Point> readPointer(const QJsonObject& answer) {
    const auto numbers = answer["pointer"].toArray();
    if (numbers.size() != 2 || !numbers[0].isDouble() || !numbers[1].isDouble())
        return std::nullopt;
    return Point{numbers[0].toDouble(), numbers[1].toDouble()};
}

} // namespace tavrin
