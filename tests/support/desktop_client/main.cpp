// Windows on request, for the desktop tests. Commands come on standard input, one a line, words separated by
// tabs; every command is answered with one line on standard output.
//
//   open key=value...          answers the window's number; keys: class, title, x, y, width, height,
//                              type (a _NET_WM_WINDOW_TYPE_ ending), undecorated, shadow (four sides:
//                              l,r,t,b), increment (w,h)
//   retitle WINDOW TITLE
//   destroy WINDOW
//   flood WINDOW PROPERTY N    changes a text property N times, as fast as the server takes it
//   vanish-on-move WINDOW...   at the first move of one of these windows, all the others are destroyed
//   stay-fullscreen WINDOW     makes it fullscreen, and again whenever it is not
#include <xcb/xcb.h>
#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <poll.h>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::vector<std::string> split(const std::string& line, char separator) {
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; std::getline(stream, word, separator);)
        words.push_back(word);
    return words;
}

class Client {
public:
    Client() : connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_))
            std::exit(2);
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    }

    int run() {
        std::array<pollfd, 2> sources{
            {{STDIN_FILENO, POLLIN, 0}, {xcb_get_file_descriptor(connection_), POLLIN, 0}}};
        std::string pending;
        while (true) {
            handleEvents();
            xcb_flush(connection_);
            if (poll(sources.data(), sources.size(), -1) < 0 || xcb_connection_has_error(connection_))
                return 1;
            if (!sources[0].revents)
                continue;
            std::array<char, 4096> buffer{};
            const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
            if (count <= 0)
                return 0;
            pending.append(buffer.data(), static_cast<std::size_t>(count));
            for (auto end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
                std::cout << obey(split(pending.substr(0, end), '\t')) << std::endl;
                pending.erase(0, end + 1);
            }
        }
    }

