#pragma once

#include "platform/Defaults.h"

#include <QHash>

namespace velmora {

// An in-memory defaults database. simulateOutsideChange() plays another process writing an entry.
class FakeDefaults final : public Defaults {
    Q_OBJECT
public:
    using Defaults::Defaults;

    std::optional<QVariant> value(const QString& key) const override {
        auto it = m_values.constFind(key);
        return it == m_values.constEnd() ? std::nullopt : std::optional<QVariant>(*it);
    }
    // Set to play a settings file that cannot be written.
    bool failWrites = false;

    bool setValue(const QString& key, const QVariant& value) override {
        if (failWrites)
            return false;
        m_values.insert(key, value);
        ++m_writes;
        emit valueChanged(key);
        return true;
    }
    bool remove(const QString& key) override {
        if (failWrites)
            return false;
        if (m_values.remove(key) > 0)
            emit valueChanged(key);
        return true;
    }
    QString lastWriteError() const override {
        return failWrites ? "the settings file is read-only" : QString();
    }
    void simulateOutsideChange(const QString& key, const QVariant& value) {
        m_values.insert(key, value);
        emit valueChanged(key);
    }
    int writes() const { return m_writes; }

private:
    QHash<QString, QVariant> m_values;
    int m_writes = 0;
};

} // namespace velmora
