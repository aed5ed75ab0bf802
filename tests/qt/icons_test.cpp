#include "platform/qt/panel_shade.h"
#include "platform/qt/template_icon.h"
#include "qt/qt_application.h"
#include "ui/qt/controls/icons.h"

#include <QPalette>
#include <QSvgRenderer>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

constexpr const char* drawings[] = {"MenuBarGlyph",
                                    "MenuBarGlyphLight",
                                    "MenuBarGlyphDark",
                                    "checkmark.circle.fill",
                                    "xmark.circle",
                                    "info.circle.fill",
                                    "minus.circle.fill",
                                    "exclamationmark.triangle.fill",
                                    "rectangle.3.group",
                                    "bolt.badge.clock",
                                    "keyboard",
                                    "app.badge",
                                    "wrench.and.screwdriver",
                                    "org.tavrin.Tavrin",
                                    "org.tavrin.Tavrin-symbolic"};

int inkedPixels(const QImage& image, Shade paper) {
    int inked = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            // Contrast to the paper, where anything is drawn at all.
            if (pixel.alpha() > 128 && PanelShade::shadeOf(pixel) != paper)
                ++inked;
        }
    return inked;
}

TEST(IconsTest, EveryDrawingReadsOnLightAndDarkPanelsAtEverySize) {
    for (const char* name : drawings) {
        ASSERT_TRUE(hasTemplateImage(name)) << name;
        EXPECT_TRUE(QSvgRenderer(QStringLiteral(":/icons/%1.svg").arg(name)).isValid()) << name;
    }
    EXPECT_FALSE(hasTemplateImage("nothing"));
    EXPECT_FALSE(hasTemplateImage(""));
    for (const char* name :
         {"MenuBarGlyph", "checkmark.circle.fill", "exclamationmark.triangle.fill", "xmark.circle"})
        for (const auto shade : {Shade::light, Shade::dark})
            for (const int size : {16, 18, 22, 24, 32, 48}) {
                const QImage image = templateIcon(name, shade).pixmap(QSize(size, size), 1.0).toImage();
                ASSERT_EQ(image.size(), QSize(size, size)) << name;
                EXPECT_GT(inkedPixels(image, shade), size * size / 8) << name << size;
                EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << name << ": the corners are left to the panel";
            }
}

TEST(IconsTest, LettersFitTheirIcon) {
    for (const QString& text : {QString("T"), QString("Tavrin")}) {
        const QImage image = textIcon(text, Shade::dark).pixmap(QSize(22, 22), 1.0).toImage();
        EXPECT_GT(inkedPixels(image, Shade::dark), 10);
        for (int y = 0; y < 22; ++y)
            EXPECT_LT(qAlpha(image.pixel(0, y)), 128) << "cut off at the side";
    }
}

TEST(IconsTest, SymbolsFollowThePaletteOfTheWindow) {
    const QPalette usual = QApplication::palette();
    QPalette dark = usual;
    dark.setColor(QPalette::WindowText, Qt::white);
    const auto icon = symbolIcon("minus.circle.fill");
    QApplication::setPalette(dark);
    EXPECT_EQ(icon.pixmap(QSize(24, 24), 1.0).toImage().pixelColor(12, 4), QColor(Qt::white));
    QApplication::setPalette(usual);
    EXPECT_EQ(symbolIcon("minus.circle.fill", QColor(Qt::red))
                  .pixmap(QSize(24, 24), 1.0)
                  .toImage()
                  .pixelColor(12, 4),
              QColor(Qt::red));
}

} // namespace
} // namespace tavrin
