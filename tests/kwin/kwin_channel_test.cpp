#include "base/text.h"
#include "platform/kwin/kwin_script_channel.h"
#include "platform/window_scripts/script_answers.h"
#include "session_bus/private_bus.h"

#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>
#include <gtest/gtest.h>

#include <atomic>

namespace tavrin {
namespace {

using namespace std::chrono_literals;

/// KWin and the script in it, in a thread of their own: the program waits for them with its main thread.
class FakeKWin : public QDBusVirtualObject {
public:
    std::atomic<bool> isSilent = false;
    std::atomic<int> loads = 0, unloads = 0;

    FakeKWin(const PrivateBus& bus, QString answer)
        : answer_(std::move(answer)), connection_(QDBusConnection::connectToBus(
                                          QString::fromStdString(bus.address()), connectionName())) {
        connection_.registerVirtualObject("/", this, QDBusConnection::SubPath);
        moveToThread(&thread_);
        thread_.start();
        if (!connection_.registerService("org.kde.KWin"))
            qFatal("the name is taken");
    }
    ~FakeKWin() override {
        QDBusConnection::disconnectFromBus(connectionName());
        thread_.quit();
        thread_.wait();
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        if (isSilent)
            return true;
        const auto& method = message.member();
        if (method == "loadScript") {
            QFile file(message.arguments().value(0).toString());
            if (!file.open(QIODevice::ReadOnly))
                return false;
            const auto line = file.readLine();
            ++loads;
            agent_ = QJsonDocument::fromJson(line.mid(line.indexOf('{')).chopped(2)).object();
            return connection_.send(message.createReply(7));
        }
        if (method == "run") {
            if (message.path() != "/7") // where 5.27 has it
                return false;
            QMetaObject::invokeMethod(this, [this] { waitForQuestion(); });
            return connection_.send(message.createReply());
        }
        unloads += method == "unloadScript" ? 1 : 0;
        return connection_.send(message.createReply(true));
    }

    QDBusMessage call(const char* method) const {
        return QDBusMessage::createMethodCall(agent_["service"].toString(), agent_["path"].toString(),
                                              agent_["interface"].toString(), method);
    }

private:
    QString connectionName() const { return QString::asprintf("kwin-%p", static_cast<const void*>(this)); }

    void waitForQuestion() {
        auto* waiting = new QDBusPendingCallWatcher(connection_.asyncCall(call("Next")), this);
        connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting] {
            waiting->deleteLater();
            if (waiting->isError() || isSilent)
                return;
            auto answer = call("Answer");
            answer << waiting->reply().arguments().value(0) << answer_;
            connection_.send(answer);
            waitForQuestion();
        });
    }

    QString answer_;
    QDBusConnection connection_;
    QThread thread_;
    QJsonObject agent_;
};

class KWinScriptChannelTest : public testing::Test {
protected:
    KWinScriptChannelTest() { testApplication(); }
    ~KWinScriptChannelTest() override { QDBusConnection::disconnectFromBus("channel"); }

    KWinScriptChannel channel(std::chrono::milliseconds idle = 10s) {
        return {QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "channel"),
                {folder.path().string(), idle}};
    }

    static bool answersWithinASecond(KWinScriptChannel& channel) {
        const auto start = std::chrono::steady_clock::now();
        const auto answer = channel.ask({{"operation", "list"}}, 5s);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 1500ms);
        return answer.has_value();
    }

    PrivateBus bus;
    TemporaryDirectory folder;
};

TEST_F(KWinScriptChannelTest, nonsenseIsNoAnswer) {
    for (const QString text : {"", "[]", "7", "{\"windows\": [", "{\"error\": \"oh\"}", "\\ud800"}) {
        FakeKWin kwin(bus, text);
        auto asked = channel();
        EXPECT_FALSE(answersWithinASecond(asked)) << text.toStdString();
        EXPECT_TRUE(asked.isAvailable());
    }
}

