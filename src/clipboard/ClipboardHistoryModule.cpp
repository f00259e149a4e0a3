#include "clipboard/ClipboardHistoryModule.h"

#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistoryDataModel.h"
#include "clipboard/ClipboardItemJson.h"
#include "clipboard/ClipboardLog.h"
#include "platform/Platform.h"

#include <QUuid>

namespace velmora {

namespace {

constexpr int kDefaultListLimit = 20;

const char* kUnavailable =
    "the clipboard history is not available: its store could not be opened (see the log)";

std::optional<QUuid> idFrom(const QString& text) {
    const QUuid id = QUuid::fromString(text);
    return id.isNull() ? std::nullopt : std::optional(id);
}

// `velmora clipboard get` answers bytes; the client writes them to standard output as they are.
ControlReply bytesReply(const QByteArray& bytes) {
    return ControlReply::success({{"stdoutBase64", bytes.toBase64().toStdString()}});
}

} // namespace

ClipboardHistoryModule::ClipboardHistoryModule(AppContext& context, AppModelContainer* store)
    : m_context(context), m_store(store) {
    Platform& platform = context.platform;
    if (m_store && platform.pasteboard && platform.workspace)
        m_model = std::make_unique<ClipboardHistoryDataModel>(*platform.pasteboard, *platform.workspace,
                                                              platform.fileThumbnails.get(), *m_store,
                                                              context.preferences, context.nowMs);
}

ClipboardHistoryModule::~ClipboardHistoryModule() = default;

void ClipboardHistoryModule::start() {
    if (m_model)
        m_model->start();
    else
        qCWarning(lcClipboard) << "Clipboard history is off for this run:"
                               << (m_store ? "the clipboard cannot be watched here."
                                           : "its store could not be opened.");
}

void ClipboardHistoryModule::registerWith(ModuleRegistry& registry) {
    registry.addCommand({"clipboard", "list [--limit N] | get ID [--type MIME] | delete ID | clear",
                         "the clipboard history: newest first, one entry's bytes, delete one, delete all", 1,
                         4, [this](const QStringList& arguments) { return command(arguments); }});
    registry.addStatus("clipboardHistory", [this] { return status(); });
}

Json ClipboardHistoryModule::status() const {
    Json s = Json::object();
    s["enabled"] = m_context.preferences.local.clipboardHistoryEnabled();
    s["watching"] = m_model != nullptr;
    s["store"] = m_store ? m_store->path().toStdString() : std::string();
    s["items"] = m_store ? m_store->count() : 0;
    s["pending"] = m_model ? m_model->pending() : 0;
    s["changeCount"] = m_model ? m_model->changeCount() : 0;
    s["keepsCopiesOfClosedApps"] = m_context.preferences.local.clipboardKeepsCopiesOfClosedApps();
    return s;
}

ControlReply ClipboardHistoryModule::command(const QStringList& arguments) {
    const QString what = arguments.value(0);
    if (!m_store)
        return ControlReply::failure(kUnavailable);
    const QStringList rest = arguments.mid(1);
    if (what == "list")
        return list(rest);
    if (what == "get")
        return get(rest);
    if (what == "delete")
        return remove(rest);
    if (what == "clear" && rest.isEmpty())
        return clear();
    return ControlReply::failure(
        "clipboard takes list [--limit N], get ID [--type MIME], delete ID or clear");
}

ControlReply ClipboardHistoryModule::list(const QStringList& arguments) {
    int limit = kDefaultListLimit;
    if (!arguments.isEmpty()) {
        bool number = false;
        limit = arguments.value(1).toInt(&number);
        if (arguments.size() != 2 || arguments[0] != "--limit" || !number || limit < 1)
            return ControlReply::failure("clipboard list takes --limit N, with N a whole number from 1 up");
    }
    Json entries = Json::array();
    for (const auto& item : m_store->items(limit))
        entries.push_back(listingJson(item));
    return ControlReply::success(entries);
}

ControlReply ClipboardHistoryModule::get(const QStringList& arguments) {
    const auto id = idFrom(arguments.value(0));
    if (!id)
        return ControlReply::failure(
            "clipboard get needs the ID of an entry (from `velmora clipboard list`)");
    QString type = "text/plain";
    if (arguments.size() > 1) {
        if (arguments.size() != 3 || arguments[1] != "--type")
            return ControlReply::failure(
                "clipboard get takes ID and optionally --type MIME (or --type thumbnail)");
        type = arguments[2];
    }
    if (!m_store->item(*id))
        return ControlReply::failure(QString("there is no clipboard entry %1").arg(arguments[0]));
    const auto bytes = m_store->representation(*id, type);
    if (!bytes)
        return ControlReply::failure(QString("clipboard entry %1 has no %2").arg(arguments[0], type));
    return bytesReply(*bytes);
}

ControlReply ClipboardHistoryModule::remove(const QStringList& arguments) {
    const auto id = idFrom(arguments.value(0));
    if (!id || arguments.size() != 1)
        return ControlReply::failure(
            "clipboard delete needs the ID of an entry (from `velmora clipboard list`)");
    if (!m_store->item(*id))
        return ControlReply::failure(QString("there is no clipboard entry %1").arg(arguments[0]));
    if (!m_store->deleteItem(*id))
        return ControlReply::failure("the entry could not be deleted (see the log)");
    return ControlReply::success({{"deleted", arguments[0].toStdString()}});
}

ControlReply ClipboardHistoryModule::clear() {
    if (!m_store->deleteAll())
        return ControlReply::failure("the history could not be cleared (see the log)");
    return ControlReply::success({{"items", m_store->count()}});
}

} // namespace velmora
