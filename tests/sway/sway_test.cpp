#include "platform/i3/i3_connection.h"
#include "platform/i3/i3_tree.h"
#include "platform/sway/sway_config.h"
#include "posix/temporary_directory.h"
#include "session_bus/qt_event_loop.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace tavrin {

static void PrintTo(const SwayUserBinding& binding, std::ostream* out) {
    *out << binding.position.value_or(0) << '/' << binding.symbol << '/' << binding.modifiers.rawValue;
}

namespace {

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

/// Answers whatever it is asked with the same bytes, from a thread of its own.
class FakeSocket {
public:
    FakeSocket(const std::string& path, const std::string& bytes, bool closes = false) {
        QLocalServer::removeServer(QString::fromStdString(path));
        EXPECT_TRUE(server_.listen(QString::fromStdString(path)));
        server_.moveToThread(&thread_);
        QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this, bytes, closes] {
            auto* peer = server_.nextPendingConnection();
            QObject::connect(peer, &QLocalSocket::readyRead, peer, [peer, bytes, closes] {
                peer->readAll();
                peer->write(bytes.data(), static_cast<qint64>(bytes.size()));
                if (closes)
                    peer->disconnectFromServer();
            });
        });
        thread_.start();
    }
    ~FakeSocket() {
        QMetaObject::invokeMethod(&server_, [this] { server_.close(); }, Qt::BlockingQueuedConnection);
        thread_.quit();
        thread_.wait();
    }

private:
    QThread thread_;
    QLocalServer server_;
};

std::string message(std::uint32_t size, I3Question type, const std::string& payload) {
    std::string bytes = "i3-ipc";
    const std::uint32_t words[] = {size, static_cast<std::uint32_t>(type)};
    return bytes.append(reinterpret_cast<const char*>(words), sizeof words) + payload;
}

TEST(I3QuestionsTest, badAnswersEndInAnErrorInTimeAndTheNextSocketIsUsed) {
    testApplication();
    TemporaryDirectory folder;
    const auto path = (folder.path() / "socket").string();
    const auto cut = message(100, I3Question::tree, "{\"id\":");
    constexpr bool closes = true, stays = false;
    const struct {
        std::string bytes;
        bool closes;
        I3Error error;
    } cases[] = {
        {"i3-i", closes, I3Error::closed},
        {cut, closes, I3Error::closed},
        {cut, stays, I3Error::timedOut},
        {"HTTP/1.1 400 Bad Request\r\n\r\n", stays, I3Error::malformed},
        {message(0xFFFFFFFF, I3Question::tree, "{"), stays, I3Error::malformed},
        {message(2, I3Question::version, "{}"), stays, I3Error::malformed},
    };
    const auto ask = [](I3Questions& questions) { return questions.ask(I3Question::tree, {}, Seconds{0.5}); };
    I3Questions questions(path);
    EXPECT_EQ(ask(questions), std::unexpected(I3Error::unreachable));
    for (const auto& [bytes, hangsUp, error] : cases) {
        {
            const FakeSocket socket(path, bytes, hangsUp);
            const auto start = std::chrono::steady_clock::now();
            for (int i = 0; i < 5; ++i) // a socket that is slow once does not cost its time again and again
                EXPECT_EQ(ask(questions), std::unexpected(error)) << bytes;
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2000)) << bytes;
        }
        const FakeSocket good(path, message(2, I3Question::tree, "{}"));
        EXPECT_EQ(ask(questions), "{}") << "after: " << bytes;
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
