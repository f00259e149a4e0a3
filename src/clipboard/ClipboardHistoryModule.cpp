#include "clipboard/ClipboardHistoryModule.h"

#include "app/BindingsProvider.h"
#include "app/ModuleRegistry.h"
#include "app/UserPreferences.h"
#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardHistoryDataModel.h"
#include "clipboard/ClipboardItemJson.h"
#include "clipboard/ClipboardLog.h"
#include "clipboard/ClipboardPaster.h"
#include "clipboard/ClipboardSearchModel.h"
#include "platform/Platform.h"

#include <QGuiApplication>
#include <QUuid>
#include <QWindow>

namespace velmora {

namespace {

constexpr int kDefaultListLimit = 20;
constexpr int kMaxSearchResults = 100;

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
    if (m_store)
        m_search = std::make_unique<ClipboardSearchModel>(*m_store);
    if (m_store && platform.pasteboard && platform.workspace && platform.inputTap) {
        // Qt lets go of a hidden window's focus only ~100 ms later (it waits for the focus to land
        // on another of its windows), so a window that is no longer shown no longer counts.
        m_paster = std::make_unique<ClipboardPaster>(*platform.inputTap, *platform.workspace, [] {
            const QWindow* focused = QGuiApplication::focusWindow();
            return focused && focused->isVisible();
        });
        m_paster->clipboardPending = [pasteboard = platform.pasteboard.get()] {
            return pasteboard->isWritePending();
        };
        m_actions = std::make_unique<ClipboardHistory>(*m_store, *platform.pasteboard, m_model.get(),
                                                       *m_paster, platform.opener.get());
    }
}

ClipboardHistoryModule::~ClipboardHistoryModule() = default;

void ClipboardHistoryModule::start() {
    if (m_search)
        m_search->start();
    if (m_model)
        m_model->start();
    else
        qCWarning(lcClipboard) << "Clipboard history is off for this run:"
                               << (m_store ? "the clipboard cannot be watched here."
                                           : "its store could not be opened.");
}

QString ClipboardHistoryModule::unavailableReason() const {
    if (!m_store)
        return kUnavailable;
    if (!m_actions)
        return "the clipboard history cannot reach the clipboard on this desktop";
    if (!m_context.preferences.local.clipboardHistoryEnabled())
        return "the clipboard history is switched off (Preferences, Clipboard History)";
    return {};
}

void ClipboardHistoryModule::registerWith(ModuleRegistry& registry) {
    registry.addCommand(
        {"clipboard",
         "list [--limit N] | search TEXT | get ID [--type MIME] | copy ID [--plain] | paste ID [--plain] | "
         "delete ID | clear",
         "the clipboard history: newest first, entries holding TEXT, one entry's bytes, put one back on the "
         "clipboard (and paste it into the window in front), delete one, delete all",
         1, 8, [this](const QStringList& arguments) { return command(arguments); }});
    registry.addStatus("clipboardHistory", [this] { return status(); });
    registry.actions().setHandler<action::PerformDirectPastePlainText>(
        [this](const action::PerformDirectPastePlainText&) { m_actions->performDirectPastePlainText(); },
        [this] { return unavailableReason(); });
    auto& prefs = m_context.preferences;
    using A = KeyboardAppAction;
    registry.addProvider(ActionProviders::Slot::clipboardHistory,
                         std::make_unique<BindingsProvider>(
                             [&prefs]() -> const KeyboardBindings& { return prefs.keyboardBindings.value(); },
                             registry.actions(),
                             std::vector<BindingsProvider::Entry>{
                                 {A::clipboardOpenWindow, action::OpenClipboardHistory{}},
                                 {A::clipboardDirectPastePlainText, action::PerformDirectPastePlainText{}}}));
    registry.addShortcutRows({A::clipboardOpenWindow, A::clipboardDirectPastePlainText, A::clipboardPrevious,
                              A::clipboardNext, A::clipboardSelect, A::clipboardPasteOriginal,
                              A::clipboardPastePlainText, A::clipboardShowInFinder, A::clipboardQuickLook,
                              A::clipboardDelete, A::clipboardOpenURL, A::clipboardSearch});
}

Json ClipboardHistoryModule::status() const {
    Json s = Json::object();
    s["enabled"] = m_context.preferences.local.clipboardHistoryEnabled();
    s["watching"] = m_model != nullptr;
    s["store"] = m_store ? m_store->path().toStdString() : std::string();
    s["items"] = m_store ? m_store->count() : 0;
    s["pending"] = m_model ? m_model->pending() : 0;
    s["changeCount"] = m_model ? m_model->changeCount() : 0;
    s["searchReady"] = m_search && m_search->isReady();
    s["indexed"] = m_search ? m_search->indexedCount() : 0;
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
    if (what == "search")
        return find(rest);
    if (what == "copy" || what == "paste")
        return putBack(rest, what == "paste");
    return ControlReply::failure("clipboard takes list [--limit N], search TEXT, get ID [--type MIME], "
                                 "copy ID [--plain], paste ID [--plain], delete ID or clear");
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

ControlReply ClipboardHistoryModule::find(const QStringList& arguments) {
    const QString text = arguments.join(' ');
    if (text.isEmpty())
        return ControlReply::failure("clipboard search needs the text to look for");
    if (!m_search->isReady())
        return ControlReply::failure(
            "the clipboard history is still being read for searching; try again in a moment");
    auto ids = m_search->find(text);
    // Like list: the newest matches; a search for "e" should not print the whole history.
    if (ids.size() > std::size_t(kMaxSearchResults))
        ids.resize(kMaxSearchResults);
    Json entries = Json::array();
    for (const auto& item : m_store->itemsWithIds(ids))
        entries.push_back(listingJson(item));
    return ControlReply::success(entries);
}

ControlReply ClipboardHistoryModule::putBack(const QStringList& arguments, bool paste) {
    const QString verb = paste ? "paste" : "copy";
    const auto id = idFrom(arguments.value(0));
    const bool plain = arguments.size() == 2 && arguments[1] == "--plain";
    if (!id || (arguments.size() != 1 && !plain))
        return ControlReply::failure(QString("clipboard %1 needs the ID of an entry (from `velmora clipboard "
                                             "list`), then optionally --plain")
                                         .arg(verb));
    if (const QString reason = unavailableReason(); !reason.isEmpty())
        return ControlReply::failure(reason);
    if (!m_store->item(*id))
        return ControlReply::failure(QString("there is no clipboard entry %1").arg(arguments[0]));
    if (!m_actions->write(*id, plain))
        return ControlReply::failure("the entry could not be put on the clipboard (see the log)");
    Json reply = {{"onClipboard", arguments[0].toStdString()}, {"plainText", plain}};
    if (paste) {
        // Typed into whichever window has the keyboard once the agent's own windows let go of it.
        m_paster->paste(std::nullopt);
        reply["paste"] = "typed into the window that has the keyboard focus";
    }
    return ControlReply::success(reply);
}

ControlReply ClipboardHistoryModule::clear() {
    if (!m_store->deleteAll())
        return ControlReply::failure("the history could not be cleared (see the log)");
    return ControlReply::success({{"items", m_store->count()}});
}

} // namespace velmora
