#include "platform/i3/i3_tree.h"
#include "platform/sway/sway_config.h"
#include "posix/temporary_directory.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace tavrin {

static void PrintTo(const SwayUserBinding& binding, std::ostream* out) {
    *out << binding.position.value_or(0) << '/' << binding.symbol << '/' << binding.modifiers.rawValue;
}

namespace {

using Clock = std::chrono::steady_clock;

/// Answers whatever it is asked with the same bytes, then closes or keeps silent.
class FakeSocket {
public:
    enum class Then { stays, closes };

    FakeSocket(const std::string& path, std::string bytes, Then then = Then::stays)
        : listener_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        ::unlink(path.c_str());
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(listener_, 4), 0);
        server_ = std::jthread([this, bytes = std::move(bytes), then](const std::stop_token& stop) {
            int connection = -1;
            while (!stop.stop_requested()) {
                pollfd ready[] = {{listener_, POLLIN, 0}, {connection, POLLIN, 0}};
                if (::poll(ready, 2, 20) <= 0)
                    continue;
                char question[1024];
                if (ready[0].revents != 0)
                    connection = ::accept(listener_, nullptr, nullptr);
                else if (::read(connection, question, sizeof question) <= 0)
                    ::close(std::exchange(connection, -1));
                else if (::write(connection, bytes.data(), bytes.size()) >= 0 && then == Then::closes)
                    ::close(std::exchange(connection, -1));
            }
            ::close(connection);
        });
    }
    ~FakeSocket() {
        server_.request_stop();
        server_.join();
        ::close(listener_);
    }

private:
    int listener_;
    std::jthread server_;
};

std::string message(std::uint32_t size, I3Question type, const std::string& payload) {
    std::string bytes = "i3-ipc";
    const std::uint32_t words[] = {size, static_cast<std::uint32_t>(type)};
    return bytes.append(reinterpret_cast<const char*>(words), sizeof words) + payload;
}
std::string tree(const std::string& payload) {
    return message(static_cast<std::uint32_t>(payload.size()), I3Question::tree, payload);
}

TEST(I3QuestionsTest, badAnswersEndInAnErrorInTimeAndTheNextSocketIsUsed) {
    using enum FakeSocket::Then;
    TemporaryDirectory folder;
    const auto path = (folder.path() / "socket").string();
    const struct {
        std::string bytes;
        FakeSocket::Then then;
        I3Error error;
    } cases[] = {
        {"i3-i", closes, I3Error::closed},
        {message(100, I3Question::tree, "{\"id\":"), closes, I3Error::closed},
        {message(100, I3Question::tree, "{\"id\":"), stays, I3Error::timedOut},
        {"", stays, I3Error::timedOut},
        {"HTTP/1.1 400 Bad Request\r\n\r\n", stays, I3Error::malformed},
        {message(0xFFFFFFFF, I3Question::tree, "{"), stays, I3Error::malformed},
        {message(2, I3Question::version, "{}"), stays, I3Error::malformed},
    };
    const auto ask = [](I3Questions& questions) { return questions.ask(I3Question::tree, {}, Seconds{0.2}); };
    I3Questions questions(path);
    EXPECT_EQ(ask(questions), std::unexpected(I3Error::unreachable));
    for (const auto& [bytes, then, error] : cases) {
        {
            const FakeSocket socket(path, bytes, then);
            const auto start = Clock::now();
            for (int i = 0; i < 5; ++i) // a socket that is slow once does not cost its time again and again
                EXPECT_EQ(ask(questions), std::unexpected(error)) << bytes;
            EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(700)) << bytes;
        }
        const FakeSocket good(path, tree(R"({"type":"root"})"));
        EXPECT_EQ(ask(questions), R"({"type":"root"})") << "after: " << bytes;
    }
}

TEST(I3TreeTest, whatIsNoTreeHasNoWindows) {
    std::string deep = R"({"type":"root","nodes":[)";
    for (int i = 0; i < 400; ++i)
        deep += R"({"id":1,"nodes":[)";
    for (const auto& text :
         {std::string(), std::string("[]"), std::string("{}"), std::string(100'000, '['), deep})
        EXPECT_FALSE(readI3Tree(text)) << text.substr(0, 40);
    for (const auto* text :
         {R"({"type":"root","nodes":7,"floating_nodes":{}})",
          R"({"type":"root","nodes":[7,null,{"pid":1},{"id":"x","pid":1},{"id":1,"pid":[]}]})"}) {
        const auto read = readI3Tree(text);
        EXPECT_TRUE(read && read->windows.empty()) << text;
    }
    for (const auto* text : {"", "[", "7", "{}", R"({"change":7})"}) {
        EXPECT_EQ(readI3Binding(text), std::nullopt);
        EXPECT_EQ(readI3Change(text), "");
        EXPECT_EQ(readI3Version(text).has_value(), false);
        EXPECT_TRUE(readI3Results(text).empty());
    }
}

TEST(SwayConfigTest, theUsersBindingsAreFoundWhereverTheyStand) {
    TemporaryDirectory folder;
    folder.write("parts/a.conf", "bindsym $mod+y exec a\ninclude ../config\ninclude /nowhere/*\n");
    const auto main = folder.write("config", R"(# bindsym Mod4+x exec comment
set $mod Mod4
set $mod2 Mod1
bindsym --locked --to-code $mod2+Shift+Return exec terminal
bindcode Ctrl+$mod+38 exec by position
bindsym \
    Control+exclam exec continued
bindsym {
    Mod4+a exec block
    --release Alt+Ctrl+Left exec flags
}
mode "resize" {
    bindsym Mod4+r nothing
}
mode "other" bindsym Mod4+s nothing
bindsym Mod5+t exec a modifier that shortcuts do not have
bindsym Mod4+nonsense exec unknown
include parts/*.conf
)");
    const auto command = ModifierSet::command, control = ModifierSet::control, option = ModifierSet::option;
    const std::vector<SwayUserBinding> expected = {
        {.symbol = XKB_KEY_Return, .modifiers = option | ModifierSet::shift},
        {.position = 30, .modifiers = control | command},
        {.symbol = XKB_KEY_exclam, .modifiers = control},
        {.symbol = XKB_KEY_a, .modifiers = command},
        {.symbol = XKB_KEY_Left, .modifiers = option | control},
        {.symbol = XKB_KEY_y, .modifiers = command},
    };
    auto found = readSwayBindings(folder.read("config"), main);
    // A file that includes the one that includes it is read once more, and no further.
    ASSERT_GE(found.size(), expected.size());
    found.resize(expected.size());
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(
        readSwayBindings(std::string(1 << 20, '$') + "\n{{{{}}}}}\nset $ x\ninclude\n", main).empty());
}

} // namespace
} // namespace tavrin
