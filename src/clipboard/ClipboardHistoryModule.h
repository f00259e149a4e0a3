#pragma once

#include "app/AppContext.h"
#include "app/Module.h"

#include <memory>

namespace velmora {

class AppModelContainer;
class ClipboardHistory;
class ClipboardHistoryDataModel;
class ClipboardPaster;
class ClipboardSearchModel;

// The clipboard history: every copy recorded with where it came from, kept in the store, and the
// `velmora clipboard` commands. Runs without history (and says so) when the store could not be opened.
class ClipboardHistoryModule final : public Module {
public:
    ClipboardHistoryModule(AppContext& context, AppModelContainer* store);
    ~ClipboardHistoryModule() override;

    QString name() const override { return "clipboardHistory"; }
    void registerWith(ModuleRegistry& registry) override;
    void start() override;

    AppModelContainer* store() { return m_store; }
    ClipboardHistoryDataModel* model() { return m_model.get(); }
    // The actions on entries; null without a store or a clipboard.
    ClipboardHistory* actions() { return m_actions.get(); }
    // The search over the whole history; null without a store.
    ClipboardSearchModel* search() { return m_search.get(); }
    // Why the history cannot be shown or pasted from now; empty when it can.
    QString unavailableReason() const;

private:
    ControlReply command(const QStringList& arguments);
    ControlReply list(const QStringList& arguments);
    ControlReply get(const QStringList& arguments);
    ControlReply remove(const QStringList& arguments);
    ControlReply clear();
    ControlReply putBack(const QStringList& arguments, bool paste);
    ControlReply find(const QStringList& arguments);
    Json status() const;

    AppContext& m_context;
    AppModelContainer* m_store;
    std::unique_ptr<ClipboardHistoryDataModel> m_model;
    std::unique_ptr<ClipboardPaster> m_paster;
    std::unique_ptr<ClipboardHistory> m_actions;
    std::unique_ptr<ClipboardSearchModel> m_search;
};

} // namespace velmora
