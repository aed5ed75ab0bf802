#include "../posix/temporary_directory.h"
#include "platform/freedesktop/bus_addresses.h"
#include "platform/freedesktop/xdg_paths.h"

#include <gtest/gtest.h>

#include <map>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavrin {
namespace {

using Variables = std::map<std::string, std::string>;
using Paths = std::vector<std::filesystem::path>;

Environment environment(Variables variables) {
    return [variables = std::move(variables)](const std::string& name) {
        return variables.contains(name) ? std::optional(variables.at(name)) : std::nullopt;
    };
}

TEST(XdgPathsTest, theVariablesDecideUnlessTheyHoldNoAbsolutePath) {
    const struct {
        Variables variables;
        const char* data;
        const char* config;
    } cases[] = {
        {{{"HOME", "/h"}}, "/h/.local/share/Tavrin", "/h/.config"},
        {{{"HOME", "/h"}, {"XDG_DATA_HOME", "/d"}, {"XDG_CONFIG_HOME", "/c"}}, "/d/Tavrin", "/c"},
        {{{"HOME", "/h"}, {"XDG_DATA_HOME", "d"}, {"XDG_CONFIG_HOME", "./c"}},
         "/h/.local/share/Tavrin",
         "/h/.config"},
        {{{"HOME", "/h"}, {"XDG_DATA_HOME", ""}, {"XDG_CONFIG_HOME", ""}},
         "/h/.local/share/Tavrin",
         "/h/.config"},
    };
    for (const auto& [variables, data, config] : cases) {
        const XdgPaths paths(environment(variables));
        EXPECT_EQ(paths.applicationData(), data);
        EXPECT_EQ(paths.configHome(), config);
    }
    const XdgPaths lists(
        environment({{"HOME", "/h"}, {"XDG_DATA_DIRS", "/a::b:/c/:"}, {"XDG_CONFIG_DIRS", "x"}}));
    EXPECT_EQ(lists.applicationDirectories(),
              (Paths{"/h/.local/share/applications", "/a/applications", "/c/applications"}));
    EXPECT_EQ(lists.configDirectories(), Paths{"/etc/xdg"});
    EXPECT_EQ(XdgPaths(environment({})).dataDirectories(), (Paths{"/usr/local/share", "/usr/share"}));
}

TEST(XdgPathsTest, withoutAHomeVariableTheUserDatabaseKnows) {
    const passwd* user = ::getpwuid(::getuid());
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(XdgPaths(environment({})).home(), user->pw_dir);
    EXPECT_EQ(XdgPaths(environment({{"HOME", "relative"}})).home(), user->pw_dir);
}

TEST(BusAddressesTest, theSessionsBusIsFoundButNeverStarted) {
    TemporaryDirectory runtime;
    const auto folder = runtime.path() / "run time";
    const Variables variables{{"XDG_RUNTIME_DIR", folder.string()}};
    EXPECT_EQ(busAddresses(environment({})).session, std::nullopt);
    runtime.write("run time/bus", "a file");
    EXPECT_EQ(busAddresses(environment(variables)).session, std::nullopt);

    std::filesystem::remove(folder / "bus");
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{AF_UNIX, {}};
    (folder / "bus").string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(busAddresses(environment(variables)).session,
              "unix:path=" + runtime.path().string() + "/run%20time/bus");
    ::close(listener);

    auto given = variables;
    given["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/given";
    EXPECT_EQ(busAddresses(environment(given)).session, "unix:path=/given");
}

} // namespace
} // namespace tavrin
