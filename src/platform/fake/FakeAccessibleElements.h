#pragma once

#include "platform/AccessibleElements.h"

#include <condition_variable>
#include <map>
#include <mutex>

namespace velmora {

// Accessibility trees by hand: what each window yields for a role, and what was pressed.
class FakeAccessibleElements final : public AccessibleElements {
public:
    std::vector<AccessibleElement> query(const AccessibleWindow& window,
                                         const AXElementQuery& query) override {
        std::lock_guard lock(mutex);
        queries.push_back(query.selector.role);
        if (query.kind == AXElementQuery::Kind::discard)
            return {};
        const auto found = elements.find({window.id, query.selector.role});
        return found == elements.end() ? std::vector<AccessibleElement>{} : found->second;
    }
    bool press(const AccessibleElement& element) override {
        std::lock_guard lock(mutex);
        pressed.push_back(element);
        return true;
    }

    // Sets or ends the hang, waking a query that waits.
    void hang(bool on) {
        {
            std::lock_guard lock(mutex);
            hanging = on;
        }
        answered.notify_all();
    }

    std::mutex mutex;
    std::condition_variable answered;
    bool hanging = false;
    std::map<std::pair<quint32, QString>, std::vector<AccessibleElement>> elements; // (window, role)
    std::vector<QString> queries; // the roles asked, in turn
    std::vector<AccessibleElement> pressed;
};

} // namespace velmora
