#include "platform/qt/qt_runtime.h"
#include "platform/qt/qt_user_defaults.h"
#include "qt/qt_application.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace tavrin {
namespace {

struct QtSchedulerTest : testing::Test {
    QtScheduler scheduler;
};

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

TEST(QtUserDefaultsTest, KeepsValuesUnderTheirDottedKeys) {
    QTemporaryDir folder;
    const auto file = std::filesystem::path(folder.path().toStdString()) / "new folder" / "defaults.ini";
    {
        QtUserDefaults defaults(file);
        EXPECT_TRUE(defaults.isUsable()) << "no file";
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
    // A file that lost its values is not one that never had any.
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
