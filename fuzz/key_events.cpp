#include "doubles/fake_file_system.h"
#include "doubles/fake_time.h"
#include "fuzz_support.h"
#include "platform/x11/x11_keyboard.h"
#include "records/key_combo.h"
#include "shortcuts/shortcut_conflict_checker.h"
#include "shortcuts/shortcut_manager.h"
#include "shortcuts/shortcut_recorder.h"

#include <functional>

namespace {

using namespace tavrin;

class NoMonitors : public KeyMonitors {
public:
    void watch(std::vector<KeyCombo>, std::function<void(const KeyEvent&)>) override {}
    std::vector<RefusedKey> refusedKeys() override { return {}; }
    Token observeRefusedKeys(std::function<void()>) override { return {}; }
    Token addLocalMonitor(std::function<bool(const KeyEvent&)>) override { return {}; }
};

KeyPositions anyKeyboard(FuzzedDataProvider& input) {
    KeyPositions::Names names;
    const auto count = input.ConsumeIntegralInRange(0, 8);
    for (int i = 0; i < count; ++i)
        names[input.ConsumeIntegral<std::uint8_t>()] = input.ConsumeRandomLengthString(6);
    return names.empty() ? KeyPositions() : KeyPositions(names);
}

KeyboardModifiers anyModifiers(FuzzedDataProvider& input) {
    constexpr std::uint32_t usual[] = {0xFFE1, 0xFFE3, 0xFFE9, 0xFFE7, 0xFFEB, 0xFF7F, 0xFE03, 0xFFED};
    KeyboardModifiers::Symbols symbols;
    for (auto& those : symbols)
        if (input.ConsumeBool())
            those.push_back(input.ConsumeBool() ? input.PickValueInArray(usual)
                                                : input.ConsumeIntegral<std::uint32_t>());
    return KeyboardModifiers(symbols);
}

/// The keyboard and the shortcuts, with everything a person and the server can do to them.
class Session {
public:
    /// With `Disk::unreadable` shortcuts live in memory alone, which saves most of the time.
    enum class Disk { usual, unreadable };

    explicit Session(FuzzedDataProvider& input, Disk disk)
        : files_(filesOf(disk)), positions_(anyKeyboard(input)), modifiers_(anyModifiers(input)),
          manager_(store_, monitors_, time_),
          recorder_(
              {}, [this](std::optional<KeyCombo> combo) { manager_.setAutoDetectShortcut(combo); },
              [this](const KeyCombo& combo) { return checker_.conflictMessage(combo, {}); }) {
        manager_.onAutoDetect = [this] { ++fired_; };
        manager_.onLayoutRestore = [this](const Uuid& layoutID) {
            ++fired_;
            manager_.removeLayoutShortcut(layoutID);
        };
    }

    void step(FuzzedDataProvider& input) {
        switch (input.ConsumeIntegralInRange(0, 6)) {
        case 0:
            recorder_.startRecording();
            pause_ = manager_.pause();
            break;
        case 1:
            recorder_.cancelRecording();
            pause_.release();
            break;
        case 2:
            held_.release(input.ConsumeIntegral<std::uint8_t>());
            break;
        case 3: {
            Uuid layoutID;
            layoutID.bytes[0] = input.ConsumeIntegralInRange<std::uint8_t>(0, 3);
            manager_.setLayoutShortcut(KeyCombo{input.ConsumeIntegral<std::uint16_t>(),
                                                ModifierSet{input.ConsumeIntegral<std::uint64_t>()}},
                                       layoutID);
            break;
        }
        case 4:
            time_.pass(0.5);
            break;
        default:
            press(input);
        }
        checkShortcuts();
    }

    void finish() {
        if (!files_.failing.empty())
            return;
        fuzz::require(store_.load().has_value(), "settings that cannot be read again");
        const ShortcutManager nextStart(store_, monitors_, time_);
        fuzz::require(nextStart.layoutShortcuts.value() == manager_.layoutShortcuts.value() &&
                          nextStart.autoDetectShortcut.value() == manager_.autoDetectShortcut.value(),
                      "shortcuts that are others after the next start");
    }

private:
    static tavrin::testing::FakeFileSystem filesOf(Disk disk) {
        tavrin::testing::FakeFileSystem files;
        if (disk == Disk::unreadable) {
            files.files["/data/settings.json"];
            files.failing = {"read"};
        }
        return files;
    }

    void press(FuzzedDataProvider& input) {
        HeldKeys::DownKeys down{};
        input.ConsumeData(down.data(), down.size() / 8);
        const auto key = input.ConsumeIntegral<std::uint8_t>();
        const auto mask = input.ConsumeIntegral<std::uint8_t>();
        if (!held_.press(key, down))
            return;
        const auto position = positions_.evdevCode(key);
        const auto code = position ? virtualKeyCode(*position) : std::nullopt;
        if (!code)
            return;
        const KeyEvent event{*code, modifiers_.flags(mask)};
        static_cast<void>(KeyCombo{event.keyCode, event.modifiers()}.displayString());
        if (recorder_.isRecording()) {
            fuzz::require(!manager_.handle(event), "a press fires while it is recorded");
            recorder_.handle(event);
            if (!recorder_.isRecording())
                pause_.release();
            return;
        }
        const int before = fired_;
        const bool isUsed = manager_.handle(event);
        fuzz::require(fired_ - before <= 1 && (isUsed || fired_ == before), "a press that fires wrongly");
    }

    void checkShortcuts() {
        if (const auto combo = manager_.autoDetectShortcut.value())
            fuzz::require(combo->hasControl(), "a shortcut without Control");
        for (const auto& [layoutID, combo] : manager_.layoutShortcuts.value())
            fuzz::require(combo.hasControl(), "a shortcut without Control");
    }

    tavrin::testing::FakeFileSystem files_;
    tavrin::testing::FakeTime time_;
    NoMonitors monitors_;
    SettingsStore store_{AppSupportPaths{files_, "/data"}, time_};
    KeyPositions positions_;
    KeyboardModifiers modifiers_;
    HeldKeys held_;
    ShortcutConflictChecker checker_;
    ShortcutManager manager_;
    ShortcutRecorder recorder_;
    Token pause_;
    int fired_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Chosen by all of the input: chosen by a part of it, which is inherited, most runs would come to store.
    const bool isStored = std::hash<std::string_view>()(fuzz::textOf(data, size)) % 16 == 0;
    FuzzedDataProvider input(data, size);
    Session session(input, isStored ? Session::Disk::usual : Session::Disk::unreadable);
    for (int i = 0; i < 32 && input.remaining_bytes() > 0; ++i)
        session.step(input);
    session.finish();
    return 0;
}
