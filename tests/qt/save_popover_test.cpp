#include "platform/qt/panel_icon.h"
#include "qt/qt_application.h"
#include "ui/qt/save_popover.h"

#include <QLayout>
#include <QLineEdit>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

TEST(PopoverPlacementTest, StandsBesideItsAnchorInsideTheScreen) {
    const QRect screen(100, 0, 1000, 800);
    const QRect withoutPanels = screen.adjusted(0, 30, 0, -30);
    const QSize size(300, 200);
    const struct {
        const char* situation;
        QRect anchor;
        QPoint position;
    } cases[] = {
        {"panel at the top", {600, 4, 22, 22}, {460, 36}},
        {"panel at the bottom", {600, 774, 22, 22}, {460, 564}},
        {"corner of a panel at the bottom", {1070, 774, 22, 22}, {794, 564}},
        {"panel at the left", {102, 400, 22, 22}, {130, 310}},
        {"panel at the right", {1074, 400, 22, 22}, {768, 310}},
        {"pointer in the upper half", {600, 200, 1, 1}, {450, 207}},
        {"pointer in a corner", {100, 0, 1, 1}, {106, 36}},
        {"anchor beyond the screen", {3000, 3000, 22, 22}, {794, 564}},
    };
    for (const auto& [situation, anchor, position] : cases)
        EXPECT_EQ(popoverPosition(anchor, size, screen, withoutPanels), position) << situation;
    EXPECT_EQ(popoverPosition({5, 5, 1, 1}, {500, 500}, {0, 0, 300, 300}, {0, 0, 300, 300}), QPoint(6, 6))
        << "too large for its screen: the beginning is seen";
}

struct SavePopoverTest : testing::Test {
    SavePopoverTest() {
        registerResources();
        open();
    }

    void open() {
        view = std::make_shared<SaveLayoutPopoverView>(std::vector<std::string>{"Work"}, nullptr, nullptr);
        window.emplace(view, [] {});
        window->show();
        field = window->findChild<QLineEdit*>();
    }

    std::shared_ptr<SaveLayoutPopoverView> view;
    std::optional<SavePopoverWindow> window;
    QLineEdit* field = nullptr;
};

TEST_F(SavePopoverTest, ClipsNothingInAnyFontSize) {
    EXPECT_EQ(window->size(), QSize(300, 200));
    const QFont usual = QApplication::font();
    for (int pointSize = 7; pointSize <= 24; ++pointSize) {
        QFont font = usual;
        font.setPointSize(pointSize);
        QApplication::setFont(font);
        open();
        for (const QString& name : {QString(), QString("Work"), QString(1000, 'x')}) {
            field->setText(name);
            QCoreApplication::sendPostedEvents();
            window->layout()->activate();
            for (auto* widget : window->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
                if (!widget->isVisible())
                    continue;
                const int needed = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width())
                                                               : widget->minimumSizeHint().height();
                EXPECT_GE(widget->height(), needed) << pointSize << widget->metaObject()->className();
                EXPECT_TRUE(window->rect().contains(widget->geometry())) << pointSize;
                for (auto* other : window->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                    EXPECT_TRUE(other == widget || !other->isVisible() ||
                                !other->geometry().intersects(widget->geometry()))
                        << pointSize;
            }
        }
    }
    QApplication::setFont(usual);
}

} // namespace
} // namespace tavrin
