#include "clipboard/KeyboardCleaningModule.h"

#include "app/EventTap.h"
#include "app/ModuleRegistry.h"
#include "clipboard/KeyboardCleaningLog.h"

#include <QAbstractButton>

namespace velmora {

KeyboardCleaningModule::KeyboardCleaningModule(AppContext& context) : m_context(context) {
    QObject::connect(&m_model, &KeyboardCleaningModel::isOnChanged, &context.eventTap, [this](bool on) {
        m_context.eventTap.setKeyboardSilenced(on);
        qCInfo(lcKeyboardCleaning) << (on ? "Keyboard cleaning started." : "Keyboard cleaning ended.");
    });
}

void KeyboardCleaningModule::registerWith(ModuleRegistry& registry) {
    registry.addPanelRows([this](PanelRows& rows) {
        auto* toggle =
            rows.addToggle("Keyboard Cleaning", m_model.isOn(), [this](bool on) { m_model.setOn(on); });
        QObject::connect(&m_model, &KeyboardCleaningModel::isOnChanged, toggle, &QAbstractButton::setChecked);
    });
    registry.addCommand({"keyboard-cleaning", "on|off",
                         "silence the whole keyboard (the mouse keeps working)", 1, 1,
                         [this](const QStringList& arguments) { return command(arguments); }});
    registry.addStatus("keyboardCleaning", [this] { return Json(m_model.isOn()); });
    registry.addIndicator({"keyboardCleaning", "Keyboard cleaning is on",
                           "Every key is ignored, so you can wipe the keyboard. The mouse still works.",
                           "End Keyboard Cleaning", [this] { m_model.setOn(false); },
                           StatusGlyph::keyboardOff});
    QObject::connect(&m_model, &KeyboardCleaningModel::isOnChanged, &registry,
                     [&registry](bool on) { registry.setIndicatorActive("keyboardCleaning", on); });
}

ControlReply KeyboardCleaningModule::command(const QStringList& arguments) {
    const QString how = arguments.value(0);
    if (how != "on" && how != "off")
        return ControlReply::failure("keyboard-cleaning takes on or off");
    m_model.setOn(how == "on");
    return ControlReply::success({{"keyboardCleaning", m_model.isOn()}});
}

} // namespace velmora
