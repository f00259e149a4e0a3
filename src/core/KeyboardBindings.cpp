#include "core/KeyboardBindings.h"

#include <array>

namespace velmora {

namespace {

using Field = KeyboardBindings::Binding KeyboardBindings::*;
using B = KeyboardBindings;

// Indexed by KeyboardAppAction; the JSON keys follow this order too.
constexpr std::array<Field, keyboardAppActionCount> kFields{
    &B::windowManagerCenterWindow,
    &B::makeWindow16By9,
    &B::clipboardOpenWindow,
    &B::clipboardPrevious,
    &B::clipboardNext,
    &B::clipboardSelect,
    &B::clipboardPasteOriginal,
    &B::clipboardPastePlainText,
    &B::clipboardDirectPastePlainText,
    &B::clipboardShowInFinder,
    &B::clipboardQuickLook,
    &B::clipboardDelete,
    &B::clipboardOpenURL,
    &B::clipboardSearch,
    &B::toggleMonitorDimming,
    &B::openSystemMonitoringDashboard,
    &B::proposeAutoLayout,
    &B::autoLayoutPrevious,
    &B::autoLayoutNext,
    &B::autoLayoutChooseCandidate,
    &B::switchWindow,
    &B::switchWindowPrevious,
    &B::moveWindowToScreen,
    &B::matchSnappedWindowFrame,
    &B::autoLayoutExpandTabs,
    &B::autoLayoutCollapseTabs,
    &B::windowSwitcherSearch,
};

} // namespace

KeyboardBindings::Binding& KeyboardBindings::shortcut(KeyboardAppAction action) {
    return this->*kFields[std::size_t(action)];
}

const KeyboardBindings::Binding& KeyboardBindings::shortcut(KeyboardAppAction action) const {
    return this->*kFields[std::size_t(action)];
}

void to_json(Json& j, const KeyboardBindings& b) {
    j = Json::object();
    for (KeyboardAppAction action : allKeyboardAppActions())
        putOptionalMember(j, rawName(action).toLatin1().constData(), b.shortcut(action));
}

void from_json(const Json& j, KeyboardBindings& b) {
    if (!j.is_object())
        throw DecodeError("keyboard bindings: expected an object, got " + j.dump());
    for (KeyboardAppAction action : allKeyboardAppActions())
        b.shortcut(action) = optionalMember<KeyboardShortcut>(j, rawName(action).toLatin1().constData());
}

} // namespace velmora
