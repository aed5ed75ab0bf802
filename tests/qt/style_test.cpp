#include "qt/qt_application.h"
#include "ui/qt/controls/style.h"

#include <QStyle>
#include <QStyleFactory>

namespace tavrin {
namespace {

QPalette paletteOf(QRgb window, QRgb text, QRgb base, QRgb accent, QRgb accentText) {
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, accentText);
    return palette;
}

// Whatever colours the desktop has, what is written can be read and what is drawn can be seen.
TEST(StyleTest, KeepsTheContrastOnEveryDesktop) {
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create("Fusion"));
    const std::pair<const char*, QPalette> palettes[] = {
        {"Fusion", fusion->standardPalette()},
        {"Breeze Light", paletteOf(0xeff0f1, 0x232629, 0xffffff, 0x3daee9, 0xffffff)},
        {"Breeze Dark", paletteOf(0x2a2e32, 0xfcfcfc, 0x1b1e20, 0x3daee9, 0xfcfcfc)},
        {"Adwaita light", paletteOf(0xfafafa, 0x2e3436, 0xffffff, 0x3584e4, 0xffffff)},
        {"Adwaita dark", paletteOf(0x353535, 0xeeeeec, 0x2d2d2d, 0x15539e, 0xffffff)},
        {"yellow on black", paletteOf(0x000000, 0xffff00, 0x000000, 0xffffff, 0xffffff)},
    };
    for (const auto& [name, palette] : palettes) {
        EXPECT_GE(contrast(accentTextColor(palette), accentColor(palette)), 4.5) << name;
        for (const QColor& ground : {groupColor(palette), palette.color(QPalette::Window)}) {
            EXPECT_GE(contrast(secondaryTextColor(palette), ground), 4.5) << name;
            EXPECT_GE(contrast(warningColor(palette), ground), 4.5) << name;
            EXPECT_GE(contrast(accentLineColor(palette), ground), 3) << name << " focus ring, switch";
            EXPECT_GE(contrast(shapeColor(palette), ground), 3) << name << " border, switch";
        }
    }
}

} // namespace
} // namespace tavrin
