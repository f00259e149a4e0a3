#pragma once

#include "core/JsonCodec.h"

#include <QStringList>

namespace velmora {

class AppDelegate;

struct ControlReply {
    bool ok = true;
    Json result;
    QString error;

    static ControlReply success(Json result) { return {true, std::move(result), {}}; }
    static ControlReply failure(QString error) { return {false, nullptr, std::move(error)}; }
};

// What the command line can ask of the running agent. Each command answers with JSON, or with a
// one-line reason and no change.
class ControlCommands {
public:
    explicit ControlCommands(AppDelegate& app) : m_app(app) {}

    ControlReply handle(const QStringList& args);

    static QString usage();

private:
    ControlReply status();
    ControlReply prefsGet(const QString& key);
    ControlReply prefsSet(const QString& key, const QString& text);
    ControlReply prefsList();
    ControlReply logsExport(const QString& path);
    ControlReply panel(const QString& how);
    ControlReply preferences();
    ControlReply quit();
    ControlReply windows();
    ControlReply keyboardCleaning(const QString& how);
    ControlReply action(const QString& name);
    ControlReply blockMainThread(const QString& milliseconds);

    AppDelegate& m_app;
};

} // namespace velmora
