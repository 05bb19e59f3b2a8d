#include "qt/updates/AppcastReader.h"

#include <QXmlStreamReader>

namespace tarvix {

namespace {

// The namespace of the appcast format: a name, never an address that is asked.
constexpr QLatin1StringView kAppcast("http://www.andymatuschak.org/xml-namespaces/sparkle");

class Reader {
public:
    explicit Reader(const QByteArray& xml) : xml_(xml) {}

    std::optional<Appcast> read() {
        bool hasChannel = false;
        while (!xml_.atEnd() && !declaresType_) {
            switch (next()) {
                case QXmlStreamReader::StartElement:
                    if (isPlain("channel"))
                        hasChannel = true;
                    else if (hasChannel && isPlain("item"))
                        readItem();
                    else if (!isPlain("rss"))
                        xml_.skipCurrentElement();
                    break;
                default:
                    break;
            }
        }
        if (xml_.hasError() || declaresType_ || !hasChannel) return std::nullopt;
        return appcast_;
    }

private:
    QXmlStreamReader::TokenType next() {
        const auto token = xml_.readNext();
        if (token == QXmlStreamReader::DTD) declaresType_ = true;
        return token;
    }

    bool isPlain(const char* name) const {
        return xml_.namespaceUri().isEmpty() && xml_.name() == QLatin1StringView(name);
    }
    bool isAppcasts(const char* name) const {
        return xml_.namespaceUri() == kAppcast && xml_.name() == QLatin1StringView(name);
    }

    std::string text() { return xml_.readElementText(QXmlStreamReader::SkipChildElements).trimmed().toStdString(); }

    // Only what lies directly in the item is the item's: patches to older versions are enclosures further down.
    void readItem() {
        AppcastItem item;
        while (xml_.readNextStartElement()) {
            if (isAppcasts("version")) {
                item.version = text();
            } else if (isAppcasts("shortVersionString")) {
                item.displayVersion = text();
            } else if (isAppcasts("minimumSystemVersion")) {
                item.minimumSystemVersion = text();
            } else if (isAppcasts("channel")) {
                item.channel = text();
            } else if (isPlain("description")) {
                item.notes = text();
            } else {
                if (isPlain("enclosure")) readFile(item);
                xml_.skipCurrentElement();
            }
        }
        if (item.version.empty()) item.version = item.displayVersion;
        appcast_.push_back(std::move(item));
    }

    // Older feeds have the versions here.
    void readFile(AppcastItem& item) {
        const QXmlStreamAttributes attributes = xml_.attributes();
        const auto plain = [&](const char* name) {
            return attributes.value(QLatin1StringView(name)).toString().toStdString();
        };
        const auto appcasts = [&](const char* name) {
            return attributes.value(kAppcast, QLatin1StringView(name)).toString().toStdString();
        };
        item.files.push_back({.address = plain("url"),
                              .type = plain("type"),
                              .signature = appcasts("edSignature"),
                              .system = appcasts("os"),
                              .length = attributes.value(QLatin1StringView("length")).toULongLong()});
        if (item.version.empty()) item.version = appcasts("version");
        if (item.displayVersion.empty()) item.displayVersion = appcasts("shortVersionString");
    }

    QXmlStreamReader xml_;
    bool declaresType_ = false;
    Appcast appcast_;
};

}  // namespace

std::optional<Appcast> readAppcast(const QByteArray& xml) { return Reader(xml).read(); }

}  // namespace tarvix
