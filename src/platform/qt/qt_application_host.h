#pragma once

#include "base/signal.h"
#include "ports/runtime.h"

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <QWindow>

class QApplication;

namespace tavrin {

/// The program as a Qt application: one that lives on without windows.
class QtApplicationHost final : public QObject, public ApplicationHost {
    Q_OBJECT

public:
    static constexpr const char* applicationId = "org.tavrin.Tavrin";

    /// `application` must not have shown a window yet.
    explicit QtApplicationHost(QApplication& application);

    /// A window or a menu of this program gets the key presses.
    bool isActive() const;

    /// `handler` is called every time the program comes to the front until the token is released.
    Token observeDidBecomeActive(std::function<void()> handler);

    /// A window of this program that is to come to the front.
    struct OwnWindow {
        std::string title;
        bool isPopover = false; ///< stands beside the status item, or in a corner
    };
    /// Where the toolkit can neither place its windows nor give them the focus: `bringForward` does it, and
    /// answers false while the window is not there yet.
    void setBringForward(std::function<bool(const OwnWindow&)> bringForward) {
        bringForward_ = std::move(bringForward);
    }

    /// Nothing to do: task bars and switchers list windows, and an accessory program shows none.
    void setActivationPolicy(ActivationPolicy policy) override;

    void activate() override;
    void terminate() override;
    std::filesystem::path bundlePath() override;
    std::string shortVersion() override;

private:
    void focusMoved(QWindow* window);
    void bringForward(QPointer<QWidget> window, int attempts);

    std::function<bool(const OwnWindow&)> bringForward_;
    Signal<> didBecomeActive_;
    QPointer<QWindow> window_; ///< the one that had the focus last; none when another program has it
};

} // namespace tavrin
