#include "desktop_test.h"
#include "support/desktop/wait.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

namespace tavrin::desktop {

namespace {

/// What a desktop tells about its colours: Xfce's settings and the settings portal.
class ColorSettings : public QDBusVirtualObject {
public:
    explicit ColorSettings(QDBusConnection bus) : bus_(std::move(bus)) {
        bus_.registerVirtualObject("/org", this, QDBusConnection::SubPath);
        bus_.registerService("org.xfce.Xfconf");
        bus_.registerService("org.freedesktop.portal.Desktop");
    }
    ~ColorSettings() override { bus_.unregisterObject("/org"); }

    void setPanelDark(bool isDark) {
        emitSignal("/org/xfce/Xfconf", "org.xfce.Xfconf", "PropertyChanged",
                   {"xfce4-panel", "/panels/dark-mode", variant(isDark)});
    }
    void setScheme(quint32 scheme) {
        emitSignal("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged",
                   {"org.freedesktop.appearance", "color-scheme", variant(scheme)});
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        if (call.member() != "GetProperty" ||
            call.arguments() != QVariantList{"xfce4-panel", "/panels/dark-mode"})
            return false;
        return bus.send(call.createReply(variant(true)));
    }

private:
    static QVariant variant(const QVariant& value) { return QVariant::fromValue(QDBusVariant(value)); }
    void emitSignal(const char* path, const char* interface, const char* name,
                    const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(arguments);
        bus_.send(signal);
    }

    QDBusConnection bus_;
};

class PanelTest : public DesktopTest {
protected:
    /// Whether the icon is drawn in a light colour; absent when nothing is drawn.
    std::optional<bool> isDrawnLight() {
        const auto pictures = tray().property("IconPixmap").value<QDBusArgument>();
        if (pictures.currentType() != QDBusArgument::ArrayType)
            return std::nullopt;
        int width = 0, height = 0;
        QByteArray pixels;
        pictures.beginArray();
        pictures.beginStructure();
        pictures >> width >> height >> pixels;
        pictures.endStructure();
        pictures.endArray();
        for (qsizetype at = 0; at + 3 < pixels.size(); at += 4) // alpha, red, green, blue
            if (static_cast<unsigned char>(pixels[at]) == 255)
                return static_cast<unsigned char>(pixels[at + 1]) > 127;
        return std::nullopt;
    }

    bool becomes(bool isLight) {
        return waitUntil([&] { return isDrawnLight() == isLight; });
    }
};

TEST_F(PanelTest, TheIconIsLightOnDarkPanelsAndDarkOnLightOnes) {
    begin();
    ColorSettings settings(desktop().sessionBus().connection());
    const auto program = desktop().startProgram("env", {"XDG_CURRENT_DESKTOP=XFCE", TAVRIN_PROGRAM_PATH});
    ASSERT_TRUE(program && tray().waitForItem());
    EXPECT_TRUE(becomes(true)) << "Xfce's panel is dark while the windows are light";
    settings.setPanelDark(false);
    EXPECT_TRUE(becomes(false));
    settings.setScheme(1);
    EXPECT_TRUE(becomes(true)) << "a light panel has the colours of the windows";
    settings.setScheme(2);
    EXPECT_TRUE(becomes(false));
    settings.setPanelDark(true);
    EXPECT_TRUE(becomes(true));
}

} // namespace

} // namespace tavrin::desktop
