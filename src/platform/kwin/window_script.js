// Runs inside KWin, 5.27 and 6, and answers the program's questions about windows. The program puts one line
// before it, which sets `agent`: service, path and interface of the program, the name of this script, and how
// many milliseconds it stays without a question.

var six = workspace.windowList !== undefined;

function allWindows() {
    return six ? workspace.windowList() : workspace.clientList();
}

function rectangle(area) {
    return [area.x, area.y, area.width, area.height];
}

function holds(list, value) {
    for (var i = 0; i < list.length; ++i) {
        if (list[i] === value)
            return true;
    }
    return false;
}

// X11 windows, in the words of the object that stands for them; no property tells.
function isX11(w) {
    return /X11|Xwayland/.test(String(w));
}

function isListed(w) {
    return w.managed && !w.deleted && !(w.desktopWindow || w.dock || w.splash || w.notification ||
        w.criticalNotification || w.onScreenDisplay || w.appletPopup || w.tooltip || w.menu || w.dropdownMenu ||
        w.popupMenu || w.comboBox || w.dndIcon || w.popupWindow || w.outline || w.inputMethod || w.lockScreen);
}

function isOnCurrentDesktop(w) {
    if (w.onAllDesktops)
        return true;
    if (!six)
        return w.desktop === workspace.currentDesktop;
    for (var i = 0; i < w.desktops.length; ++i) {
        if (w.desktops[i].id === workspace.currentDesktop.id)
            return true;
    }
    return false;
}

function isVisible(w) {
    return !w.minimized && !w.hidden && isOnCurrentDesktop(w) &&
        (w.activities.length === 0 || holds(w.activities, workspace.currentActivity));
}

// Wayland knows no kinds of windows, only that one belongs to another.
function kind(w) {
    if (w.utility || w.toolbar)
        return "floating";
    return w.dialog || !isX11(w) && w.transient ? "dialog" : "standard";
}

function describe(w) {
    return {
        id: String(w.internalId),
        pid: w.pid,
        x11: isX11(w),
        application: String(w.desktopFileName),
        instance: String(w.resourceName),
        "class": String(w.resourceClass),
        // Without the number that tells windows of one title apart; it depends on which was opened first.
        title: String(w.caption).replace(/ <\d+>\u200e?$/, ""),
        frame: rectangle(w.frameGeometry),
        visible: isVisible(w),
        kind: kind(w)
    };
}

function list() {
    var found = allWindows().filter(isListed);
    found.sort(function (a, b) { return b.stackingOrder - a.stackingOrder; });
    var active = six ? workspace.activeWindow : workspace.activeClient;
    return {windows: found.map(describe), active: active ? String(active.internalId) : ""};
}

function areas() {
    var screens = [];
    var count = six ? workspace.screens.length : workspace.numScreens;
    for (var i = 0; i < count; ++i) {
        var screen = six ? workspace.screens[i] : i;
        var area = function (option) {
            return rectangle(workspace.clientArea(option, screen, workspace.currentDesktop));
        };
        screens.push({frame: area(KWin.ScreenArea), work: area(KWin.MaximizeArea)});
    }
    return {screens: screens, version: six ? 6 : 5};
}

// Fractional scales make fractional frames.
function isNear(a, b) {
    return Math.abs(a - b) < 1;
}

// A terminal rounds its size to whole characters, and says nothing when that is the size it has.
function isRounded(size, wanted) {
    return Math.abs(size.width - wanted.width) < 16 && Math.abs(size.height - wanted.height) < 32;
}

// The outcome of a placement so far; empty while the client may still answer.
function judge(placement, hasAnswered) {
    var frame = placement.window.frameGeometry;
    var wanted = placement.frame;
    if (!isNear(frame.x, wanted.x) || !isNear(frame.y, wanted.y))
        return "";
    if (isNear(frame.width, wanted.width) && isNear(frame.height, wanted.height))
        return "done";
    return hasAnswered ? "adjusted" : "";
}

function move(w, frame) {
    if (w.fullScreen)
        w.fullScreen = false;
    if (w.shade)
        w.shade = false;
    if (w.tile) {
        // A window that only lost its tile goes back into it when a screen returns (5.27).
        w.tile = null;
        w.setMaximize(true, true);
    }
    w.setMaximize(false, false);
    w.frameGeometry = frame;
}

