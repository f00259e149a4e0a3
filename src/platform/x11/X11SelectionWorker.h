#pragma once

#include "platform/Pasteboard.h"
#include "platform/x11/X11Connection.h"

#include <QString>
#include <xcb/xcb.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace velmora {

// The CLIPBOARD selection, worked on a private connection and a thread of its own, so that a slow or
// dead owner never holds the main thread. It sees every owner change (XFixes), reads each new owner's
// content at once (TARGETS, then each wanted target, INCR for large ones, a time-out per target) and
// serves the clipboard while Velmora owns it.
class X11SelectionWorker {
public:
    struct Callbacks {
        // A new owner's content was read (empty when it offered nothing readable). Worker thread.
        std::function<void(std::vector<PasteboardItem>)> contentRead;
        // The clipboard has no owner any more (its owner exited or gave it up). Worker thread.
        std::function<void()> ownerGone;
    };

    X11SelectionWorker(X11Connection connection, Callbacks callbacks);
    ~X11SelectionWorker();
    X11SelectionWorker(const X11SelectionWorker&) = delete;
    X11SelectionWorker& operator=(const X11SelectionWorker&) = delete;

    // Velmora becomes the owner and serves these items until another program takes the clipboard.
    // Returns at once; the worker takes the selection on its own thread.
    // Its number in line: the call is done with once ownsDone() reaches it. Main thread.
    std::uint64_t own(std::vector<PasteboardItem> items);
    // How many own() calls are done with (the selection taken, or found not to be takable); all of
    // them once the worker has stopped. Any thread.
    std::uint64_t ownsDone() const { return m_ownsDone; }

    static constexpr std::chrono::milliseconds kTargetTimeout{1000};
    // The first question to a new owner waits longer: a program that copies while it starts up may
    // not serve its clipboard until its start-up is done.
    static constexpr std::chrono::milliseconds kFirstAnswerTimeout{3000};

private:
    using Clock = std::chrono::steady_clock;
    struct Transfer; // one INCR transfer to a requestor

    void run();
    bool setUp();
    void handle(xcb_generic_event_t* event);
    void runCommands();
    void wake();

    // Reading.
    void readContent(xcb_timestamp_t ownedSince);
    std::optional<QByteArray> convert(xcb_atom_t target, xcb_timestamp_t time,
                                      std::chrono::milliseconds timeout = kTargetTimeout);
    std::optional<QByteArray> readIncrementally(Clock::time_point deadline);
    xcb_generic_event_t* waitFor(const std::function<bool(xcb_generic_event_t*)>& wanted,
                                 Clock::time_point deadline);
    bool isOwnerChange(const xcb_generic_event_t* event) const;
    QStringList atomNames(const std::vector<xcb_atom_t>& atoms);

    // Owning and serving.
    void takeSelection(std::vector<PasteboardItem> items);
    xcb_timestamp_t serverTime();
    void serve(const xcb_selection_request_event_t* request);
    bool answer(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void continueTransfer(const xcb_property_notify_event_t* event);

    X11Connection m_x;
    Callbacks m_callbacks;
    xcb_window_t m_window = 0;
    xcb_atom_t m_clipboard = 0;
    xcb_atom_t m_property = 0;
    std::uint8_t m_xfixesBase = 0;
    std::map<QString, xcb_atom_t> m_atoms;
    std::map<xcb_atom_t, QString> m_names;

    std::deque<xcb_generic_event_t*> m_pending;
    bool m_ownerChangedWhileReading = false;

    xcb_timestamp_t m_ownedSince = 0;
    std::vector<std::pair<QString, QByteArray>> m_offer;
    std::vector<Transfer> m_transfers;

    std::mutex m_mutex;
    std::vector<std::vector<PasteboardItem>> m_toOwn;
    std::atomic<bool> m_stop{false};
    std::uint64_t m_ownsAsked = 0;
    std::atomic<std::uint64_t> m_ownsDone{0};
    int m_wakeFd = -1;
    std::thread m_thread;
};

} // namespace velmora
