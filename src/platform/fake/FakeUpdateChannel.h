#pragma once

#include "platform/UpdateChannel.h"

#include <vector>

namespace velmora {

// An update server in memory: it records each request and answers with the response a test set, at
// once or, with holdAnswers, when the test calls answer().
class FakeUpdateChannel final : public UpdateChannel {
public:
    UpdateResponse response{QByteArray(R"({"url": ""})"), {}};
    bool holdAnswers = false;
    std::vector<UpdateRequest> requests;
    std::optional<QString> folder;
    bool refuseHandOver = false;
    std::vector<UpdateHandOver> handOvers;

    void get(const UpdateRequest& request, std::function<void(UpdateResponse)> done) override {
        requests.push_back(request);
        if (holdAnswers)
            m_pending.push_back(std::move(done));
        else
            done(response);
    }
    // Answers the requests held so far with the current response.
    void answer() {
        auto pending = std::move(m_pending);
        m_pending.clear();
        for (auto& done : pending)
            done(response);
    }
    std::optional<QString> installationFolder() const override { return folder; }
    bool handOver(const UpdateHandOver& h, QString* error) override {
        if (refuseHandOver) {
            if (error)
                *error = "the updater is missing";
            return false;
        }
        handOvers.push_back(h);
        return true;
    }

private:
    std::vector<std::function<void(UpdateResponse)>> m_pending;
};

} // namespace velmora
