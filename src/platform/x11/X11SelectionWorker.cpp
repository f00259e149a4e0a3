#include "platform/x11/X11SelectionWorker.h"

#include "platform/x11/ClipboardTargets.h"
#include "platform/x11/X11Log.h"
#include "platform/x11/XcbPtr.h"

#include <limits>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <xcb/xfixes.h>

#include <cstring>

namespace velmora {

namespace {

// Above this a value is served in pieces (INCR), as owners commonly do.
constexpr std::size_t kIncrThreshold = 256 * 1024;
constexpr std::size_t kIncrChunk = 256 * 1024;
// Nothing copied by a person is larger; a transfer beyond it is a runaway owner.
constexpr std::size_t kMaxTransfer = 512u * 1024 * 1024;
constexpr std::uint32_t kWholeProperty = 0x1fffffff;

std::uint8_t typeOf(const xcb_generic_event_t* e) {
    return e->response_type & ~0x80;
}

} // namespace

struct X11SelectionWorker::Transfer {
    xcb_window_t requestor = 0;
    xcb_atom_t property = 0;
    xcb_atom_t type = 0;
    QByteArray data;
    std::size_t sent = 0;
    bool finished = false; // the closing empty piece was written
};

X11SelectionWorker::X11SelectionWorker(X11Connection connection, Callbacks callbacks)
    : m_x(std::move(connection)), m_callbacks(std::move(callbacks)) {
    m_wakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (!setUp()) {
        qCWarning(lcX11) << "The clipboard cannot be watched on this X server: copies will not be recorded.";
        return;
    }
    m_thread = std::thread([this] { run(); });
}

X11SelectionWorker::~X11SelectionWorker() {
    m_stop = true;
    wake();
    if (m_thread.joinable())
        m_thread.join();
    for (auto* e : m_pending)
        std::free(e);
    if (m_window && !m_x.hasError()) {
        xcb_destroy_window(m_x.connection(), m_window);
        xcb_flush(m_x.connection());
    }
    if (m_wakeFd >= 0)
        close(m_wakeFd);
}

std::uint64_t X11SelectionWorker::own(std::vector<PasteboardItem> items) {
    const std::uint64_t ticket = ++m_ownsAsked;
    if (!m_thread.joinable()) { // no worker: nothing to wait for
        m_ownsDone = ticket;
        return ticket;
    }
    {
        std::lock_guard lock(m_mutex);
        m_toOwn.push_back(std::move(items));
    }
    wake();
    return ticket;
}

void X11SelectionWorker::wake() {
    const std::uint64_t one = 1;
    if (m_wakeFd >= 0) [[maybe_unused]]
        auto written = write(m_wakeFd, &one, sizeof one);
}

bool X11SelectionWorker::setUp() {
    if (m_x.hasError() || m_wakeFd < 0)
        return false;
    xcb_connection_t* c = m_x.connection();
    XcbPtr<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 5, 0), nullptr));
    const auto* xfixes = xcb_get_extension_data(c, &xcb_xfixes_id);
    if (!version || !xfixes || !xfixes->present)
        return false;
    m_xfixesBase = xfixes->first_event;
    m_clipboard = m_x.atom("CLIPBOARD");
    m_property = m_x.atom("_VELMORA_SELECTION");
    m_window = xcb_generate_id(c);
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_window, m_x.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    const char name[] = "Velmora clipboard";
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        sizeof name - 1, name);
    xcb_xfixes_select_selection_input(c, m_window, m_clipboard,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(c);
    return !m_x.hasError();
}

void X11SelectionWorker::run() {
    xcb_connection_t* c = m_x.connection();
    // The content already there when the agent starts is read like a new copy.
    if (XcbPtr<xcb_get_selection_owner_reply_t> owner(
            xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, m_clipboard), nullptr));
        owner && owner->owner != XCB_NONE)
        readContent(XCB_CURRENT_TIME);

    while (!m_stop) {
        while (!m_pending.empty() && !m_stop) {
            xcb_generic_event_t* e = m_pending.front();
            m_pending.pop_front();
            handle(e);
            std::free(e);
        }
        while (xcb_generic_event_t* e = xcb_poll_for_event(c)) {
            handle(e);
            std::free(e);
        }
        runCommands();
        if (m_x.hasError()) {
            qCWarning(lcX11) << "The clipboard's X connection was lost: copies are no longer recorded.";
            m_ownsDone = std::numeric_limits<std::uint64_t>::max(); // nothing is waited for any more
            return;
        }
        if (!m_pending.empty())
            continue;
        pollfd fds[] = {{xcb_get_file_descriptor(c), POLLIN, 0}, {m_wakeFd, POLLIN, 0}};
        poll(fds, 2, -1);
        if (fds[1].revents & POLLIN) {
            std::uint64_t n;
            [[maybe_unused]] auto got = read(m_wakeFd, &n, sizeof n);
        }
    }
}

