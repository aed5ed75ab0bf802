#include "base/text.h"
#include "fuzz_support.h"
#include "platform/applications/application_matcher.h"
#include "platform/x11/window_frame.h"
#include "platform/x11/work_area.h"
#include "platform/x11/x11_property.h"
#include "platform/x11/x11_window.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

namespace {

using namespace tavrin;

constexpr std::size_t limit = 64;

/// The answer of a server with a property of any type, format and content.
class Answer {
public:
    explicit Answer(FuzzedDataProvider& input) {
        constexpr std::uint8_t formats[] = {0, 8, 16, 32};
        const auto format = input.PickValueInArray(formats);
        const auto unit = std::max<std::size_t>(format / 8, 1);
        auto content = input.ConsumeRandomLengthString(2 * limit);
        content.resize(format == 0 ? 0 : content.size() / unit * unit);
        storage_ = std::make_unique<std::uint8_t[]>(sizeof(xcb_get_property_reply_t) + content.size());
        xcb_get_property_reply_t head{};
        head.format = format;
        head.type = input.ConsumeBool() ? XCB_ATOM_STRING : input.ConsumeIntegral<xcb_atom_t>();
        head.value_len = static_cast<std::uint32_t>(content.size() / unit);
        head.length = static_cast<std::uint32_t>((content.size() + 3) / 4);
        std::memcpy(storage_.get(), &head, sizeof head);
        std::memcpy(storage_.get() + sizeof head, content.data(), content.size());
    }

    const xcb_get_property_reply_t* get() const {
        return reinterpret_cast<const xcb_get_property_reply_t*>(storage_.get());
    }

private:
    std::unique_ptr<std::uint8_t[]> storage_;
};

PixelRect anyRect(FuzzedDataProvider& input) {
    return {input.ConsumeIntegral<std::int16_t>(), input.ConsumeIntegral<std::int16_t>(),
            input.ConsumeIntegral<std::uint16_t>(), input.ConsumeIntegral<std::uint16_t>()};
}

std::optional<std::string> anyText(FuzzedDataProvider& input) {
    const Answer answer(input);
    for (const auto& text : texts(answer.get(), limit)) {
        fuzz::require(text.size() <= limit, "a text beyond its limit");
        fuzz::require(sanitizedUtf8(text, limit) == text, "a text that is not valid UTF-8");
    }
    return text(answer.get(), limit);
}

void checkFrames(const X11Window& window) {
    const auto visible = visibleRect(window.client, window.borders());
    const auto client = clientRect(visible, window.borders());
    fuzz::require(client.width >= 1 && client.height >= 1, "a window of no size");
    if (visible.width > 0 && visible.height > 0 && window.client.width > 0 && window.client.height > 0)
        fuzz::require(client == window.client, "reading and writing a frame disagree");
    const auto frame = desktopSpaceRect(visible);
    fuzz::require(std::isfinite(frame.x) && std::isfinite(frame.width), "a frame that is no frame");
    static_cast<void>(pixels(frame.width));
    for (std::uint32_t gravity = 0; gravity < 12; ++gravity)
        static_cast<void>(configureRequestRect(client, window.borders().decorations, gravity));
}

void checkWorkAreas(FuzzedDataProvider& input, const PixelRect& monitor) {
    std::vector<Dock> docks;
    for (int i = 0; i < 3; ++i)
        if (const auto found = strut(cardinals(Answer(input).get())))
            docks.push_back({*found, anyRect(input)});
    const auto free = areaWithoutDocks(monitor, anyRect(input), docks);
    if (monitor.width > 0 && monitor.height > 0) {
        fuzz::require(free.width > 0 && free.height > 0, "a display without room");
        fuzz::require(intersection(free, monitor) == free, "room outside of the display");
    }
    static_cast<void>(workAreaOn(monitor, cardinals(Answer(input).get())));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const DesktopEntryIndex noEntries({}, {});
    FuzzedDataProvider input(data, size);
    X11Window window;
    window.client = anyRect(input);
    window.borderWidth = input.ConsumeIntegral<std::uint16_t>();
    window.decorations = frameInsets(cardinals(Answer(input).get()));
    window.shadows = frameInsets(cardinals(Answer(input).get()));
    window.clues = {
        .applicationID = anyText(input), .instanceName = anyText(input), .className = anyText(input)};
    window.title = anyText(input).value_or("");
    window.desktop = cardinal(Answer(input).get());
    checkFrames(window);
    checkWorkAreas(input, anyRect(input));
    static_cast<void>(matchApplication(noEntries, window.clues, {}));
    return 0;
}
