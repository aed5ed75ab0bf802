#include "support/desktop/screenshot.h"

#include "support/desktop/wait.h"

#include <QElapsedTimer>
#include <QImage>
#include <xcb/damage.h>

namespace tavrin::desktop {

void waitUntilDrawn(XConnection& connection) {
    constexpr std::chrono::milliseconds quiet{300};
    constexpr std::chrono::milliseconds longest{5000}; // something may blink for ever
    auto* c = connection.raw();
    const auto* extension = xcb_get_extension_data(c, &xcb_damage_id);
    if (!extension || !extension->present)
        return;
    const Reply<xcb_damage_query_version_reply_t> version{
        xcb_damage_query_version_reply(c, xcb_damage_query_version(c, 1, 1), nullptr)};
    const auto damage = xcb_generate_id(c);
    xcb_damage_create(c, damage, connection.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);

    bool isDrawing = false;
    connection.onEvent = [&](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != extension->first_event + XCB_DAMAGE_NOTIFY)
            return;
        isDrawing = true;
        xcb_damage_subtract(c, damage, XCB_NONE, XCB_NONE); // tell of the next one, too
    };
    QElapsedTimer elapsed;
    elapsed.start();
    do
        isDrawing = false;
    while (waitUntil([&] { return isDrawing; }, quiet) && !elapsed.hasExpired(longest.count()));
    connection.onEvent = nullptr;
    xcb_damage_destroy(c, damage);
    connection.sync();
}

bool takeScreenshot(XConnection& connection, const QString& file) {
    auto* c = connection.raw();
    const Reply<xcb_get_geometry_reply_t> size{
        xcb_get_geometry_reply(c, xcb_get_geometry(c, connection.root()), nullptr)};
    if (!size)
        return false;
    const auto cookie =
        xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(), 0, 0, size->width, size->height, ~0U);
    const Reply<xcb_get_image_reply_t> reply{xcb_get_image_reply(c, cookie, nullptr)};
    if (!reply || xcb_get_image_data_length(reply.get()) < size->width * size->height * 4)
        return false;
    const QImage picture(xcb_get_image_data(reply.get()), size->width, size->height, QImage::Format_RGB32);
    return picture.save(file);
}

} // namespace tavrin::desktop
