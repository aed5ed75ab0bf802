#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <map>
#include <vector>

namespace tavrin {

/// A row of a list that can have the focus, with the keys it answers to.
class FocusRow : public QWidget {
public:
    FocusRow() = default;

    /// `action` is called when that key is pressed in the row. Return and Space count only while the row
    /// itself has the focus, not a control within.
    void onKey(int key, std::function<void()> action) { actions_[key] = std::move(action); }

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::map<int, std::function<void()>> actions_;
};

/// Makes a list of rows one Tab stop: Up, Down, Page Up, Page Down, Home, End and typed letters lead from row
/// to row, Left and Right to the controls within one and back.
class KeyboardList final : public QObject {
public:
    struct Row {
        QWidget* widget = nullptr;            ///< gets the focus
        QString text;                         ///< what typed letters are compared with
        std::vector<QWidget*> controls;       ///< from the start of the line to its end
        std::function<bool()> keepsKeys = {}; ///< true while the row wants all keys for itself
    };

    using QObject::QObject;

    /// The rows from top to bottom. A row that was current stays so; when it is gone, the one in its place
    /// is.
    void setRows(std::vector<Row> rows);

    /// Where Tab leads; null without rows.
    QWidget* current() const;
    void setCurrent(const QWidget* widget);
    /// The focus is on a row or a control within one.
    bool hasFocus() const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Watched {
        QPointer<QWidget> widget;
        QString text;
        std::vector<QPointer<QWidget>> controls;
        std::function<bool()> keepsKeys;
    };
    bool contains(const Watched& row, const QObject* object) const;
    int rowOf(const QObject* object) const;
    void makeCurrent(int index);
    void focusRow(int index);
    bool handleKey(const QObject& object, const QKeyEvent& event);
    bool moveWithin(const QObject& object, bool isForward);
    int pageAway(int direction) const;
    bool findTyped(const QKeyEvent& event);

    std::vector<Watched> rows_;
    int current_ = -1;
    QString typed_;
    std::uint64_t typedAt_ = 0; ///< milliseconds, as events count them
};

} // namespace tavrin
