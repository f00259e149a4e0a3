#pragma once

#include "platform/CloudDatabase.h"

#include <QMap>
#include <cmath>

namespace velmora {

// A cloud database in memory with the server's rules: whole-second dates from its own clock, a new
// tag on every save, conditional saves. It answers at once, or with holdAnswers when the test calls
// answer(); failWith makes every call fail with that error.
class FakeCloudDatabase final : public CloudDatabase {
public:
    QMap<QString, CloudRecord> records;
    double serverNow = 1'800'000'000; // the server's clock, seconds
    double offset = 0;                // what clockOffset() reports
    QString failWith;
    bool holdAnswers = false;
    std::optional<CloudAccount> account;
    int fetches = 0;
    int saves = 0;
    int lists = 0;
    // Called once per save before it is applied: a test's other machine writing first.
    std::function<void()> beforeSave;

    void setAccount(std::optional<CloudAccount> a) override { account = std::move(a); }
    bool hasAccount() const override { return account.has_value(); }
    void check(const CloudAccount& a, std::function<void(QString)> done) override {
        later([this, a, done] {
            done(!failWith.isEmpty() ? failWith : a.password == "wrong" ? refused() : QString());
        });
    }
    void fetch(const QString& key, std::function<void(CloudFetchResult)> done) override {
        ++fetches;
        later([this, key, done] {
            if (!failWith.isEmpty())
                return done({std::nullopt, failWith});
            if (!records.contains(key))
                return done({});
            done({records.value(key), {}});
        });
    }
    void list(std::function<void(CloudListing)> done) override {
        ++lists;
        later([this, done] {
            CloudListing listing;
            listing.error = failWith;
            if (failWith.isEmpty())
                for (const auto& r : records)
                    listing.versions.push_back({r.key, r.tag, r.modificationDate});
            done(listing);
        });
    }
    void save(const CloudRecord& record, const QString& expectedTag,
              std::function<void(CloudSaveResult)> done) override {
        ++saves;
        later([this, record, expectedTag, done] {
            if (!failWith.isEmpty())
                return done({CloudSaveResult::Outcome::failed, {}, 0, failWith});
            if (auto other = std::exchange(beforeSave, nullptr))
                other();
            const bool exists = records.contains(record.key);
            if ((expectedTag.isEmpty() && exists) ||
                (!expectedTag.isEmpty() && (!exists || records[record.key].tag != expectedTag)))
                return done({CloudSaveResult::Outcome::conflict, {}, 0, {}});
            const CloudRecord& saved = put(record.key, record.data);
            done({CloudSaveResult::Outcome::saved, saved.tag, saved.modificationDate, {}});
        });
    }
    double clockOffset() const override { return offset; }

    // What another machine's save leaves on the server.
    const CloudRecord& put(const QString& key, const QByteArray& data) {
        records[key] = {key, data, std::floor(serverNow), QString("\"t%1\"").arg(++m_tags)};
        return records[key];
    }
    void answer() {
        auto pending = std::move(m_pending);
        m_pending.clear();
        for (auto& call : pending)
            call();
    }
    static QString refused() { return "the server refused the user name or app password"; }

private:
    void later(std::function<void()> call) {
        if (holdAnswers)
            m_pending.push_back(std::move(call));
        else
            call();
    }

    int m_tags = 0;
    std::vector<std::function<void()>> m_pending;
};

} // namespace velmora
