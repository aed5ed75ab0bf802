const VERSION = 1; // of the interface: the program works with this one only
const NAME = 'org.tavrin.WindowService';
const PATH = '/org/tavrin/WindowService';

// Answers are JSON texts. Frames are x, y, width and height of what the user sees of a window.
const INTERFACE = `<node><interface name="${NAME}">
  <method name="List"><arg type="s" direction="out"/></method>
  <method name="Areas"><arg type="s" direction="out"/></method>
  <method name="Place">
    <arg name="windows" type="a(tiiii)" direction="in"/>
    <arg name="milliseconds" type="u" direction="in"/><arg type="s" direction="out"/>
  </method>
  <method name="Activate"><arg name="window" type="t" direction="in"/><arg type="s" direction="out"/></method>
  <method name="WatchKeys"><arg name="accelerators" type="as" direction="in"/><arg type="s" direction="out"/></method>
  <signal name="KeyPressed"><arg name="accelerator" type="s"/></signal>
  <signal name="AreasChanged"/>
</interface></node>`;

const LIMITS = {windows: 10000, title: 1024, coordinate: 32000, placings: 8, keys: 256, ticks: 600};
const ACCELERATOR = /^(<Control>)?(<Alt>)?(<Shift>)?(<Super>)?0x[0-9a-f]{1,3}$/; // with the position of a key
const TICK = 100, QUIET_TICKS = 20; // milliseconds; after so many without any news the rest counts as lost

const KINDS = new Map([
    [Meta.WindowType.NORMAL, 'standard'], [Meta.WindowType.DIALOG, 'dialog'], [Meta.WindowType.MODAL_DIALOG, 'dialog'],
    [Meta.WindowType.UTILITY, 'floating'], [Meta.WindowType.TOOLBAR, 'floating'],
]);

const activeWorkspace = () => global.workspace_manager.get_active_workspace();
const isVisible = w => !w.minimized && w.located_on_workspace(activeWorkspace());
const isX11 = w => w.get_client_type() === Meta.WindowClientType.X11;
const rectangle = r => [r.x, r.y, r.width, r.height];

// Front to back, those of all workspaces, minimised ones included.
function allWindows() {
    return global.get_window_actors().map(actor => actor.meta_window)
        .filter(w => w && KINDS.has(w.get_window_type())).reverse().slice(0, LIMITS.windows);
}

function describe(w) {
    return {
        id: String(w.get_id()),
        pid: w.get_pid(),
        x11: isX11(w),
        application: w.get_sandboxed_app_id() || w.get_gtk_application_id() || (isX11(w) ? '' : w.get_wm_class()) || '',
        instance: w.get_wm_class_instance() || '',
        class: w.get_wm_class() || '',
        title: (w.get_title() || '').slice(0, LIMITS.title),
        frame: rectangle(w.get_frame_rect()),
        visible: isVisible(w),
        // Wayland knows no kinds of windows, only that one belongs to another.
        kind: !isX11(w) && w.get_transient_for() ? 'dialog' : KINDS.get(w.get_window_type()),
    };
}

// Moves windows together and waits for what their clients make of it: on Wayland they carry out a new size.
class Placing {
    constructor(wishes, milliseconds) {
        const windows = new Map(allWindows().map(w => [w.get_id(), w]));
        this._wishes = wishes.map(([id, ...frame]) => ({window: windows.get(id), frame, signals: []}));
        this._openCount = wishes.length;
        this._ticksLeft = Math.min(milliseconds / TICK, LIMITS.ticks);
        this._quiet = 0;
        this._timer = GLib.timeout_add(GLib.PRIORITY_DEFAULT, TICK, () => this._tick());
        this.finished = new Promise(resolve => (this._finish = resolve));
        this._wishes.forEach(wish => this._begin(wish));
    }

    _begin(wish) {
        const {window, frame: [x, y, width, height]} = wish;
        if (!window)
            return this._end(wish, 'gone');
        if (Math.max(Math.abs(x), Math.abs(y), width, height) > LIMITS.coordinate || Math.min(width, height) < 1)
            return this._end(wish, 'refused');
        if (window.is_fullscreen())
            window.unmake_fullscreen();
        if (window.get_maximized())
            window.unmaximize(Meta.MaximizeFlags.BOTH);
        // Apart, since an X11 client that rounds its size would lose the new position.
        window.move_frame(true, x, y);
        window.move_resize_frame(true, x, y, width, height);
        const changed = () => {
            wish.hasAnswered = true;
            this._quiet = 0;
            this._end(wish, this._judge(wish, false));
        };
        wish.signals = [window.connect('size-changed', changed), window.connect('position-changed', changed),
            window.connect('unmanaging', () => this._end(wish, 'gone'))];
        return this._end(wish, this._judge(wish, isX11(window)));
    }

    // The outcome so far, absent while it is open. `isFinal`: the client will take no other size.
    _judge({window, frame: [x, y, width, height]}, isFinal) {
        const now = window.get_frame_rect();
        if (now.x !== x || now.y !== y)
            return undefined;
        return now.width === width && now.height === height ? 'done' : isFinal ? 'adjusted' : undefined;
    }

    _end(wish, outcome) {
        if (wish.outcome || !outcome)
            return;
        wish.outcome = outcome;
        wish.signals.forEach(signal => wish.window.disconnect(signal));
        if (--this._openCount > 0)
            return;
        GLib.source_remove(this._timer);
        this._finish({outcomes: this._wishes.map(each => each.outcome)});
    }

    cancel() {
        this._wishes.forEach(wish => this._end(wish, 'timedOut'));
    }

