#pragma once

#include "ports/runtime.h"
#include "ports/session.h"
#include "ports/status_item.h"
#include "ui/user_interface.h"

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>

namespace tavrin::testing {

struct FakeStatusItem : StatusItemSurface {
    std::string image, title;
    bool hasImages = true;
    bool isShown = false;
    MenuModel menu;
    int menusSet = 0;
    std::function<void()> willOpen;
    std::function<void(MenuAction, std::optional<Uuid>)> chosen;
    bool setTemplateImage(const std::string& name) override {
        if (hasImages)
            image = name;
        return hasImages;
    }
    void setTitle(const std::string& text) override { title = text; }
    void setToolTip(const std::string&) override {}
    void setMenu(const MenuModel& model) override {
        menu = model;
        ++menusSet;
    }
    void setMenuCallbacks(std::function<void()> open,
                          std::function<void(MenuAction, std::optional<Uuid>)> choose) override {
        willOpen = std::move(open);
        chosen = std::move(choose);
    }
    void setOnNoStatusArea(std::function<void()> handler) override { noStatusArea = std::move(handler); }
    std::function<void()> noStatusArea;
    void show() override { isShown = true; }
};

struct FakeHost : ApplicationHost, LinkOpener, SettingsWindowSurface {
    std::string log;
    std::function<void()> closed;
    void setActivationPolicy(ActivationPolicy policy) override {
        log += policy == ActivationPolicy::regular ? "regular " : "accessory ";
    }
    void activate() override { log += "activate "; }
    void terminate() override { log += "terminate "; }
    std::filesystem::path bundlePath() override { return "/opt/tavrin"; }
    std::string shortVersion() override { return "1.2"; }
    bool openAccessibilitySettings() override {
        log += "help ";
        return true;
    }
    bool openFolder(const std::filesystem::path& folder) override {
        log += folder.string() + " ";
        return true;
    }
    void show(SettingsPane pane, ResetNotice notice) override {
        log += fmt::format("window{}{} ", static_cast<int>(pane), notice == ResetNotice::shown ? "!" : "");
    }
    bool open = false;
    bool isOpen() override { return open; }
    void setOnClose(std::function<void()> onClose) override { closed = std::move(onClose); }
};

struct FakePopover : PopoverSurface {
    std::shared_ptr<SaveLayoutPopoverView> view;
    int shown = 0;
    std::optional<Rect> place;
    void show(std::shared_ptr<SaveLayoutPopoverView> content, std::optional<Rect> beside) override {
        view = std::move(content);
        place = beside;
        ++shown;
    }
    void close() override { view.reset(); }
};

/// Keeps what the program shows. The host stands in for the settings window.
struct FakeInterface : UserInterfaceFactory {
    explicit FakeInterface(SettingsWindowSurface& window) : window(window) {}

    SettingsWindowSurface& window;
    FakePopover* popover = nullptr; ///< the program's
    std::optional<SettingsCollaborators> collaborators;

    std::unique_ptr<PopoverSurface> makePopover() override {
        auto made = std::make_unique<FakePopover>();
        popover = made.get();
        return made;
    }

    std::unique_ptr<SettingsWindowSurface> makeSettingsWindow(const SettingsCollaborators& made) override {
        struct Window : SettingsWindowSurface {
            SettingsWindowSurface& target;
            explicit Window(SettingsWindowSurface& surface) : target(surface) {}
            void show(SettingsPane pane, ResetNotice notice) override { target.show(pane, notice); }
            bool isOpen() override { return target.isOpen(); }
            void setOnClose(std::function<void()> onClose) override { target.setOnClose(std::move(onClose)); }
        };
        collaborators.emplace(made);
        return std::make_unique<Window>(window);
    }
};

} // namespace tavrin::testing
