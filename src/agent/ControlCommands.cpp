#include "agent/ControlCommands.h"

#include "Version.h"
#include "agent/AppDelegate.h"
#include "agent/ControlClient.h"
#include "agent/ModelCheck.h"
#include "ui/BriefMessage.h"
#include "ui/PreferencesWindow.h"
#include "ui/ScreenNotice.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QThread>

namespace velmora {

namespace {

Json rectJson(const QRect& r) {
    return Json::array({r.x(), r.y(), r.width(), r.height()});
}

// A window as the user sees it: whether it is open, where, and its buttons (with their places on the
// screen, so that scripts and tests can click them).
Json windowJson(QWidget* w) {
    Json j = Json::object();
    j["open"] = w && w->isVisible();
    if (!w || !w->isVisible())
        return j;
    j["frame"] = rectJson(w->geometry());
    Json buttons = Json::array();
    for (auto* b : w->findChildren<QAbstractButton*>()) {
        if (!b->isVisible() || b->text().isEmpty())
            continue;
        const QRect global(b->mapToGlobal(QPoint(0, 0)), b->size());
        buttons.push_back({{"title", b->text()}, {"checked", b->isChecked()}, {"frame", rectJson(global)}});
    }
    j["buttons"] = buttons;
    // A problem the window shows, such as a change that could not be saved.
    if (auto* problem = w->findChild<QLabel*>("problem"); problem && problem->isVisible())
        j["problem"] = problem->text();
    return j;
}

std::optional<QVariant> localValueFromJson(const Json& j, QMetaType::Type type) {
    if (type == QMetaType::Bool && j.is_boolean())
        return QVariant(j.get<bool>());
    if (type == QMetaType::Double && j.is_number())
        return QVariant(j.get<double>());
    if (type == QMetaType::QString && j.is_string())
        return QVariant(QString::fromStdString(j.get<std::string>()));
    return std::nullopt;
}

// What a local value takes, in the words of the command line.
QString kindOf(QMetaType::Type type) {
    switch (type) {
    case QMetaType::Bool:
        return "true or false";
    case QMetaType::Double:
        return "a number";
    default:
        return "text in quotes";
    }
}

// The tray icon's glyph, as the status names it.
const char* glyphName(const std::optional<StatusGlyph>& glyph) {
    if (!glyph)
        return "normal";
    switch (*glyph) {
    case StatusGlyph::keyboardOff:
        return "keyboardOff";
    case StatusGlyph::sleepPrevented:
        return "sleepPrevented";
    }
    return "normal";
}

Json localValueToJson(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Bool:
        return v.toBool();
    case QMetaType::Double:
        return v.toDouble();
    default:
        return v.toString().toStdString();
    }
}

} // namespace

namespace {

struct HelpLine {
    QString command;
    QString help;
};

const std::vector<HelpLine>& agentCommands() {
    static const std::vector<HelpLine> lines{
        {"(no command)", "start the agent"},
        {"--version", "the version of this program"},
        {"help", "this list"},
        {"status", "version, pid and whether the desktop can be used"},
        {"prefs list", "the preference keys"},
        {"prefs get KEY", "a preference record as JSON"},
        {"prefs set KEY JSON", "replace a preference record (checked first)"},
        {"logs export PATH", "write the kept log entries as JSON"},
        {"panel [show|hide|toggle]", "the drop-down panel"},
        {"preferences [PAGE]", "open the preferences window, e.g. at \"Window Manager\""},
        {"action NAME", "carry out an application action, e.g. centerWindow"},
        {"timeout COMMAND", "how long the command line waits for COMMAND's answer, in milliseconds"},
        {"quit", "stop the agent"},
    };
    return lines;
}

} // namespace

QString ControlCommands::usage(const ModuleRegistry* registry) {
    std::vector<HelpLine> lines = agentCommands();
    if (registry)
        for (const auto& c : registry->commands())
            lines.push_back({(c.name + " " + c.arguments).trimmed(), c.help});
    int width = 0;
    for (const auto& l : lines)
        width = std::max(width, int(l.command.size()));
    QString text = "usage: velmora [COMMAND]\n";
    for (const auto& l : lines)
        text += QString("  %1  %2\n").arg(l.command.leftJustified(width), l.help);
    if (!registry)
        text +=
            "The commands of the window manager and of keyboard cleaning are listed while the agent runs.\n";
    return text;
}

