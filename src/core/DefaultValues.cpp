#include "core/DefaultValues.h"

namespace velmora {

namespace {

// Screen kinds a zone is offered on.
enum Kinds : unsigned {
    Laptop = 1,
    Wide = 2,
    Ultrawide = 4,
    SuperUltrawide = 8,
    Vertical = 16,
    Landscape = Laptop | Wide | Ultrawide | SuperUltrawide,
    Everywhere = Landscape | Vertical,
};

WindowArea zone(const char* name, const char* x, const char* y, const char* w, const char* h, unsigned kinds,
                std::optional<KeyboardShortcut> shortcut) {
    WindowArea a;
    a.id = QUuid::createUuid();
    a.name = QString::fromUtf8(name);
    a.x = QString::fromLatin1(x);
    a.y = QString::fromLatin1(y);
    a.w = QString::fromLatin1(w);
    a.h = QString::fromLatin1(h);
    a.availableOnMacbookScreen = kinds & Laptop;
    a.availableOnWideScreen = kinds & Wide;
    a.availableOnUltrawideScreen = kinds & Ultrawide;
    a.availableOnSuperUltrawideScreen = kinds & SuperUltrawide;
    a.availableOnVerticalScreen = kinds & Vertical;
    a.keyboardShortcut = shortcut;
    return a;
}

constexpr KeyboardShortcut controlAlt(quint16 keyCode) {
    return chord(Modifier::Control | Modifier::Alt, keyCode);
}

} // namespace

std::vector<WindowArea> factoryZones() {
    // Up (126) is shared: the whole area everywhere, and on portrait screens also the top half, so that
    // pressing it again there cycles between the two.
    return {
        zone("Custom", "0", "0", "1", "1", Everywhere, controlAlt(126)),
        zone("Left Half", "0", "0", "1/2", "1", Landscape, controlAlt(123)),
        zone("Right Half", "1/2", "0", "1/2", "1", Landscape, controlAlt(124)),
        zone("Top Half", "0", "0", "1", "1/2", Vertical, controlAlt(126)),
        zone("Bottom Half", "0", "1/2", "1", "1/2", Vertical, controlAlt(125)),
        zone("Top Left", "0", "0", "1/2", "1/2", Everywhere, controlAlt(32)),
        zone("Top Right", "1/2", "0", "1/2", "1/2", Everywhere, controlAlt(34)),
        zone("Bottom Left", "0", "1/2", "1/2", "1/2", Everywhere, controlAlt(38)),
        zone("Bottom Right", "1/2", "1/2", "1/2", "1/2", Everywhere, controlAlt(40)),
    };
}

std::vector<WindowArea> zoneTemplates() {
    std::vector<WindowArea> templates = factoryZones();
    templates.push_back(zone("Left Third", "0", "0", "1/3", "1", Landscape, std::nullopt));
    templates.push_back(zone("Left Two Thirds", "0", "0", "2/3", "1", Landscape, std::nullopt));
    templates.push_back(zone("Middle Third", "1/3", "0", "1/3", "1", Landscape, std::nullopt));
    templates.push_back(zone("Right Third", "2/3", "0", "1/3", "1", Landscape, std::nullopt));
    templates.push_back(zone("Right Two Thirds", "1/3", "0", "2/3", "1", Landscape, std::nullopt));
    return templates;
}

} // namespace velmora
