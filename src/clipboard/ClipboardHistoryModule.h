#pragma once

#include "app/AppContext.h"
#include "app/Module.h"

#include <memory>

namespace velmora {

class AppModelContainer;
class ClipboardHistoryDataModel;

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

private:
    ControlReply command(const QStringList& arguments);
    ControlReply list(const QStringList& arguments);
    ControlReply get(const QStringList& arguments);
    ControlReply remove(const QStringList& arguments);
    ControlReply clear();
    Json status() const;

    AppContext& m_context;
    AppModelContainer* m_store;
    std::unique_ptr<ClipboardHistoryDataModel> m_model;
};

} // namespace velmora