ControlReply ControlCommands::handle(const QStringList& args) {
    const QString command = args.value(0);
    const int n = int(args.size());
    if (command == "help" && n == 1)
        return ControlReply::success(usage(m_app.registry()).toStdString());
    if (command == "status" && n == 1)
        return status();
    if (command == "prefs" && args.value(1) == "list" && n == 2)
        return prefsList();
    if (command == "prefs" && args.value(1) == "get" && n == 3)
        return prefsGet(args[2]);
    if (command == "prefs" && args.value(1) == "set" && n == 4)
        return prefsSet(args[2], args[3]);
    if (command == "logs" && args.value(1) == "export" && n == 3)
        return logsExport(args[2]);
    if (command == "panel" && n <= 2)
        return panel(args.value(1, "toggle"));
    if (command == "preferences" && n <= 2)
        return preferences(args.value(1));
    if (command == "quit" && n == 1)
        return quit();
    if (command == "action" && n == 2)
        return action(args[1]);
    if (command == "timeout" && n == 2)
        return ControlReply::success(clientTimeoutMs(args[1]));
    // For tests and benchmarks: a busy main thread, the cached desktop models against a fresh listing.
    if (command == "debug")
        return debug(args.mid(1));
    if (const auto* registry = m_app.registry())
        if (const auto* c = registry->command(command)) {
            const int given = n - 1;
            if (given < c->minArguments || given > c->maxArguments)
                return ControlReply::failure(
                    QString("usage: velmora %1 %2").arg(c->name, c->arguments).trimmed());
            if (!c->run)
                return ControlReply::failure(
                    QString("velmora %1 answers later; ask it through the command line").arg(c->name));
            return c->run(args.mid(1));
        }
    if (const QString usage = usageOf(args); !usage.isEmpty())
        return ControlReply::failure(usage);
    return ControlReply::failure(QString("unknown command \"%1\"; see velmora --help").arg(args.join(' ')));
}

void ControlCommands::handle(const QStringList& args, std::function<void(ControlReply)> reply) {
    if (const auto* registry = m_app.registry())
        if (const auto* c = registry->command(args.value(0)); c && c->runLater) {
            const int given = int(args.size()) - 1;
            if (given < c->minArguments || given > c->maxArguments)
                reply(ControlReply::failure(
                    QString("usage: velmora %1 %2").arg(c->name, c->arguments).trimmed()));
            else
                c->runLater(args.mid(1), std::move(reply));
            return;
        }
    reply(handle(args));
}

bool ControlCommands::isAgentCommand(const QString& name) {
    const auto& lines = agentCommands();
    return std::any_of(lines.begin(), lines.end(),
                       [&](const HelpLine& line) { return line.command.section(' ', 0, 0) == name; });
}

int ControlCommands::clientTimeoutMs(const QString& name) const {
    if (const auto* registry = m_app.registry())
        if (const auto* c = registry->command(name); c && c->clientTimeoutMs > 0)
            return c->clientTimeoutMs;
    return ControlClient::kDefaultTimeoutMs;
}

// For a known command given the wrong arguments: how it is written.
QString ControlCommands::usageOf(const QStringList& args) {
    QStringList forms;
    for (const auto& line : agentCommands()) {
        const QStringList words = line.command.split(' ');
        if (words.value(0) != args.value(0))
            continue;
        // "prefs get" narrows to its own form; "prefs" alone lists every form of prefs.
        const bool subcommand =
            words.size() > 1 && words[1].toLower() == words[1] && !words[1].startsWith('[');
        if (subcommand && args.size() > 1 && words[1] != args[1])
            continue;
        forms << "velmora " + line.command;
    }
    if (forms.isEmpty())
        return {};
    QString text = "missing or extra arguments; usage: " + forms.join(" | ");
    if (args.value(0) == "action")
        text += "; the actions are: " + allActionNames().join(", ");
    return text;
}

