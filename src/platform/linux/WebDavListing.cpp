#include "platform/linux/WebDavListing.h"

#include <QDateTime>
#include <QLocale>
#include <QUrl>
#include <QXmlStreamReader>

namespace velmora {

namespace {

const QString kDav = QStringLiteral("DAV:");

struct Member {
    QString href;
    QString tag;
    QString lastModified;
    bool ok = false; // the propstat that carried the properties answered 200
};

// One <response>: its href and the properties of its successful propstat.
Member readResponse(QXmlStreamReader& xml) {
    Member member;
    QString tag, lastModified, status;
    while (xml.readNextStartElement()) {
        if (xml.namespaceUri() != kDav) {
            xml.skipCurrentElement();
        } else if (xml.name() == u"href") {
            member.href = xml.readElementText().trimmed();
        } else if (xml.name() == u"propstat") {
            tag.clear();
            lastModified.clear();
            status.clear();
            while (xml.readNextStartElement()) {
                if (xml.namespaceUri() == kDav && xml.name() == u"prop") {
                    while (xml.readNextStartElement()) {
                        if (xml.namespaceUri() == kDav && xml.name() == u"getetag")
                            tag = xml.readElementText().trimmed();
                        else if (xml.namespaceUri() == kDav && xml.name() == u"getlastmodified")
                            lastModified = xml.readElementText().trimmed();
                        else
                            xml.skipCurrentElement();
                    }
                } else if (xml.namespaceUri() == kDav && xml.name() == u"status") {
                    status = xml.readElementText();
                } else {
                    xml.skipCurrentElement();
                }
            }
            if (status.contains(" 200 ")) {
                member.tag = tag;
                member.lastModified = lastModified;
                member.ok = true;
            }
        } else {
            xml.skipCurrentElement();
        }
    }
    return member;
}

} // namespace

std::optional<double> parseHttpDate(const QString& text) {
    // HTTP's own form (RFC 9110's IMF-fixdate), always in GMT; Qt's RFC 2822 reading refuses "GMT".
    QString fixdate = text.trimmed();
    if (!fixdate.endsWith(" GMT"))
        return std::nullopt;
    fixdate.chop(4);
    QDateTime date = QLocale::c().toDateTime(fixdate, "ddd, dd MMM yyyy HH:mm:ss");
    if (!date.isValid())
        return std::nullopt;
    date.setTimeSpec(Qt::UTC);
    return date.toSecsSinceEpoch();
}

CloudListing parseWebDavListing(const QByteArray& multistatus) {
    CloudListing listing;
    QXmlStreamReader xml(multistatus);
    if (!xml.readNextStartElement() || xml.namespaceUri() != kDav || xml.name() != u"multistatus") {
        listing.error = "the server's listing is not a WebDAV multistatus answer";
        return listing;
    }
    while (xml.readNextStartElement()) {
        if (xml.namespaceUri() != kDav || xml.name() != u"response") {
            xml.skipCurrentElement();
            continue;
        }
        const Member member = readResponse(xml);
        const QString path = QUrl(member.href).path();
        if (!member.ok || path.endsWith('/'))
            continue;
        QString name = QUrl::fromPercentEncoding(path.section('/', -1).toUtf8());
        if (!name.endsWith(".json") || name.size() <= 5)
            continue;
        name.chop(5);
        listing.versions.push_back({name, member.tag, parseHttpDate(member.lastModified).value_or(0)});
    }
    if (xml.hasError()) {
        listing.versions.clear();
        listing.error = "the server's listing is cut short or malformed: " + xml.errorString();
    }
    return listing;
}

} // namespace velmora
