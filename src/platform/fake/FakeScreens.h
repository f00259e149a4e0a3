#pragma once

#include "platform/Screens.h"

namespace velmora {

class FakeScreens final : public Screens {
public:
    std::vector<ScreenInfo> all;
    int mainIndex = 0;

    std::optional<Point> pointer;
    bool compositing = true;

    std::vector<ScreenInfo> screens() const override { return all; }
    std::optional<Point> pointerLocation() const override { return pointer; }
    bool isCompositing() const override { return compositing; }
    std::optional<ScreenInfo> mainScreen() const override {
        if (mainIndex < 0 || mainIndex >= int(all.size()))
            return std::nullopt;
        return all[mainIndex];
    }
};

} // namespace velmora