ControlReply ControlCommands::status() {
    Json j = Json::object();
    j["version"] = kVersion;
    j["pid"] = QCoreApplication::applicationPid();
    j["display"] = qEnvironmentVariable("DISPLAY").toStdString();
    const PermissionState permission = m_app.platform().permission->check();
    j["platform"] = {{"usable", permission.trusted}};
    if (!permission.trusted)
        j["platform"]["reason"] = permission.reason;
    const auto rect = [](const Rect& r) { return Json::array({r.x, r.y, r.width, r.height}); };
    j["screens"] = Json::array();
    for (const auto& s : m_app.platform().screens->screens())
        j["screens"].push_back(
            {{"id", s.id}, {"frame", rect(s.frame)}, {"visibleFrame", rect(s.visibleFrame)}});
    j["startup"] = Json::array();
    for (const auto& step : m_app.startupSteps())
        j["startup"].push_back(step);
    if (auto* popover = m_app.menubarPopover(); popover && popover->mainStatusItem()) {
        auto& item = popover->mainStatusItem()->statusItem();
        const QRect geometry = item.geometry();
        const StatusIconLook& look = popover->look();
        j["statusItem"] = {{"visible", item.isVisible()},
                           {"embedded", !geometry.isEmpty()},
                           {"panel", look.darkPanel ? "dark" : "light"},
                           {"state", glyphName(look.state)},
                           {"toolTip", item.toolTip()}};
        if (!geometry.isEmpty())
            j["statusItem"]["geometry"] = rectJson(geometry);
        DynamicStatusItem& gauges = *popover->systemMonitoringItem();
        Json icons = Json::array();
        for (int i = 0; i < gauges.slotCount(); ++i)
            icons.push_back({{"toolTip", gauges.slot(i).toolTip().toStdString()},
                             {"geometry", rectJson(gauges.slot(i).geometry())}});
        j["monitoringItem"] = {{"visible", gauges.slotCount() > 0}, {"icons", icons}};
        j["panel"] = windowJson(popover->windowController().window());
    }
    if (auto* welcome = m_app.welcomeWindowController())
        j["welcomeWindow"] = windowJson(welcome->window());
    j["preferencesWindow"] = windowJson(m_app.preferencesWindow());
    if (const auto* brief = m_app.brief(); brief && brief->isVisible())
        j["brief"] = brief->text();
    j["notices"] = Json::array();
    for (const auto& notice : m_app.notices())
        j["notices"].push_back(windowJson(notice.get()));
    j["indicators"] = Json::array();
    if (const auto* registry = m_app.registry())
        for (const StatusIndicator& indicator : registry->activeIndicators())
            j["indicators"].push_back({{"id", indicator.id},
                                       {"title", indicator.title},
                                       {"glyph", glyphName(indicator.glyph)},
                                       {"notice", indicator.notice}});
    if (const auto* registry = m_app.registry())
        for (const auto& [key, section] : registry->statusSections())
            j[key.toStdString()] = section();
    if (auto* tap = m_app.eventTap()) {
        Json refused = Json::array();
        for (const auto& r : tap->refusedChords())
            refused.push_back({{"shortcut", r.shortcut}, {"reason", r.reason}});
        j["tap"] = {
            {"state", tapStateName(tap->state())},
            {"recreations", tap->recreations()},
            {"refused", refused},
            {"activeAfterMs", m_app.tapActiveAfterMs() ? Json(*m_app.tapActiveAfterMs()) : Json(nullptr)}};
        for (const auto& [key, value] : m_app.platform().inputTap->counters())
            j["tap"][key.toStdString()] = value;
    }
    if (auto* keys = m_app.shortcuts()) {
        j["keyboard"] = {
            {"control", keys->control()},
            {"alt", keys->alt()},
            {"command", keys->command()},
            {"shift", keys->shift()},
            {"keyCode", keys->keyCode() ? Json(*keys->keyCode()) : Json(nullptr)},
            {"repeating", keys->previousBinding() ? Json(keys->previousBinding()->id) : Json(nullptr)}};
    }
    const auto& dispatcher = m_app.dispatcher();
    j["lastAction"] = dispatcher.dispatchCount() == 0 ? Json(nullptr)
                                                      : Json{{"action", dispatcher.lastAction()},
                                                             {"source", dispatcher.lastSource()},
                                                             {"count", dispatcher.dispatchCount()}};
    return ControlReply::success(j);
}

ControlReply ControlCommands::prefsList() {
    auto* prefs = m_app.preferences();
    if (!prefs)
        return ControlReply::failure("preferences are not loaded");
    Json keys = Json::array();
    for (auto* record : prefs->records())
        keys.push_back(record->key());
    for (const auto& key : LocalUserPreferences::keys())
        keys.push_back(key);
    return ControlReply::success(keys);
}

ControlReply ControlCommands::prefsGet(const QString& key) {
    auto* prefs = m_app.preferences();
    if (!prefs)
        return ControlReply::failure("preferences are not loaded");
    if (auto* record = prefs->record(key)) {
        const QByteArray data = record->data();
        if (record->isOptional()) // raw image data
            return ControlReply::success(data.isEmpty() ? Json(nullptr)
                                                        : Json(data.toBase64().toStdString()));
        return ControlReply::success(Json::parse(data.toStdString()));
    }
    if (LocalUserPreferences::keys().contains(key))
        return ControlReply::success(localValueToJson(prefs->local.value(key)));
    return ControlReply::failure(QString("no preference named \"%1\" (see velmora prefs list)").arg(key));
}

