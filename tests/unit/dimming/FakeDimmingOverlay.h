#pragma once

#include "dimming/DimmingOverlay.h"
#include "dimming/MonitorDimmingModel.h"

#include <QObject>
#include <vector>

namespace velmora {

// An overlay without a window: it records what was asked of it, and follows the model as the real
// one does (shown while the factor is below 1.0).
struct FakeDimmingOverlay final : DimmingOverlay {
    struct Log {
        int made = 0;
        int dismissed = 0;
        int broughtToFront = 0;
        std::vector<Rect> frames; // of every overlay made, in order
    };

    FakeDimmingOverlay(MonitorDimmingModel& model, const Rect& frame, Log& log)
        : model(model), frame(frame), log(log) {
        ++log.made;
        log.frames.push_back(frame);
    }
    Rect coveredFrame() const override { return frame; }
    bool isShown() const override { return !dismissed && model.brightnessFactor() < 1.0; }
    void bringToFront() override { ++log.broughtToFront; }
    void dismiss() override {
        dismissed = true;
        ++log.dismissed;
    }

    static DimmingOverlayFactory factory(Log& log) {
        return [&log](MonitorDimmingModel& model, const Rect& frame) -> std::unique_ptr<DimmingOverlay> {
            return std::make_unique<FakeDimmingOverlay>(model, frame, log);
        };
    }

    MonitorDimmingModel& model;
    Rect frame;
    Log& log;
    bool dismissed = false;
};

} // namespace velmora
