#include "platform/qt/panel_icon.h"
#include "qt/qt_application.h"
#include "ui/qt/controls/icons.h"

#include <QDir>
#include <QPalette>
#include <QSvgRenderer>
#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace tavrin {
namespace {

/// The part of the picture that stands out against a panel of that lightness.
double visiblePart(const QImage& image, int paper) {
    int seen = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const int shown = (qGray(pixel.rgb()) * pixel.alpha() + paper * (255 - pixel.alpha())) / 255;
            seen += std::abs(shown - paper) > 80 ? 1 : 0;
        }
    return double(seen) / (image.width() * image.height());
}

TEST(IconsTest, EveryDrawingReadsOnPanelsOfAnyColourAtEverySize) {
    EXPECT_TRUE(hasDrawing("keyboard"));
    for (const auto& drawing : QDir(":/icons").entryInfoList())
        EXPECT_TRUE(QSvgRenderer(drawing.filePath()).isValid()) << drawing.fileName().toStdString();
    EXPECT_FALSE(hasDrawing("nothing"));
    EXPECT_FALSE(hasDrawing(""));
    const std::pair<const char*, QIcon> icons[] = {
        {"MenuBarGlyph", panelIcon("MenuBarGlyph")},
        {"checkmark.circle.fill", panelIcon("checkmark.circle.fill")},
        {"exclamationmark.triangle.fill", panelIcon("exclamationmark.triangle.fill")},
        {"xmark.circle", panelIcon("xmark.circle")},
        {"letters", panelTextIcon("T")},
    };
    for (const auto& [name, icon] : icons)
        for (const int size : {16, 18, 22, 24, 32, 48}) {
            const QImage image = icon.pixmap(QSize(size, size), 1.0).toImage();
            ASSERT_EQ(image.size(), QSize(size, size)) << name;
            for (const int paper : {0, 64, 128, 192, 255})
                EXPECT_GT(visiblePart(image, paper), 0.08) << name << size << " on " << paper;
            EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << name << ": the corners are left to the panel";
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
