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
    void setValue(const QString& key, const QVariant& value) override {
        m_values.insert(key, value);
        ++m_writes;
        emit valueChanged(key);
    }
    void remove(const QString& key) override {
        if (m_values.remove(key) > 0)
            emit valueChanged(key);
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