// Wayland clients carry a new size out themselves: the frame stays as it was until they have.
function place(question, answer, tellOfProgress) {
    var removed = six ? workspace.windowRemoved : workspace.clientRemoved;
    var settled = new QTimer();
    var expired = new QTimer();
    var placements = [];
    var open = question.windows.length;
    var quietTimes = 0;
    var windows = {};

    function finish(placement, outcome) {
        if (!outcome || placement.outcome)
            return;
        placement.outcome = outcome;
        if (placement.listen && outcome !== "gone")
            placement.window.frameGeometryChanged.disconnect(placement.listen);
        --open;
    }
    function onRemoved(w) {
        placements.forEach(function (placement) {
            if (placement.window === w)
                finish(placement, "gone");
        });
        answerWhenDone();
    }
    // Nothing happened for a while: a client that has answered answers no more, and one whose size is right
    // but for a character keeps it.
    function onSettled() {
        placements.forEach(function (placement) {
            if (placement.outcome)
                return;
            finish(placement, judge(placement, placement.hasAnswered ||
                isRounded(placement.window.frameGeometry, placement.frame)));
        });
        answerWhenDone();
        if (open < 0)
            return;
        if (++quietTimes === 4)
            return onExpired();
        tellOfProgress();
        settled.start();
    }
    function onExpired() {
        placements.forEach(function (placement) {
            finish(placement, placement.outcome || judge(placement, placement.hasAnswered) || "timedOut");
        });
        answerWhenDone();
    }
    function answerWhenDone() {
        if (open !== 0)
            return;
        open = -1;
        settled.stop();
        expired.stop();
        removed.disconnect(onRemoved);
        answer({outcomes: placements.map(function (placement) { return placement.outcome; })});
    }

    allWindows().forEach(function (w) { windows[String(w.internalId)] = w; });
    question.windows.forEach(function (wish) {
        var w = windows[wish.id];
        var frame = {x: wish.frame[0], y: wish.frame[1], width: wish.frame[2], height: wish.frame[3]};
        var placement = {window: w, frame: frame, outcome: "", hasAnswered: false};
        placements.push(placement);
        if (!w || w.deleted) {
            finish(placement, "gone");
            return;
        }
        placement.listen = function () {
            placement.hasAnswered = true;
            quietTimes = 0;
            settled.start();
            finish(placement, judge(placement, false));
            answerWhenDone();
        };
        move(w, frame);
        finish(placement, judge(placement, isX11(w)) || (isVisible(w) ? "" : "pending"));
        if (!placement.outcome)
            w.frameGeometryChanged.connect(placement.listen);
    });

    removed.connect(onRemoved);
    settled.singleShot = expired.singleShot = true;
    settled.interval = 200;
    expired.interval = question.patience;
    settled.timeout.connect(onSettled);
    expired.timeout.connect(onExpired);
    settled.start();
    expired.start();
    answerWhenDone();
}

function activate(id) {
    var found = allWindows().filter(function (w) { return String(w.internalId) === id; });
    if (found.length === 0)
        return {activated: false};
    if (six)
        workspace.activeWindow = found[0];
    else
        workspace.activeClient = found[0];
    return {activated: true};
}

function obey(question, answer, tellOfProgress) {
    switch (question.operation) {
    case "list":
        return answer(list());
    case "areas":
        return answer(areas());
    case "place":
        return place(question, answer, tellOfProgress);
    case "activate":
        return answer(activate(question.id));
    case "pointer":
        return answer({pointer: [workspace.cursorPos.x, workspace.cursorPos.y]});
    }
    return answer({error: "unknown operation"});
}

// Nobody calls back when the program is gone: the script then ends itself.
var lifetime = new QTimer();
lifetime.singleShot = true;
lifetime.interval = agent.lifetime;
lifetime.timeout.connect(function () {
    callDBus("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "unloadScript", agent.name);
});

function tell(method, number, text) {
    callDBus(agent.service, agent.path, agent["interface"], method, number, text);
}

function waitForQuestion() {
    lifetime.start();
    callDBus(agent.service, agent.path, agent["interface"], "Next", function (number, text) {
        var answer = function (result) {
            tell("Answer", number, JSON.stringify(result));
            waitForQuestion();
        };
        try {
            obey(JSON.parse(text), answer, function () { tell("Progress", number, ""); });
        } catch (problem) {
            answer({error: String(problem)});
        }
    });
}

waitForQuestion();
