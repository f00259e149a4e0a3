#include "platform/x11/X11TapWorker.h"

#include "core/KeyEvent.h"
#include "platform/x11/KeySymMap.h"
#include "platform/x11/X11KeyTyper.h"
#include "platform/x11/X11Log.h"
#include "platform/x11/XcbPtr.h"

#include <cstdlib>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>
#include <xcb/xinput.h>
// xkb.h names a member `explicit`, a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-keysyms.h>

namespace velmora {

namespace {

constexpr std::uint16_t kChordMods =
    XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

QString describeChord(const KeyboardShortcut& c) {
    QStringList parts;
    if (c.command)
        parts << "Ctrl";
    if (c.control)
        parts << "Super";
    if (c.alt)
        parts << "Alt";
    if (c.shift)
        parts << "Shift";
    parts << QString("key %1").arg(c.keyCode);
    return parts.join('+');
}

} // namespace

X11TapWorker::X11TapWorker(QByteArray display, Delegate delegate)
    : m_display(std::move(display)), m_delegate(std::move(delegate)) {}

X11TapWorker::~X11TapWorker() {
    m_stop = true;
    wake();
    if (m_thread.joinable())
        m_thread.join();
    if (m_symbols)
        xcb_key_symbols_free(m_symbols);
    if (m_connection)
        xcb_disconnect(m_connection); // the server drops every grab of this connection
    if (m_wakeFd >= 0)
        ::close(m_wakeFd);
}

bool X11TapWorker::start(QString* error) {
    m_connection = xcb_connect(m_display.isEmpty() ? nullptr : m_display.constData(), nullptr);
    if (xcb_connection_has_error(m_connection)) {
        *error = "cannot connect to the X server";
        m_state = InputTap::State::failed;
        return false;
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    m_symbols = xcb_key_symbols_alloc(m_connection);
    if (!selectEvents(error)) {
        m_state = InputTap::State::failed;
        return false;
    }
    readModifierMapping();
    m_wakeFd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    m_state = InputTap::State::active;
    m_thread = std::thread([this] { run(); });
    return true;
}

bool X11TapWorker::selectEvents(QString* error) {
    auto* c = m_connection;
    const auto* xi = xcb_get_extension_data(c, &xcb_input_id);
    if (!xi || !xi->present) {
        *error = "the X server lacks XInputExtension";
        return false;
    }
    m_xinputOpcode = xi->major_opcode;
    XcbPtr<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(c, xcb_input_xi_query_version(c, 2, 2), nullptr));
    if (!version || version->major_version < 2) {
        *error = "the X server lacks XInput 2";
        return false;
    }
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
           XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
               XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
               XCB_INPUT_XI_EVENT_MASK_RAW_MOTION};
    xcb_input_xi_select_events(c, m_root, 1, &mask.head);

