#include "clipboard/ClipboardHistory.h"

#include "clipboard/AppModelContainer.h"
#include "clipboard/ClipboardHistoryDataModel.h"
#include "clipboard/ClipboardLog.h"
#include "clipboard/ClipboardPaster.h"
#include "clipboard/PasteboardItemsOfRecord.h"
#include "core/MainThread.h"
#include "platform/DesktopOpener.h"
#include "platform/Pasteboard.h"

#include <QUrl>

namespace velmora {

namespace {

template <class... F> struct Overloaded : F... { using F::operator()...; };
template <class... F> Overloaded(F...) -> Overloaded<F...>;

} // namespace

ClipboardHistory::ClipboardHistory(AppModelContainer& store, Pasteboard& pasteboard,
                                   ClipboardHistoryDataModel* watcher, ClipboardPaster& paster,
                                   DesktopOpener* opener, QObject* parent)
    : QObject(parent), m_store(store), m_pasteboard(pasteboard), m_watcher(watcher), m_paster(paster),
      m_opener(opener) {}

void ClipboardHistory::close() {
    if (closeWindow)
        closeWindow();
}

void ClipboardHistory::perform(const SimpleClipboardItem& entry, const ClipboardItemAction& action,
                               std::optional<quint32> pasteTarget) {
    assertMainThread("ClipboardHistory::perform");
    std::visit(Overloaded{
                   [&](const clipboardaction::ShowInFinder& a) {
                       if (m_opener)
                           m_opener->revealFiles({QUrl(a.fileURL)});
                       close();
                   },
                   [&](const clipboardaction::OpenURL& a) {
                       if (m_opener)
                           m_opener->openURL(QUrl(a.url));
                   },
                   [&](const clipboardaction::QuickLook&) {
                       if (!quickLook)
                           return;
                       if (const auto whole = m_store.item(entry.id))
                           quickLook(*whole);
                   },
                   [&](const clipboardaction::Paste&) { pasteEntry(entry.id, false, pasteTarget); },
                   [&](const clipboardaction::PastePlainText&) { pasteEntry(entry.id, true, pasteTarget); },
                   [&](const clipboardaction::Delete&) { deleteItem(entry.id); },
               },
               action);
}

void ClipboardHistory::pasteEntry(const QUuid& id, bool plainTextOnly, std::optional<quint32> target) {
    close();
    if (write(id, plainTextOnly))
        m_paster.paste(target);
}

bool ClipboardHistory::write(const QUuid& id, bool plainTextOnly) {
    const auto whole = m_store.item(id);
    if (!whole) {
        qCWarning(lcClipboard).noquote()
            << "Not pasted: the entry" << id.toString(QUuid::WithoutBraces) << "is no longer in the history.";
        return false;
    }
    return writeRecord(*whole, plainTextOnly);
}

bool ClipboardHistory::writeRecord(const SimpleClipboardItem& whole, bool plainTextOnly) {
    // The watcher's next tick sees this change and lets it pass without a new entry.
    if (m_watcher)
        m_watcher->setShouldRecordHistory(false);
    if (!m_pasteboard.write(pasteboardItems(whole, plainTextOnly))) {
        if (m_watcher)
            m_watcher->setShouldRecordHistory(true);
        qCWarning(lcClipboard) << "The entry could not be put on the clipboard.";
        return false;
    }
    return true;
}

void ClipboardHistory::performDirectPastePlainText() {
    const auto newest = m_store.mostRecent();
    if (!newest || !entryText(*newest))
        return;
    close();
    if (writeRecord(*newest, true))
        m_paster.paste(std::nullopt);
}

void ClipboardHistory::deleteItem(const QUuid& id) {
    if (!m_store.item(id))
        return;
    m_store.deleteItem(id);
}

} // namespace velmora
