#pragma once

#include <QObject>

namespace velmora {

// While on, the whole keyboard is silenced so that it can be wiped; the mouse keeps working so the
// user can switch it off again. Every start begins with it off.
class KeyboardCleaningModel : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    bool isOn() const { return m_isOn; }
    void setOn(bool on) {
        if (on == m_isOn)
            return;
        m_isOn = on;
        emit isOnChanged(on);
    }

signals:
    void isOnChanged(bool on);

private:
    bool m_isOn = false;
};

} // namespace velmora
