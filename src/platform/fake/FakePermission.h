#pragma once

#include "platform/Permission.h"

namespace velmora {

class FakePermission final : public Permission {
public:
    PermissionState state{true, {}};
    PermissionState check() override { return state; }
};

} // namespace velmora
