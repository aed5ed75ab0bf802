#include "ui/troubleshooting_report.h"

#include <fmt/format.h>

namespace tavrin {
namespace {

std::string frameText(const Rect& frame) {
    return fmt::format("{:g}, {:g} · {:g} × {:g}", frame.x, frame.y, frame.width, frame.height);
}

std::string fractionText(const Rect& frame) {
    return fmt::format("{:.3f}, {:.3f} · {:.3f} × {:.3f}", frame.x, frame.y, frame.width, frame.height);
}

} // namespace

std::string TroubleshootingReport::text() const {
    std::string text = "Tavrin troubleshooting\n";
    const auto add = [&](const std::vector<Line>& lines, const char* indent) {
        for (const Line& line : lines)
            text += fmt::format("{}{}: {}\n", indent, line.label, line.value);
    };
    add(program, "");
    text += fmt::format("Data: {}\n\nDisplays\n", dataDirectory.string());
    for (const Display& display : displays) {
        text += display.title + "\n";
        add(display.lines, "    ");
    }
    text += fmt::format("Arrangement: {}\nSetup: {}\n\nLast restore\n", arrangementSignature, setup);
    if (lastAttempt.empty())
        text += "none in this session\n";
    add(lastAttempt, "");
    return text;
}

std::vector<TroubleshootingReport::Display> describeDisplays(const DisplaySnapshotCollection& displays) {
    std::vector<TroubleshootingReport::Display> described;
    for (const DisplaySnapshot& display : displays.displays)
        described.push_back(
            {fmt::format("Display {}{}", described.size() + 1, display.isInternal ? " (built-in)" : ""),
             {{"Identity", display.stableID.value_or("none")},
              {"Key", display.arrangementKey()},
              {"Pixels", fmt::format("{} at scale {}", display.pixelSizeBucket, display.scaleBucket)},
              {"Usable area", frameText(display.visibleFrame)},
              {"Place", fractionText(display.normalizedFrame)}}});
    return described;
}

std::string countsText(const RestoreResult& result) {
    return fmt::format("{} of {} {} in place, {} not open, {} not moved", result.matched, result.totalSaved,
                       result.totalSaved == 1 ? "window" : "windows", result.unmatchedCount,
                       result.moveFailureCount);
}

std::string kindText(SavedLayoutKind kind) {
    return kind == SavedLayoutKind::generic ? "Generic" : "App-specific";
}

} // namespace tavrin
