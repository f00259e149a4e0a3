#include "app/EventTap.h"

#include "app/LoggingManager.h"
#include "core/MainThread.h"

namespace velmora {

EventTap::EventTap(InputTap& platform, KeyboardShortcutModel& model, LoggingManager& log,
                   std::function<qint64()> now, QObject* parent)
    : QObject(parent), m_platform(platform), m_model(model), m_log(log), m_now(std::move(now)) {
    connect(&m_platform, &InputTap::grabsRefused, this, [this](const std::vector<RefusedChord>& chords) {
        m_refused = chords;
        emit refusedChordsChanged();
    });
}

TapVerdict EventTap::callback(const TapEvent& event) {
    assertMainThread("EventTap::callback");
    m_lastEventTime = m_now();
    if (dragHandler)
        dragHandler(event);
    if (m_silenced)
        return event.isMouse() ? TapVerdict::pass : TapVerdict::swallow;
    return m_model.keyboardStep(event);
}

void EventTap::watchdog() {
    assertMainThread("EventTap::watchdog");
    // A missing or broken tap (a lost X connection) is made at once; a live one that has heard
    // nothing for a while, possibly disabled by the platform, after the quiet period.
    const auto state = m_platform.state();
    const bool exists = state == InputTap::State::active || state == InputTap::State::disabledByTimeout;
    if (exists && m_now() - m_lastEventTime < kQuietMs)
        return;
    create();
}

void EventTap::create() {
    // The platform replaces a tap it has; a healthy one is renewed in place, which is cheap.
    if (!m_platform.create([this](const TapEvent& e) { return callback(e); }))
        VELMORA_LOG(m_log, LogContext::Default, LogLevel::Error, "The input tap could not be created.");
    else if (m_recreations == 0 || m_platform.state() != InputTap::State::active)
        VELMORA_LOG(m_log, LogContext::Default, LogLevel::Info,
                    QString("Input tap %1.").arg(tapStateName(m_platform.state())));
    ++m_recreations;
    m_lastEventTime = m_now();
}

void EventTap::setKeyboardSilenced(bool silenced) {
    m_silenced = silenced;
    m_platform.setKeyboardGrabbed(silenced);
}

void EventTap::invalidate() {
    m_platform.invalidate();
}

void EventTap::setSwallowableChords(const std::vector<KeyboardShortcut>& chords) {
    m_platform.setSwallowableChords(chords);
}

QString tapStateName(InputTap::State state) {
    switch (state) {
    case InputTap::State::none:
        return "none";
    case InputTap::State::active:
        return "active";
    case InputTap::State::disabledByTimeout:
        return "disabledByTimeout";
    case InputTap::State::failed:
        return "failed";
    }
    return "none";
}

} // namespace velmora