private:
    using Options = std::map<std::string, std::string>;

    std::string obey(const std::vector<std::string>& words) {
        if (words.empty())
            return "empty";
        std::string answer = "done";
        if (words[0] == "open") {
            Options options;
            for (const auto& word : words)
                if (const auto equals = word.find('='); equals != std::string::npos)
                    options[word.substr(0, equals)] = word.substr(equals + 1);
            answer = std::to_string(open(options));
        } else if (words[0] == "retitle" && words.size() == 3) {
            setTitle(windowOf(words[1]), words[2]);
        } else if (words[0] == "destroy" && words.size() == 2) {
            xcb_destroy_window(connection_, windowOf(words[1]));
        } else if (words[0] == "flood" && words.size() == 4) {
            const auto property = atom(words[2]), type = atom("UTF8_STRING");
            for (int count = std::atoi(words[3].c_str()); count > 0; --count)
                setBytes(windowOf(words[1]), property, type, std::to_string(count));
        } else if (words[0] == "vanish-on-move") {
            for (std::size_t index = 1; index < words.size(); ++index)
                vanishing_[windowOf(words[index])] = placeOf(windowOf(words[index]));
        } else if (words[0] == "stay-fullscreen" && words.size() == 2) {
            fullscreen_ = windowOf(words[1]);
            const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(connection_, fullscreen_, XCB_CW_EVENT_MASK, &mask);
            askForFullscreen();
        } else {
            answer = "unknown command";
        }
        // Answer only when the server has it.
        std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
        return answer;
    }

    static xcb_window_t windowOf(const std::string& word) {
        return static_cast<xcb_window_t>(std::strtoul(word.c_str(), nullptr, 10));
    }

    xcb_window_t open(Options& options) {
        const auto number = [&](const char* key, int otherwise) {
            return options.contains(key) ? std::atoi(options[key].c_str()) : otherwise;
        };
        const int x = number("x", 0), y = number("y", 0);
        const int width = number("width", 400), height = number("height", 300);
        const auto window = xcb_generate_id(connection_);
        const std::array<std::uint32_t, 2> values{screen_->white_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen_->root,
                          static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                          static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());

        const std::string name = options.contains("class") ? options["class"] : "TestClient";
        const std::string instance = options.contains("instance") ? options["instance"] : name;
        const std::string both = instance + '\0' + name + '\0';
        setBytes(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, both);
        setTitle(window, options["title"]);
        setCardinals(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(getpid())});
        std::array<char, 256> host{};
        gethostname(host.data(), host.size() - 1);
        setBytes(window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, host.data());
        if (options.contains("type"))
            setCardinals(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                         {atom("_NET_WM_WINDOW_TYPE_" + options["type"])});
        if (options.contains("undecorated"))
            setCardinals(window, "_MOTIF_WM_HINTS", atom("_MOTIF_WM_HINTS"), {2, 0, 0, 0, 0});
        if (options.contains("shadow"))
            setCardinals(window, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, numbers(options["shadow"]));

        // A position given by the user is kept by every window manager.
        xcb_size_hints_t hints{};
        xcb_icccm_size_hints_set_position(&hints, 1, x, y);
        xcb_icccm_size_hints_set_size(&hints, 1, width, height);
        if (const auto steps = numbers(options["increment"]); steps.size() == 2) {
            xcb_icccm_size_hints_set_resize_inc(&hints, static_cast<std::int32_t>(steps[0]),
                                                static_cast<std::int32_t>(steps[1]));
            xcb_icccm_size_hints_set_base_size(&hints, 4, 4);
        }
        xcb_icccm_set_wm_normal_hints(connection_, window, &hints);
        xcb_map_window(connection_, window);
        return window;
    }

    void handleEvents() {
        while (auto* event = xcb_poll_for_event(connection_)) {
            if ((event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY)
                vanishOthers(reinterpret_cast<xcb_configure_notify_event_t*>(event)->window);
            if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY && !isFullscreen())
                askForFullscreen();
            std::free(event);
        }
    }

    bool isFullscreen() {
        const auto cookie =
            xcb_get_property(connection_, 0, fullscreen_, atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, 64);
        auto* reply = xcb_get_property_reply(connection_, cookie, nullptr);
        const auto* states = reply ? static_cast<xcb_atom_t*>(xcb_get_property_value(reply)) : nullptr;
        const bool isIt = states && std::count(states, states + xcb_get_property_value_length(reply) / 4,
                                               atom("_NET_WM_STATE_FULLSCREEN")) > 0;
        std::free(reply);
        return isIt;
    }

    void askForFullscreen() {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = fullscreen_;
        message.type = atom("_NET_WM_STATE");
        message.data.data32[0] = 1; // add
        message.data.data32[1] = atom("_NET_WM_STATE_FULLSCREEN");
        message.data.data32[3] = 1; // an application
        xcb_send_event(connection_, 0, screen_->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
    }

    void vanishOthers(xcb_window_t moved) {
        const auto armed = vanishing_.find(moved);
        if (armed == vanishing_.end() || armed->second == placeOf(moved))
            return;
        for (const auto& [window, place] : vanishing_)
            if (window != moved)
                xcb_destroy_window(connection_, window);
        vanishing_.clear();
    }

    // The position on the root and the size.
    std::array<int, 4> placeOf(xcb_window_t window) {
        const auto geometryCookie = xcb_get_geometry(connection_, window);
        const auto originCookie = xcb_translate_coordinates(connection_, window, screen_->root, 0, 0);
        auto* geometry = xcb_get_geometry_reply(connection_, geometryCookie, nullptr);
        auto* origin = xcb_translate_coordinates_reply(connection_, originCookie, nullptr);
        std::array<int, 4> place{};
        if (geometry && origin)
            place = {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
        std::free(geometry);
        std::free(origin);
        return place;
    }

    static std::vector<std::uint32_t> numbers(const std::string& list) {
        std::vector<std::uint32_t> values;
        for (const auto& word : split(list, ','))
            values.push_back(static_cast<std::uint32_t>(std::atoi(word.c_str())));
        return values;
    }

    void setTitle(xcb_window_t window, const std::string& title) {
        setBytes(window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), title);
        setBytes(window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title);
    }

    void setBytes(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::string& bytes) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
    }

    void setCardinals(xcb_window_t window, const std::string& property, xcb_atom_t type,
                      const std::vector<std::uint32_t>& values) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), type, 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    }

    xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        auto* reply = xcb_intern_atom_reply(connection_, cookie, nullptr);
        const xcb_atom_t result = reply ? reply->atom : XCB_NONE;
        std::free(reply);
        return result;
    }

    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
    xcb_window_t fullscreen_ = XCB_NONE;
    std::map<xcb_window_t, std::array<int, 4>> vanishing_; ///< with the place where each stood
};

} // namespace

int main() {
    return Client().run();
}
