#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>

class QLabel;
class QLineEdit;

namespace tavrin {

/// A name that can be changed where it stands. Return and leaving the field take the new name, Escape keeps
/// the old one; a name that is refused keeps the field open with the reason under it.
class NameEditor final : public QWidget {
public:
    struct Callbacks {
        /// Why a name is refused; absent when it is fine.
        std::function<std::optional<std::string>(const std::string&)> refusal;
        std::function<void(const std::string&)> rename;
    };

    /// `what` names the field to a screen reader.
    NameEditor(const QString& name, const QFont& font, const QString& what, Callbacks callbacks);

    /// What gets the focus when the editing ends. (A focus proxy would draw Tab past the controls between.)
    void setFocusAfterEditing(QWidget* widget) { focusAfterEditing_ = widget; }

    /// The name as it is now; what is being typed stays.
    void setName(const QString& name);

    /// Shows the field with the name in it and the focus.
    void startEditing();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    bool isEditing() const;
    enum class OnRefusal { keepEditing, discard };
    void commit(OnRefusal onRefusal);
    void stopEditing();
    void showMessage();

    QString name_;
    Callbacks callbacks_;
    QLabel* label_;
    QLineEdit* field_;
    QLabel* message_;
    QPointer<QWidget> focusAfterEditing_;
};

} // namespace tavrin
