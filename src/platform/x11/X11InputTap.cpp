#include "platform/x11/X11InputTap.h"

#include "platform/x11/X11TapWorker.h"

#include <QMetaObject>
#include <chrono>
#include <future>

namespace velmora {

X11InputTap::X11InputTap(X11RequestProbe probe) : m_probe(std::move(probe)) {}

X11InputTap::~X11InputTap() {
    invalidate();
}

bool X11InputTap::create(Callback callback) {
    // A live tap is renewed in place: no new connection, thread or grabs unless it was disabled.
    if (m_worker && m_worker->state() != State::failed) {
        m_callback = std::move(callback);
        m_worker->renew();
        return true;
    }
    invalidate();
    m_callback = std::move(callback);
    X11TapWorker::Delegate delegate;
    delegate.deliver = [this](const TapEvent& e, bool want) { return deliver(e, want); };
    delegate.refused = [this](std::vector<RefusedChord> refused) {
        QMetaObject::invokeMethod(
            this, [this, refused] { emit grabsRefused(refused); }, Qt::QueuedConnection);
    };
    m_worker = std::make_unique<X11TapWorker>(qgetenv("DISPLAY"), std::move(delegate));
    QString error;
    m_failed = !m_worker->start(&error);
    if (m_failed) {
        m_worker.reset();
        emit stateChanged();
        return false;
    }
    m_worker->setChords(m_chords);
    m_worker->setKeyboardGrabbed(m_keyboardGrabbed);
    emit stateChanged();
    return true;
}

void X11InputTap::invalidate() {
    if (!m_worker)
        return;
    m_worker.reset(); // joins the thread; the server drops its grabs with the connection
    m_callback = nullptr;
    emit stateChanged();
}

InputTap::State X11InputTap::state() const {
    if (m_worker)
        return m_worker->state();
    return m_failed ? State::failed : State::none;
}

void X11InputTap::setSwallowableChords(const std::vector<KeyboardShortcut>& chords) {
    m_chords = chords;
    if (m_worker)
        m_worker->setChords(chords);
}

void X11InputTap::setKeyboardGrabbed(bool grabbed) {
    m_keyboardGrabbed = grabbed;
    if (m_worker)
        m_worker->setKeyboardGrabbed(grabbed);
}

bool X11InputTap::postKeyChord(const KeyboardShortcut& chord) {
    if (!m_worker)
        return false;
    m_worker->postChord(chord);
    return true;
}

std::vector<std::pair<QString, qint64>> X11InputTap::counters() const {
    return {{"verdicts", m_verdicts}, {"xRequestsDuringVerdicts", m_requestsDuringVerdicts}};
}

// Runs on the worker thread.
std::optional<TapVerdict> X11InputTap::deliver(const TapEvent& event, bool wantVerdict) {
    const bool motion =
        event.type == TapEventType::MouseMoved || event.type == TapEventType::LeftMouseDragged;
    if (motion && m_motionQueued->exchange(true))
        return std::nullopt;
    if (!wantVerdict) {
        auto queued = m_motionQueued;
        QMetaObject::invokeMethod(
            this,
            [this, event, motion, queued] {
                if (motion)
                    queued->store(false);
                if (m_callback)
                    m_callback(event);
            },
            Qt::QueuedConnection);
        return std::nullopt;
    }
    // Whoever claims the request first decides: the main thread by starting the callback, or the
    // worker by giving up at the timeout. A key that was let through must not fire its action later.
    struct Request {
        std::promise<TapVerdict> verdict;
        std::atomic<bool> claimed{false};
    };
    auto request = std::make_shared<Request>();
    auto answer = request->verdict.get_future();
    QMetaObject::invokeMethod(
        this,
        [this, event, request] {
            if (request->claimed.exchange(true))
                return;
            const auto before = m_probe.mark();
            const auto verdict = m_callback ? m_callback(event) : TapVerdict::pass;
            m_requestsDuringVerdicts += qint64(m_probe.between(before, m_probe.mark()));
            ++m_verdicts;
            request->verdict.set_value(verdict);
        },
        Qt::QueuedConnection);
    if (answer.wait_for(std::chrono::milliseconds(X11TapWorker::kVerdictTimeoutMs)) ==
        std::future_status::ready)
        return answer.get();
    if (!request->claimed.exchange(true))
        return std::nullopt;
    return answer.get(); // the callback is running right now
}

} // namespace velmora