    XcbPtr<xcb_xkb_use_extension_reply_t> xkb(
        xcb_xkb_use_extension_reply(c, xcb_xkb_use_extension(c, 1, 0), nullptr));
    const auto* xkbData = xcb_get_extension_data(c, &xcb_xkb_id);
    if (!xkb || !xkb->supported || !xkbData || !xkbData->present) {
        *error = "the X server lacks XKEYBOARD";
        return false;
    }
    m_xkbEventBase = xkbData->first_event;
    xcb_xkb_select_events(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0,
                          XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, nullptr);
    XcbPtr<xcb_xkb_get_state_reply_t> state(
        xcb_xkb_get_state_reply(c, xcb_xkb_get_state(c, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (state)
        m_modState = (state->baseMods | state->latchedMods) & kChordMods;
    xcb_flush(c);
    return true;
}

void X11TapWorker::readModifierMapping() {
    auto* c = m_connection;
    m_modifierKeycodes.clear();
    m_numLockMask = 0;
    XcbPtr<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(c, xcb_get_modifier_mapping(c), nullptr));
    if (!map)
        return;
    XcbPtr<xcb_keycode_t> numLock(xcb_key_symbols_get_keycode(m_symbols, XKB_KEY_Num_Lock));
    const auto* codes = xcb_get_modifier_mapping_keycodes(map.get());
    const int perModifier = map->keycodes_per_modifier;
    for (int mod = 0; mod < 8; ++mod)
        for (int i = 0; i < perModifier; ++i) {
            const xcb_keycode_t code = codes[mod * perModifier + i];
            if (code == 0)
                continue;
            m_modifierKeycodes.insert(code);
            for (auto* n = numLock.get(); n && *n != XCB_NO_SYMBOL; ++n)
                if (*n == code)
                    m_numLockMask = std::uint16_t(1u << mod);
        }
}

void X11TapWorker::setChords(std::vector<KeyboardShortcut> chords) {
    {
        std::lock_guard lock(m_mutex);
        m_pendingChords = std::move(chords);
    }
    wake();
}

void X11TapWorker::renew() {
    {
        std::lock_guard lock(m_mutex);
        m_pendingRenew = true;
    }
    wake();
}

void X11TapWorker::setKeyboardGrabbed(bool grabbed) {
    {
        std::lock_guard lock(m_mutex);
        m_pendingKeyboardGrab = grabbed;
    }
    wake();
}

void X11TapWorker::postChord(const KeyboardShortcut& chord) {
    {
        std::lock_guard lock(m_mutex);
        m_pendingTyping.push_back(chord);
    }
    wake();
}

void X11TapWorker::wake() {
    if (m_wakeFd >= 0) {
        const std::uint64_t one = 1;
        [[maybe_unused]] auto n = ::write(m_wakeFd, &one, sizeof one);
    }
}

void X11TapWorker::run() {
    auto* c = m_connection;
    pollfd fds[2] = {{xcb_get_file_descriptor(c), POLLIN, 0}, {m_wakeFd, POLLIN, 0}};
    applyPendingCommands();
    while (!m_stop) {
        xcb_flush(c);
        while (auto* event = xcb_poll_for_event(c)) {
            handle(event);
            std::free(event);
        }
        if (xcb_connection_has_error(c)) {
            m_state = InputTap::State::failed; // the watchdog reconnects on its next tick
            return;
        }
        // While another client holds the keyboard, retry the cleaning grab every 100 ms; while typing
        // waits for a key to go up, look again every 10 ms.
        int timeout = (m_wantKeyboardGrab && !m_keyboardGrabActive) ? 100 : -1;
        if (!m_typingQueue.empty())
            timeout = 10;
        ::poll(fds, 2, timeout);
        if (fds[1].revents & POLLIN) {
            std::uint64_t count;
            [[maybe_unused]] auto n = ::read(m_wakeFd, &count, sizeof count);
            applyPendingCommands();
        }
        if (m_wantKeyboardGrab && !m_keyboardGrabActive)
            tryKeyboardGrab();
        typeWhenKeysAreUp();
    }
}

void X11TapWorker::typeWhenKeysAreUp() {
    if (m_typingQueue.empty())
        return;
    X11KeyTyper typer(m_connection, m_symbols);
    // The key of the shortcut that asked for the typing is usually still down, and the keyboard is
    // grabbed until it goes up: typed now, the chord would come back to this client.
    if (typer.nonModifierKeyDown(m_modifierKeycodes) && std::chrono::steady_clock::now() < m_typingDeadline)
        return;
    const auto queue = std::exchange(m_typingQueue, {});
    for (const KeyboardShortcut& chord : queue)
        typeChord(chord);
}

void X11TapWorker::applyPendingCommands() {
    std::optional<std::vector<KeyboardShortcut>> chords;
    std::optional<bool> keyboardGrab;
    bool renew = false;
    std::vector<KeyboardShortcut> typing;
    {
        std::lock_guard lock(m_mutex);
        chords.swap(m_pendingChords);
        keyboardGrab.swap(m_pendingKeyboardGrab);
        renew = std::exchange(m_pendingRenew, false);
        typing.swap(m_pendingTyping);
    }
    if (!typing.empty()) {
        if (m_typingQueue.empty())
            m_typingDeadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        m_typingQueue.insert(m_typingQueue.end(), typing.begin(), typing.end());
        typeWhenKeysAreUp();
    }
    if (renew && m_state == InputTap::State::disabledByTimeout) {
        m_state = InputTap::State::active;
        regrab();
    }
    if (chords) {
        m_chords = std::move(*chords);
        if (m_state == InputTap::State::active)
            regrab();
    }
    if (keyboardGrab && *keyboardGrab != m_wantKeyboardGrab) {
        m_wantKeyboardGrab = *keyboardGrab;
        if (m_wantKeyboardGrab) {
            tryKeyboardGrab();
        } else if (m_keyboardGrabActive) {
            xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
            m_keyboardGrabActive = false;
        }
    }
}

void X11TapWorker::tryKeyboardGrab() {
    auto* c = m_connection;
    XcbPtr<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
        c, xcb_grab_keyboard(c, 0, m_root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    m_keyboardGrabActive = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

std::uint16_t X11TapWorker::xModifiers(const KeyboardShortcut& chord) const {
    std::uint16_t mods = 0;
    if (chord.command)
        mods |= XCB_MOD_MASK_CONTROL;
    if (chord.control)
        mods |= XCB_MOD_MASK_4;
    if (chord.alt)
        mods |= XCB_MOD_MASK_1;
    if (chord.shift)
        mods |= XCB_MOD_MASK_SHIFT;
    return mods;
}

std::uint64_t X11TapWorker::flagsFromX(std::uint16_t state) const {
    std::uint64_t flags = 0;
    if (state & XCB_MOD_MASK_SHIFT)
        flags |= ModifierMask::Shift;
    if (state & XCB_MOD_MASK_CONTROL)
        flags |= ModifierMask::Command;
    if (state & XCB_MOD_MASK_1)
        flags |= ModifierMask::Option;
    if (state & XCB_MOD_MASK_4)
        flags |= ModifierMask::Control;
    return flags;
}

void X11TapWorker::ungrabAll() {
    xcb_ungrab_key(m_connection, XCB_GRAB_ANY, m_root, XCB_MOD_MASK_ANY);
    m_grabs.clear();
}

void X11TapWorker::regrab() {
    auto* c = m_connection;
    ungrabAll();
    std::vector<RefusedChord> refused;
    // Each chord in its four lock variants, so CapsLock or NumLock being on does not break it.
    std::vector<std::uint16_t> locks{0, XCB_MOD_MASK_LOCK};
    if (m_numLockMask) {
        locks.push_back(m_numLockMask);
        locks.push_back(XCB_MOD_MASK_LOCK | m_numLockMask);
    }
    for (const auto& chord : m_chords) {
        const auto keysym = keysymForVirtualKeyCode(chord.keyCode);
        XcbPtr<xcb_keycode_t> keycodes(keysym ? xcb_key_symbols_get_keycode(m_symbols, *keysym) : nullptr);
        if (!keycodes || *keycodes == XCB_NO_SYMBOL) {
            refused.push_back(
                {chord, QString("the keyboard layout has no key for %1").arg(describeChord(chord))});
            continue;
        }
        const std::uint16_t mods = xModifiers(chord);
        std::vector<std::pair<Grab, xcb_void_cookie_t>> cookies;
        for (auto* k = keycodes.get(); *k != XCB_NO_SYMBOL; ++k)
            for (auto lock : locks)
                cookies.push_back({{*k, mods},
                                   xcb_grab_key_checked(c, 0, m_root, mods | lock, *k, XCB_GRAB_MODE_ASYNC,
                                                        XCB_GRAB_MODE_SYNC)});
        bool taken = false;
        for (auto& [grab, cookie] : cookies) {
            XcbPtr<xcb_generic_error_t> error(xcb_request_check(c, cookie));
            if (error)
                taken = true;
            else
                m_grabs.insert(grab);
        }
        if (taken)
            refused.push_back(
                {chord, "another program (often the window manager) already uses this shortcut"});
    }
    xcb_flush(c);
    if (m_delegate.refused)
        m_delegate.refused(std::move(refused));
}

bool X11TapWorker::isModifierKey(xcb_keycode_t keycode) const {
    return m_modifierKeycodes.count(keycode) > 0;
}

std::optional<std::uint16_t> X11TapWorker::virtualKeyCode(xcb_keycode_t keycode) const {
    const xcb_keysym_t keysym = xcb_key_symbols_get_keysym(m_symbols, keycode, 0);
    return virtualKeyCodeForKeysym(keysym);
}

void X11TapWorker::handle(xcb_generic_event_t* event) {
    const std::uint8_t type = event->response_type & 0x7f;
    if (type == XCB_KEY_PRESS) {
        handleGrabbedKeyPress(reinterpret_cast<xcb_key_press_event_t*>(event));
    } else if (type == XCB_KEY_RELEASE) {
        // The release of a swallowed chord's key comes through the grab, not as a raw event.
        const auto* release = reinterpret_cast<xcb_key_release_event_t*>(event);
        const auto keyCode = virtualKeyCode(release->detail);
        if (m_state == InputTap::State::active && !m_keyboardGrabActive && keyCode &&
            !isModifierKey(release->detail))
            m_delegate.deliver({TapEventType::KeyUp, flagsFromX(release->state), *keyCode, false}, false);
    } else if (type == XCB_GE_GENERIC) {
        auto* ge = reinterpret_cast<xcb_ge_generic_event_t*>(event);
        if (ge->extension == m_xinputOpcode && m_state == InputTap::State::active)
            handleXInput(ge);
    } else if (type == XCB_MAPPING_NOTIFY) {
        xcb_refresh_keyboard_mapping(m_symbols, reinterpret_cast<xcb_mapping_notify_event_t*>(event));
        readModifierMapping();
        if (m_state == InputTap::State::active)
            regrab();
    } else if (type == m_xkbEventBase) {
        auto* xkb = reinterpret_cast<xcb_xkb_state_notify_event_t*>(event);
        if (xkb->xkbType == XCB_XKB_STATE_NOTIFY && m_state == InputTap::State::active)
            handleModifierState((xkb->baseMods | xkb->latchedMods) & kChordMods);
    }
}

void X11TapWorker::typeChord(const KeyboardShortcut& chord) {
    X11KeyTyper typer(m_connection, m_symbols);
    const auto key = typer.keycodeOf(chord);
    typer.releaseHeldModifiers(m_modifierKeycodes);
    QString error;
    if (!key || !typer.type(chord, &error)) {
        qCWarning(lcX11).noquote() << "A chord could not be typed:"
                                   << (key ? error : "its key is not on the keyboard");
        return;
    }
    // The server answers typing at once; a second is ample even on a loaded machine.
    m_typedKey = *key;
    m_typedPressesLeft = 1;
    // Its press comes once: through the grab when the chord is one of ours, else as a raw event only.
    m_typedThroughGrab = m_grabs.count({*key, xModifiers(chord)}) > 0;
    m_typedUntil = std::chrono::steady_clock::now() + std::chrono::seconds(1);
}

bool X11TapWorker::isOwnTyping(xcb_keycode_t keycode, bool consume) {
    if (!m_typedKey || *m_typedKey != keycode || std::chrono::steady_clock::now() > m_typedUntil)
        return false;
    if (consume && --m_typedPressesLeft <= 0)
        m_typedKey.reset();
    return true;
}

void X11TapWorker::handleGrabbedKeyPress(const xcb_key_press_event_t* event) {
    auto* c = m_connection;
    if (m_keyboardGrabActive)
        return; // cleaning: every key stays with us
    if (isOwnTyping(event->detail, true)) {
        xcb_allow_events(c, XCB_ALLOW_REPLAY_KEYBOARD, event->time);
        xcb_flush(c);
        return;
    }
    const auto keyCode = virtualKeyCode(event->detail);
    std::optional<TapVerdict> verdict;
    if (m_state == InputTap::State::active && keyCode) {
        verdict =
            m_delegate.deliver({TapEventType::KeyDown, flagsFromX(event->state), *keyCode, false}, true);
        if (!verdict)
            disableByTimeout();
    }
    const bool swallow = verdict && *verdict == TapVerdict::swallow;
    xcb_allow_events(c, swallow ? XCB_ALLOW_ASYNC_KEYBOARD : XCB_ALLOW_REPLAY_KEYBOARD, event->time);
    xcb_flush(c);
}

void X11TapWorker::handleXInput(const xcb_ge_generic_event_t* ge) {
    switch (ge->event_type) {
    case XCB_INPUT_RAW_KEY_PRESS:
    case XCB_INPUT_RAW_KEY_RELEASE: {
        const auto* raw = reinterpret_cast<const xcb_input_raw_key_press_event_t*>(ge);
        const auto keycode = xcb_keycode_t(raw->detail);
        if (isModifierKey(keycode))
            return; // modifiers arrive as XKB state changes
        const bool press = ge->event_type == XCB_INPUT_RAW_KEY_PRESS;
        // A press of a grabbed chord comes again through the grab, where it can be swallowed.
        if (press && m_grabs.count({keycode, m_modState}))
            return;
        if (isOwnTyping(keycode, press && !m_typedThroughGrab))
            return;
        const auto keyCode = virtualKeyCode(keycode);
        if (!keyCode)
            return;
        const bool repeat = raw->flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT;
        m_delegate.deliver(
            {press ? TapEventType::KeyDown : TapEventType::KeyUp, flagsFromX(m_modState), *keyCode, repeat},
            false);
        return;
    }
    case XCB_INPUT_RAW_BUTTON_PRESS:
    case XCB_INPUT_RAW_BUTTON_RELEASE: {
        const auto* raw = reinterpret_cast<const xcb_input_raw_button_press_event_t*>(ge);
        if (raw->detail != 1)
            return;
        m_button1Down = ge->event_type == XCB_INPUT_RAW_BUTTON_PRESS;
        m_delegate.deliver({m_button1Down ? TapEventType::LeftMouseDown : TapEventType::LeftMouseUp,
                            flagsFromX(m_modState), 0, false},
                           false);
        return;
    }
    case XCB_INPUT_RAW_MOTION:
        m_delegate.deliver({m_button1Down ? TapEventType::LeftMouseDragged : TapEventType::MouseMoved,
                            flagsFromX(m_modState), 0, false},
                           false);
        return;
    default:
        return;
    }
}

void X11TapWorker::handleModifierState(std::uint16_t mods) {
    if (mods == m_modState)
        return;
    m_modState = mods;
    m_delegate.deliver({TapEventType::FlagsChanged, flagsFromX(mods), 0, false}, false);
}

void X11TapWorker::disableByTimeout() {
    // Like a tap the system switched off: nothing is held back or reported until it is recreated.
    m_state = InputTap::State::disabledByTimeout;
    ungrabAll();
}

} // namespace velmora
