#pragma once

#include "clipboard/ClipboardItemAction.h"
#include "clipboard/SimpleClipboardItem.h"

#include <QObject>
#include <functional>
#include <optional>

namespace velmora {

class AppModelContainer;
class ClipboardHistoryDataModel;
class ClipboardPaster;
class DesktopOpener;
class Pasteboard;

// The actions on history entries: put one back on the clipboard and paste it, delete, show its file,
// open its address, preview it. Main thread; each action returns at once (the paste itself waits for
// the focus without blocking).
class ClipboardHistory : public QObject {
    Q_OBJECT
public:
    ClipboardHistory(AppModelContainer& store, Pasteboard& pasteboard, ClipboardHistoryDataModel* watcher,
                     ClipboardPaster& paster, DesktopOpener* opener, QObject* parent = nullptr);

    // Set by the history window: close it, and show or hide the preview of an entry.
    std::function<void()> closeWindow;
    std::function<void(const SimpleClipboardItem&)> quickLook;

    // `entry` as the list shows it (its id is what counts); paste and preview read it whole.
    // pasteTarget: the window to paste into, the one in front before the history window opened.
    void perform(const SimpleClipboardItem& entry, const ClipboardItemAction& action,
                 std::optional<quint32> pasteTarget = std::nullopt);
    // Puts the entry on the clipboard without recording it again. False when it is gone from the store.
    bool write(const QUuid& id, bool plainTextOnly);
    // Pastes the newest entry's text into the window in front; nothing when there is none.
    void performDirectPastePlainText();
    // Deletes the entry; nothing when it is already gone.
    void deleteItem(const QUuid& id);

private:
    bool writeRecord(const SimpleClipboardItem& whole, bool plainTextOnly);
    void pasteEntry(const QUuid& id, bool plainTextOnly, std::optional<quint32> target);
    void close();

    AppModelContainer& m_store;
    Pasteboard& m_pasteboard;
    ClipboardHistoryDataModel* m_watcher;
    ClipboardPaster& m_paster;
    DesktopOpener* m_opener;
};

} // namespace velmora