void X11SelectionWorker::runCommands() {
    std::vector<std::vector<PasteboardItem>> commands;
    {
        std::lock_guard lock(m_mutex);
        commands.swap(m_toOwn);
    }
    if (!commands.empty())
        takeSelection(std::move(commands.back()));
    m_ownsDone += commands.size();
}

bool X11SelectionWorker::isOwnerChange(const xcb_generic_event_t* e) const {
    return m_xfixesBase && typeOf(e) == m_xfixesBase + XCB_XFIXES_SELECTION_NOTIFY;
}

void X11SelectionWorker::handle(xcb_generic_event_t* e) {
    if (isOwnerChange(e)) {
        const auto* n = reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(e);
        if (n->owner == m_window)
            return; // our own taking of the clipboard
        m_offer.clear();
        if (n->owner == XCB_NONE) {
            m_callbacks.ownerGone();
            return;
        }
        readContent(n->selection_timestamp);
        return;
    }
    switch (typeOf(e)) {
    case XCB_SELECTION_REQUEST:
        serve(reinterpret_cast<const xcb_selection_request_event_t*>(e));
        break;
    case XCB_SELECTION_CLEAR:
        m_offer.clear();
        break;
    case XCB_PROPERTY_NOTIFY:
        continueTransfer(reinterpret_cast<const xcb_property_notify_event_t*>(e));
        break;
    default:
        break;
    }
}

// ---- reading -------------------------------------------------------------------------------------

void X11SelectionWorker::readContent(xcb_timestamp_t ownedSince) {
    m_ownerChangedWhileReading = false;
    const auto targets = convert(m_x.atom("TARGETS"), ownedSince, kFirstAnswerTimeout);
    if (m_ownerChangedWhileReading)
        return; // a newer copy replaced this one before it could be read; the newer one is read next
    QStringList offered;
    if (targets) {
        std::vector<xcb_atom_t> atoms(targets->size() / sizeof(xcb_atom_t));
        std::memcpy(atoms.data(), targets->constData(), atoms.size() * sizeof(xcb_atom_t));
        offered = atomNames(atoms);
    } else {
        // Some old owners answer no TARGETS but do give text.
        offered = {"UTF8_STRING", "STRING"};
    }
    std::map<QString, QByteArray> read;
    for (const QString& target : ClipboardTargets::wanted(offered)) {
        auto it = m_atoms.find(target);
        const xcb_atom_t atom = it != m_atoms.end() ? it->second : m_x.atom(target.toUtf8().constData());
        if (auto data = convert(atom, ownedSince))
            read[target] = std::move(*data);
        if (m_ownerChangedWhileReading)
            return;
    }
    m_callbacks.contentRead(ClipboardTargets::itemsFrom(read, offered));
}

QStringList X11SelectionWorker::atomNames(const std::vector<xcb_atom_t>& atoms) {
    xcb_connection_t* c = m_x.connection();
    std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
    for (xcb_atom_t a : atoms)
        if (a != XCB_NONE && !m_names.count(a))
            asked.emplace_back(a, xcb_get_atom_name(c, a));
    for (const auto& [atom, cookie] : asked) {
        XcbPtr<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(c, cookie, nullptr));
        if (!reply)
            continue;
        const QString name = QString::fromLatin1(xcb_get_atom_name_name(reply.get()),
                                                 xcb_get_atom_name_name_length(reply.get()));
        m_names[atom] = name;
        m_atoms[name] = atom;
    }
    QStringList names;
    for (xcb_atom_t a : atoms)
        if (auto it = m_names.find(a); it != m_names.end() && !ClipboardTargets::isMeta(it->second))
            names << it->second;
    return names;
}