TEST_F(KWinScriptChannelTest, theScriptIsThereForQuestionsOnly) {
    FakeKWin kwin(bus, R"({"windows": []})");
    auto asked = channel(20ms);
    for (int loads = 1; loads <= 2; ++loads) {
        EXPECT_TRUE(answersWithinASecond(asked) && answersWithinASecond(asked));
        EXPECT_EQ(kwin.loads, loads);
        EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
        const int before = kwin.unloads;
        EXPECT_TRUE(waitUntil([&] { return kwin.unloads > before; }));
    }
}

TEST_F(KWinScriptChannelTest, onlyKWinMayAnswer) {
    FakeKWin kwin(bus, "{}");
    auto asked = channel();
    EXPECT_TRUE(answersWithinASecond(asked));
    kwin.isSilent = true; // its script does not answer any more, but somebody else does
    StandInService stranger(bus, "");
    for (int number = 1; number < 4; ++number) {
        auto answer = kwin.call("Answer");
        answer << number << "{}";
        stranger.connection().send(answer);
    }
    EXPECT_FALSE(answersWithinASecond(asked));
}

TEST(ScriptAnswersTest, whatHasAnotherFormIsLeftOut) {
    const auto read = [](const char* window) {
        const auto text = R"({"windows": [)" + QByteArray(window) +
                          R"(], "active": "{00000000-0000-0002-8000-000000000000}"})";
        return readListing(QJsonDocument::fromJson(text).object());
    };
    const auto good =
        R"({"id": "{00000000-0000-0002-8000-000000000000}", "pid": 7, "application": "org.kde.kate",
        "instance": "kate", "class": "org.kde.kate", "title": "a", "frame": [1, -2.00001, 300, 401.9999999], "visible": true,
        "kind": "dialog"})";
    const auto listing = read(good);
    ASSERT_TRUE(listing);
    EXPECT_EQ(listing->listing.windows,
              (std::vector{DesktopWindow{.id = 1,
                                         .application = {.pid = 7, .applicationID = "org.kde.kate"},
                                         .title = "a",
                                         .frame = {1, -2, 300, 402},
                                         .kind = WindowKind::dialog}}));
    EXPECT_EQ(listing->listing.activeWindow, 1);
    const auto count = [&](const QByteArray& from, const QByteArray& to) {
        const auto changed = read(QByteArray(good).replace(from, to));
        return changed ? changed->listing.windows.size() : 99;
    };
    EXPECT_EQ(
        read(QByteArray(good).replace("{00000000-0000-0002-8000-000000000000}", "4186226907").constData())
            ->listing.windows.front()
            .id,
        4186226907)
        << "GNOME counts";
    EXPECT_EQ(count("\"{0000", "\"{x"), 0U);
    EXPECT_EQ(count("[1,", "[1e300,"), 0U);
    EXPECT_EQ(count("[1,", "[null,"), 0U);
    EXPECT_EQ(count("[1,", "["), 0U);
    EXPECT_EQ(count("300", "-300"), 0U);
    EXPECT_EQ(read((QByteArray(good) + ", 7, null, " + good).constData())->listing.windows.size(), 1U);
    const auto odd = read(QByteArray(good)
                              .replace("\"a\"", "\"\\ud800" + QByteArray(5000, 'x') + "\"")
                              .replace("7,", "-7,")
                              .replace("\"org.kde.kate\"", "[]")
                              .constData());
    ASSERT_TRUE(odd && odd->listing.windows.size() == 1);
    const auto& window = odd->listing.windows.front();
    EXPECT_LE(window.title.size(), 1024U);
    EXPECT_EQ(window.title, sanitizedUtf8(window.title, 1024));
    EXPECT_EQ(window.application, (ApplicationClues{.instanceName = "kate"}));
    EXPECT_FALSE(readListing({}));
    EXPECT_FALSE(readOutcomes({{"outcomes", QJsonArray{"done"}}}, 2));
    EXPECT_EQ(readOutcomes({{"outcomes", QJsonArray{"done", 7, "pending"}}}, 3),
              (std::vector{PlacementOutcome::done, PlacementOutcome::timedOut, PlacementOutcome::pending}));
}

} // namespace
} // namespace tavrin