    _tick() {
        const isOver = ++this._quiet >= QUIET_TICKS || --this._ticksLeft <= 0;
        for (const wish of this._wishes.filter(each => !each.outcome && (isOver || this._quiet > 1))) {
            // A terminal rounds its size to whole characters, and says nothing when that is the size it has.
            const {width, height} = wish.window.get_frame_rect();
            const isRounded = Math.abs(width - wish.frame[2]) < 16 && Math.abs(height - wish.frame[3]) < 32;
            this._end(wish, this._judge(wish, wish.hasAnswered || isRounded));
            if (isOver)
                this._end(wish, isVisible(wish.window) ? 'timedOut' : 'pending');
        }
        return GLib.SOURCE_CONTINUE; // unless it was removed
    }
}

class WindowService {
    enable() {
        this._placings = new Set();
        this._keys = new Map(); // accelerators, by the numbers that the window manager gave them
        const areasChanged = () => this._object.emit_signal('AreasChanged', null);
        this._signals = [
            [global.display, 'workareas-changed', areasChanged],
            [Main.layoutManager, 'monitors-changed', areasChanged],
            [global.display, 'accelerator-activated', (display, action) => this._keys.has(action) && Gio.DBus.session.emit_signal(
                this._client, PATH, NAME, 'KeyPressed', new GLib.Variant('(s)', [this._keys.get(action)]))],
        ].map(([object, name, handler]) => [object, object.connect(name, handler)]);
        this._object = Gio.DBusExportedObject.wrapJSObject(INTERFACE, this);
        this._object.export(Gio.DBus.session, PATH);
        // Last: who sees the name may ask.
        this._name = Gio.bus_own_name_on_connection(Gio.DBus.session, NAME, Gio.BusNameOwnerFlags.NONE, null, null);
    }

    disable() {
        Gio.bus_unown_name(this._name);
        this._releaseKeys();
        this._placings.forEach(placing => placing.cancel());
        this._signals.forEach(([object, signal]) => object.disconnect(signal));
        this._object.unexport();
        this._object = null;
    }

    ListAsync(_, invocation) {
        this._serve(invocation, () =>
            ({windows: allWindows().map(describe), active: String(global.display.focus_window?.get_id() ?? '')}));
    }

    AreasAsync(_, invocation) {
        const screen = monitor => ({
            frame: rectangle(global.display.get_monitor_geometry(monitor)),
            work: rectangle(activeWorkspace().get_work_area_for_monitor(monitor)),
            primary: monitor === global.display.get_primary_monitor(),
        });
        this._serve(invocation, () => ({
            version: VERSION,
            screens: [...Array(global.display.get_n_monitors()).keys()].map(screen),
            pointer: global.get_pointer().slice(0, 2),
        }));
    }

    PlaceAsync([windows, milliseconds], invocation) {
        this._serve(invocation, () => {
            if (windows.length < 1 || windows.length > LIMITS.windows || this._placings.size >= LIMITS.placings)
                throw new Error('nothing to do, or too much');
            const placing = new Placing(windows, milliseconds);
            this._placings.add(placing);
            return placing.finished.finally(() => this._placings.delete(placing));
        });
    }

    ActivateAsync([id], invocation) {
        this._serve(invocation, () => {
            const window = allWindows().find(w => w.get_id() === id);
            window?.get_workspace().activate_with_focus(window, global.display.get_current_time_roundtrip());
            return {activated: Boolean(window)};
        });
    }

    // The caller's keys from now on, instead of those that anybody had before.
    WatchKeysAsync([accelerators], invocation) {
        this._serve(invocation, () => {
            if (accelerators.length > LIMITS.keys || !accelerators.every(each => ACCELERATOR.test(each)))
                throw new Error('these are no accelerators');
            this._releaseKeys();
            this._client = invocation.get_sender();
            this._clientWatch = Gio.bus_watch_name_on_connection(Gio.DBus.session, this._client,
                Gio.BusNameWatcherFlags.NONE, null, () => this._releaseKeys());
            return {granted: accelerators.map(each => this._grab(each))};
        });
    }

    _grab(accelerator) {
        const action = global.display.grab_accelerator(accelerator, Meta.KeyBindingFlags.IGNORE_AUTOREPEAT);
        if (action === Meta.KeyBindingAction.NONE)
            return false;
        const {NORMAL, OVERVIEW, POPUP} = Shell.ActionMode;
        Main.wm.allowKeybinding(Meta.external_binding_name_for_action(action), NORMAL | OVERVIEW | POPUP);
        this._keys.set(action, accelerator);
        return true;
    }

    _releaseKeys() {
        for (const action of this._keys.keys()) {
            Main.wm.allowKeybinding(Meta.external_binding_name_for_action(action), Shell.ActionMode.NONE);
            global.display.ungrab_accelerator(action);
        }
        this._keys.clear();
        if (this._clientWatch)
            Gio.bus_unwatch_name(this._clientWatch);
        this._clientWatch = 0;
    }

    // Answers with what `operation` gives, if a process of this user asks.
    _serve(invocation, operation) {
        const finish = (bus, reply) => Promise.resolve().then(() => {
            const [user] = bus.call_finish(reply).deepUnpack();
            if (user !== new Gio.Credentials().get_unix_user() || !this._object)
                throw new Error('not allowed');
            return operation();
        }).then(answer => invocation.return_value(new GLib.Variant('(s)', [JSON.stringify(answer)])))
            .catch(error => invocation.return_dbus_error(`${NAME}.Error`, String(error)));
        Gio.DBus.session.call('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus', 'GetConnectionUnixUser',
            new GLib.Variant('(s)', [invocation.get_sender()]), null, Gio.DBusCallFlags.NONE, 1000, null, finish);
    }
}