std::optional<QByteArray> X11SelectionWorker::convert(xcb_atom_t target, xcb_timestamp_t time,
                                                      std::chrono::milliseconds timeout) {
    xcb_connection_t* c = m_x.connection();
    xcb_delete_property(c, m_window, m_property);
    xcb_convert_selection(c, m_window, m_clipboard, target, m_property, time);
    xcb_flush(c);
    const auto deadline = Clock::now() + timeout;
    XcbPtr<xcb_generic_event_t> notify(waitFor(
        [&](xcb_generic_event_t* e) {
            if (typeOf(e) != XCB_SELECTION_NOTIFY)
                return false;
            // The answer to this request only: one to an earlier request whose reader gave up (the
            // owner changed, or it was late) must not be taken for it.
            const auto* n = reinterpret_cast<const xcb_selection_notify_event_t*>(e);
            return n->requestor == m_window && n->selection == m_clipboard && n->target == target &&
                   (time == XCB_CURRENT_TIME || n->time == time);
        },
        deadline));
    if (!notify) {
        if (!m_ownerChangedWhileReading && !m_x.hasError())
            qCWarning(lcX11) << "The clipboard's owner did not answer within" << timeout.count()
                             << "ms; the type is left out:"
                             << (m_names.count(target) ? m_names[target] : QString::number(target));
        return std::nullopt;
    }
    const auto* n = reinterpret_cast<const xcb_selection_notify_event_t*>(notify.get());
    if (n->property == XCB_NONE)
        return std::nullopt; // refused
    XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        c, xcb_get_property(c, 1, m_window, m_property, XCB_GET_PROPERTY_TYPE_ANY, 0, kWholeProperty),
        nullptr));
    if (!reply)
        return std::nullopt;
    if (reply->type == m_x.atom("INCR"))
        return readIncrementally(Clock::now() + kTargetTimeout);
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()) * (reply->format / 8));
}

std::optional<QByteArray> X11SelectionWorker::readIncrementally(Clock::time_point deadline) {
    xcb_connection_t* c = m_x.connection();
    QByteArray data;
    for (;;) {
        XcbPtr<xcb_generic_event_t> piece(waitFor(
            [&](xcb_generic_event_t* e) {
                if (typeOf(e) != XCB_PROPERTY_NOTIFY)
                    return false;
                const auto* p = reinterpret_cast<const xcb_property_notify_event_t*>(e);
                return p->window == m_window && p->atom == m_property && p->state == XCB_PROPERTY_NEW_VALUE;
            },
            deadline));
        if (!piece) {
            if (!m_ownerChangedWhileReading)
                qCWarning(lcX11) << "A large clipboard transfer stopped half-way; the type is left out.";
            return std::nullopt;
        }
        XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            c, xcb_get_property(c, 1, m_window, m_property, XCB_GET_PROPERTY_TYPE_ANY, 0, kWholeProperty),
            nullptr));
        xcb_flush(c);
        if (!reply)
            return std::nullopt;
        const int length = xcb_get_property_value_length(reply.get()) * (reply->format / 8);
        if (length == 0)
            return data;
        if (data.size() + std::size_t(length) > kMaxTransfer) {
            qCWarning(lcX11) << "A clipboard transfer grew beyond" << kMaxTransfer / (1024 * 1024)
                             << "MB; the type is left out.";
            return std::nullopt;
        }
        data.append(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
        deadline = Clock::now() + kTargetTimeout; // each piece has its own time
    }
}

xcb_generic_event_t* X11SelectionWorker::waitFor(const std::function<bool(xcb_generic_event_t*)>& wanted,
                                                 Clock::time_point deadline) {
    xcb_connection_t* c = m_x.connection();
    for (;;) {
        while (xcb_generic_event_t* e = xcb_poll_for_event(c)) {
            if (wanted(e))
                return e;
            if (isOwnerChange(e))
                m_ownerChangedWhileReading = true;
            if (typeOf(e) == XCB_SELECTION_REQUEST)
                serve(reinterpret_cast<const xcb_selection_request_event_t*>(e)), std::free(e);
            else
                m_pending.push_back(e);
            if (m_ownerChangedWhileReading)
                return nullptr;
        }
        if (m_x.hasError() || m_stop)
            return nullptr;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0)
            return nullptr;
        pollfd fd{xcb_get_file_descriptor(c), POLLIN, 0};
        poll(&fd, 1, int(left));
    }
}

// ---- owning and serving --------------------------------------------------------------------------

