#include "platform/qt/qt_runtime.h"
#include "platform/qt/qt_user_defaults.h"
#include "qt/qt_application.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace tavrin {
namespace {

struct QtSchedulerTest : testing::Test {
    QtScheduler scheduler;
};

TEST_F(QtSchedulerTest, RunsTasksLaterInTheOrderOfTheirTimes) {
    std::vector<int> order;
    const auto late = scheduler.after(Seconds(0.02), [&] { order.push_back(3); });
    const auto soon = scheduler.after(Seconds(0), [&] { order.push_back(1); });
    const auto past = scheduler.after(Seconds(-5), [&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(waitUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(QtSchedulerTest, NeverRunsEarly) {
    using Clock = std::chrono::steady_clock;
    for (const double delay : {0.0011, 0.0149, 0.03}) {
        const auto start = Clock::now();
        std::optional<Clock::time_point> end;
        const auto token = scheduler.after(Seconds(delay), [&] { end = Clock::now(); });
        ASSERT_TRUE(waitUntil([&] { return end.has_value(); }));
        EXPECT_GE(Seconds(*end - start).count(), delay);
    }
}

TEST_F(QtSchedulerTest, ReleasedTaskNeverRuns) {
    bool ran = false;
    Token doomed = scheduler.after(Seconds(0), [&] { ran = true; });
    doomed.release();
    // Both are due in the same turn of the loop, and the first one takes the second one back.
    Token second;
    const auto first = scheduler.after(Seconds(0), [&] { second.release(); });
    second = scheduler.after(Seconds(0), [&] { ran = true; });
    bool isOver = false;
    const auto after = scheduler.after(Seconds(0.01), [&] { isOver = true; });
    ASSERT_TRUE(waitUntil([&] { return isOver; }));
    EXPECT_FALSE(ran);
}

TEST_F(QtSchedulerTest, RepeatsUntilTheTaskReleasesItsOwnToken) {
    int runs = 0;
    Token token;
    const auto content = std::make_shared<int>(0);
    const std::weak_ptr<int> alive = content;
    token = scheduler.every(Seconds(0.001), [&, content] {
        if (++runs == 3)
            token.release();
        EXPECT_EQ(*content, 0);
    });
    ASSERT_TRUE(waitUntil([&] { return runs == 3; }));
    bool isOver = false;
    const auto after = scheduler.after(Seconds(0.02), [&] { isOver = true; });
    ASSERT_TRUE(waitUntil([&] { return isOver; }));
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(alive.use_count(), 1) << "what the task held is released with it";
}

TEST(QtEventLoopTest, ReportsDataAndTheOtherEndGoingAway) {
    QtEventLoop loop;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::string received;
    int closings = 0;
    Token token;
    token = loop.watchReadable(ends[0], [&] {
        char letter = 0;
        if (read(ends[0], &letter, 1) == 1) {
            received += letter;
        } else {
            ++closings;
            token.release();
        }
    });
    ASSERT_EQ(write(ends[1], "ab", 2), 2);
    ASSERT_TRUE(waitUntil([&] { return received == "ab"; }));
    close(ends[1]);
    ASSERT_TRUE(waitUntil([&] { return closings > 0; }));
    runEventLoopOnce();
    runEventLoopOnce();
    EXPECT_EQ(closings, 1) << "the end is still readable, but nobody watches it";
    close(ends[0]);
}

TEST(QtUserDefaultsTest, KeepsValuesUnderTheirDottedKeys) {
    QTemporaryDir folder;
    const auto file = std::filesystem::path(folder.path().toStdString()) / "new folder" / "defaults.ini";
    {
        QtUserDefaults defaults(file);
        EXPECT_EQ(defaults.integer("tavrin.some.version"), 0);
        EXPECT_FALSE(defaults.boolean("tavrin.some.flag"));
        defaults.setInteger("tavrin.some.version", 9'007'199'254'740'993);
        defaults.setBoolean("tavrin.some.flag", true);
        std::ifstream stream(file);
        std::stringstream text;
        text << stream.rdbuf();
        EXPECT_NE(text.str().find("\ntavrin.some.flag=true\n"), std::string::npos) << text.str();
    }
    QtUserDefaults defaults(file);
    EXPECT_EQ(defaults.integer("tavrin.some.version"), 9'007'199'254'740'993);
    EXPECT_TRUE(defaults.boolean("tavrin.some.flag"));
    EXPECT_EQ(defaults.integer("tavrin.some.flag"), 0);
    EXPECT_FALSE(defaults.boolean("tavrin.some.version"));
    defaults.setBoolean("tavrin.some.flag", false);
    EXPECT_FALSE(QtUserDefaults(file).boolean("tavrin.some.flag"));
    EXPECT_TRUE(QtUserDefaults(file).isUsable());
}

TEST(QtUserDefaultsTest, AFileThatLostItsValuesIsNotOneThatNeverHadAny) {
    QTemporaryDir folder;
    const auto file = std::filesystem::path(folder.path().toStdString()) / "defaults.ini";
    EXPECT_TRUE(QtUserDefaults(file).isUsable()) << "no file";
    for (const std::string& content :
         {std::string(), std::string("\n"), std::string("[General]\n"),
          std::string("[General]\ntavrin.some.ver"), std::string("[General]\ntavrin.some.version=\n"),
          std::string("[General]\ntavrin.some.version=x\n"), std::string(100, '\0'),
          std::string("\x7f"
                      "ELF=\x01\x02\n")}) {
        std::ofstream(file, std::ios::binary) << content;
        EXPECT_FALSE(QtUserDefaults(file).isUsable()) << content;
    }
}

} // namespace
} // namespace tavrin