ControlReply ControlCommands::prefsSet(const QString& key, const QString& text) {
    auto* prefs = m_app.preferences();
    if (!prefs)
        return ControlReply::failure("preferences are not loaded");
    Json value;
    try {
        value = Json::parse(text.toStdString());
    } catch (const Json::parse_error& e) {
        return ControlReply::failure(
            QString("%1 was not changed: the value is not valid JSON (near character %2)")
                .arg(key)
                .arg(e.byte));
    }
    if (auto* record = prefs->record(key)) {
        QByteArray data;
        if (record->isOptional()) {
            if (!value.is_null() && !value.is_string())
                return ControlReply::failure(
                    key + " was not changed: it takes image data in base64 (text) or null");
            data = value.is_null() ? QByteArray() : QByteArray::fromBase64(value.get<std::string>().c_str());
        } else {
            data = QByteArray::fromStdString(value.dump());
        }
        QString error;
        if (!record->assignData(data, &error))
            return ControlReply::failure(QString("%1 was not changed: %2").arg(key, error));
        return prefsGet(key);
    }
    if (LocalUserPreferences::keys().contains(key)) {
        const auto type = LocalUserPreferences::typeOf(key);
        const auto v = localValueFromJson(value, type);
        if (!v)
            return ControlReply::failure(QString("%1 was not changed: it takes %2").arg(key, kindOf(type)));
        if (key == "LaunchOnStart")
            return launchOnStart(v->toBool());
        if (!m_app.platform().defaults->setValue(key, *v))
            return ControlReply::failure(QString("%1 was not changed: the settings cannot be saved: %2")
                                             .arg(key, m_app.platform().defaults->lastWriteError()));
        return prefsGet(key);
    }
    return ControlReply::failure(QString("no preference named \"%1\" (see velmora prefs list)").arg(key));
}

// The flag follows the login item, as on the General page: it is what runs at the next login.
ControlReply ControlCommands::launchOnStart(bool on) {
    LoginItem& item = *m_app.platform().loginItem;
    const bool result = item.setEnabled(on);
    auto& local = m_app.preferences()->local;
    if (local.launchOnStart() != result)
        local.setLaunchOnStart(result);
    if (result != on)
        return ControlReply::failure(
            QString("LaunchOnStart was not changed: %1")
                .arg(item.lastError().isEmpty() ? "the login item refused" : item.lastError()));
    return prefsGet("LaunchOnStart");
}

ControlReply ControlCommands::logsExport(const QString& path) {
    QString error;
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (!m_app.logging().exportTo(absolute, &error))
        return ControlReply::failure(QString("could not write %1: %2").arg(absolute, error));
    return ControlReply::success({{"path", absolute}, {"entries", m_app.logging().entries().size()}});
}

ControlReply ControlCommands::panel(const QString& how) {
    auto* popover = m_app.menubarPopover();
    if (!popover)
        return ControlReply::failure("the status items are not set up");
    if (how == "show")
        popover->show();
    else if (how == "hide")
        popover->windowController().close();
    else if (how == "toggle")
        popover->toggle();
    else
        return ControlReply::failure("panel takes show, hide or toggle");
    if (how == "show" && !popover->windowController().isShown())
        return ControlReply::failure("the panel cannot drop down: the status icon is not in a tray");
    return ControlReply::success({{"open", popover->windowController().isShown()}});
}

ControlReply ControlCommands::preferences(const QString& page) {
    m_app.openPreferences();
    auto* window = m_app.preferencesWindow();
    if (!page.isEmpty() && window) {
        if (!window->pageTitles().contains(page))
            return ControlReply::failure(QString("no page named \"%1\"; the pages are: %2")
                                             .arg(page, window->pageTitles().join(", ")));
        window->showPage(page);
    }
    return ControlReply::success({{"open", window != nullptr}});
}

ControlReply ControlCommands::action(const QString& name) {
    const auto action = actionFromName(name);
    if (!action)
        return ControlReply::failure(
            QString("no action named \"%1\"; the actions are: %2").arg(name, allActionNames().join(", ")));
    if (std::holds_alternative<action::WindowAreas>(*action))
        return ControlReply::failure("windowAreas needs zones; press a zone shortcut instead");
    if (const auto reason = m_app.dispatcher().unavailableReason(*action))
        return ControlReply::failure(*reason);
    m_app.dispatcher().dispatch(*action, "command line");
    return ControlReply::success({{"dispatched", name}});
}

ControlReply ControlCommands::debug(const QStringList& args) {
    if (args.value(0) == "block-main-thread" && args.size() == 2) {
        bool ok = false;
        const int ms = args[1].toInt(&ok);
        if (!ok || ms < 0 || ms > 10000)
            return ControlReply::failure("block-main-thread takes 0 to 10000 milliseconds");
        QThread::msleep(ms);
        return ControlReply::success({{"blocked", ms}});
    }
    if (args.value(0) == "models" && args.size() == 1)
        return ControlReply::success(modelCheck(m_app.platform()));
    return ControlReply::failure("debug takes block-main-thread MS or models");
}

ControlReply ControlCommands::quit() {
    m_app.quit();
    return ControlReply::success({{"quitting", true}});
}

} // namespace velmora