void X11SelectionWorker::takeSelection(std::vector<PasteboardItem> items) {
    xcb_connection_t* c = m_x.connection();
    m_offer = ClipboardTargets::offer(items);
    if (m_offer.empty())
        return;
    m_ownedSince = serverTime();
    xcb_set_selection_owner(c, m_window, m_clipboard, m_ownedSince);
    XcbPtr<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, m_clipboard), nullptr));
    if (!owner || owner->owner != m_window) {
        qCWarning(lcX11) << "Velmora could not take the clipboard; it stays as it is.";
        m_offer.clear();
    }
}

// The server's time, from a change to one of our own properties: ICCCM wants a real timestamp for
// taking a selection.
xcb_timestamp_t X11SelectionWorker::serverTime() {
    xcb_connection_t* c = m_x.connection();
    const xcb_atom_t stamp = m_x.atom("_VELMORA_TIMESTAMP");
    xcb_change_property(c, XCB_PROP_MODE_APPEND, m_window, stamp, XCB_ATOM_INTEGER, 32, 0, nullptr);
    xcb_flush(c);
    XcbPtr<xcb_generic_event_t> e(waitFor(
        [&](xcb_generic_event_t* e) {
            return typeOf(e) == XCB_PROPERTY_NOTIFY &&
                   reinterpret_cast<const xcb_property_notify_event_t*>(e)->atom == stamp;
        },
        Clock::now() + kTargetTimeout));
    return e ? reinterpret_cast<const xcb_property_notify_event_t*>(e.get())->time : XCB_CURRENT_TIME;
}

void X11SelectionWorker::serve(const xcb_selection_request_event_t* request) {
    // Obsolete requestors name no property: the target's name is used then.
    const xcb_atom_t property = request->property != XCB_NONE ? request->property : request->target;
    const bool ours = request->selection == m_clipboard && !m_offer.empty() &&
                      (request->time == XCB_CURRENT_TIME || request->time >= m_ownedSince);
    const bool answered = ours && answer(request->requestor, request->target, property);
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request->time;
    notify.requestor = request->requestor;
    notify.selection = request->selection;
    notify.target = request->target;
    notify.property = answered ? property : XCB_NONE;
    xcb_send_event(m_x.connection(), 0, request->requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    xcb_flush(m_x.connection());
}

bool X11SelectionWorker::answer(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    xcb_connection_t* c = m_x.connection();
    const QString name = m_names.count(target) ? m_names[target] : atomNames({target}).value(0);
    if (target == m_x.atom("TARGETS")) {
        std::vector<xcb_atom_t> atoms = {m_x.atom("TARGETS"), m_x.atom("TIMESTAMP")};
        for (const auto& [t, data] : m_offer)
            atoms.push_back(m_x.atom(t.toUtf8().constData()));
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                            std::uint32_t(atoms.size()), atoms.data());
        return true;
    }
    if (target == m_x.atom("TIMESTAMP")) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32, 1,
                            &m_ownedSince);
        return true;
    }
    for (const auto& [t, data] : m_offer) {
        if (t != name)
            continue;
        const xcb_atom_t type = t == "TEXT" ? m_x.atom("UTF8_STRING") : target;
        if (std::size_t(data.size()) <= kIncrThreshold) {
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, type, 8, data.size(),
                                data.constData());
            return true;
        }
        // Large values go in pieces: each one written after the requestor deleted the one before.
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(c, requestor, XCB_CW_EVENT_MASK, &mask);
        const std::uint32_t size = std::uint32_t(data.size());
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, m_x.atom("INCR"), 32, 1, &size);
        m_transfers.push_back({requestor, property, type, data, 0, false});
        return true;
    }
    return false;
}

void X11SelectionWorker::continueTransfer(const xcb_property_notify_event_t* event) {
    if (event->state != XCB_PROPERTY_DELETE)
        return;
    for (auto it = m_transfers.begin(); it != m_transfers.end(); ++it) {
        if (it->requestor != event->window || it->property != event->atom)
            continue;
        xcb_connection_t* c = m_x.connection();
        if (it->finished) {
            const std::uint32_t none = XCB_EVENT_MASK_NO_EVENT;
            xcb_change_window_attributes(c, it->requestor, XCB_CW_EVENT_MASK, &none);
            m_transfers.erase(it);
        } else {
            const std::size_t n = std::min(kIncrChunk, std::size_t(it->data.size()) - it->sent);
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, it->requestor, it->property, it->type, 8,
                                std::uint32_t(n), it->data.constData() + it->sent);
            it->sent += n;
            it->finished = n == 0;
        }
        xcb_flush(c);
        return;
    }
}

} // namespace velmora
