#include "support/desktop/x_connection.h"

#include <QAbstractEventDispatcher>

namespace tavrin::desktop {

XConnection::XConnection(const std::string& display) {
    int number = 0;
    connection_ = xcb_connect(display.c_str(), &number);
    if (!isOpen())
        return;
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_);

    notifier_ =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { handleEvents(); });
    // Events that arrived together with a reply lie in the library's queue, where no socket tells of them.
    auto* dispatcher = QAbstractEventDispatcher::instance();
    beforeBlocking_ =
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, [this] { handleEvents(); });
}

XConnection::~XConnection() {
    QObject::disconnect(beforeBlocking_);
    notifier_.reset();
    xcb_disconnect(connection_);
}

void XConnection::handleEvents() {
    bool any = false;
    while (Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        any = true;
        if (onEvent)
            onEvent(*event);
        // The top bit marks what another client sent; only the server's own word counts as a move.
        if (event->response_type == XCB_CREATE_NOTIFY)
            noteCreated(*reinterpret_cast<xcb_create_notify_event_t*>(event.get()));
        else if (event->response_type == XCB_CONFIGURE_NOTIFY)
            noteConfigured(*reinterpret_cast<xcb_configure_notify_event_t*>(event.get()));
    }
    if (!isOpen())
        notifier_->setEnabled(false);
    xcb_flush(connection_);
    if (any)
        QAbstractEventDispatcher::instance()->wakeUp();
}

void XConnection::noteCreated(const xcb_create_notify_event_t& event) {
    lastFrames_[event.window] = {double(event.x), double(event.y), double(event.width), double(event.height)};
}

void XConnection::noteConfigured(const xcb_configure_notify_event_t& event) {
    if (event.event != root() || event.window == root())
        return;
    const Rect frame{double(event.x), double(event.y), double(event.width), double(event.height)};
    if (lastFrames_[event.window] != frame)
        moves_.push_back({event.window, frame});
    lastFrames_[event.window] = frame;
}

std::vector<XConnection::Move> XConnection::takeMoves() {
    sync();
    return std::exchange(moves_, {});
}

xcb_atom_t XConnection::atom(const std::string& name) {
    auto [entry, isNew] = atoms_.try_emplace(name, XCB_NONE);
    if (isNew) {
        const auto cookie = xcb_intern_atom(connection_, 0, name.size(), name.data());
        if (Reply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection_, cookie, nullptr)})
            entry->second = reply->atom;
    }
    return entry->second;
}

namespace {

Reply<xcb_get_property_reply_t> property(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name) {
    const auto cookie = xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096);
    return Reply<xcb_get_property_reply_t>{xcb_get_property_reply(connection, cookie, nullptr)};
}

} // namespace

std::vector<std::uint32_t> XConnection::cardinals(xcb_window_t window, const std::string& name) {
    const auto reply = property(connection_, window, atom(name));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::string XConnection::text(xcb_window_t window, const std::string& name) {
    const auto reply = property(connection_, window, atom(name));
    if (!reply || reply->format != 8)
        return {};
    const auto* first = static_cast<const char*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

void XConnection::askWindowManager(xcb_window_t window, const std::string& message,
                                   std::array<std::uint32_t, 5> data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(connection_, 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection_);
}

void XConnection::watch(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
}

void XConnection::setCardinals(xcb_window_t window, const std::string& property, xcb_atom_t type,
                               const std::vector<std::uint32_t>& values) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
    sync();
}

void XConnection::ignore(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
}

void XConnection::sync() {
    Reply<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)};
    handleEvents();
}

} // namespace tavrin::desktop
