#include "app/Appcast.h"

#include <QVersionNumber>
#include <QXmlStreamReader>

#include <algorithm>

namespace tavi {

namespace {

constexpr QLatin1String kExtension("http://www.andymatuschak.org/xml-namespaces/sparkle");

std::string text(QStringView value) {
    return value.trimmed().toString().toStdString();
}

/// The version may stand in the enclosure or in an element of its own.
void readEnclosure(const QXmlStreamAttributes& attributes, AppcastItem& item) {
    item.url = text(attributes.value(QLatin1String("url")));
    item.length = attributes.value(QLatin1String("length")).toLongLong();
    item.edSignature = text(attributes.value(kExtension, QLatin1String("edSignature")));
    for (const char* name : {"version", "shortVersionString"}) {
        const auto version = text(attributes.value(kExtension, QLatin1String(name)));
        item.version = version.empty() ? item.version : version;
    }
}

void readChild(QXmlStreamReader& xml, AppcastItem& item) {
    const bool isExtension = xml.namespaceUri() == kExtension;
    if (xml.name() == QLatin1String("enclosure")) {
        readEnclosure(xml.attributes(), item);
        xml.skipCurrentElement();
    } else if (!isExtension && xml.name() == QLatin1String("title")) {
        item.title = text(xml.readElementText(QXmlStreamReader::SkipChildElements));
    } else if (isExtension && xml.name() == QLatin1String("shortVersionString")) {
        item.version = text(xml.readElementText(QXmlStreamReader::SkipChildElements));
    } else {
        xml.skipCurrentElement();
    }
}

AppcastItem readItem(QXmlStreamReader& xml) {
    AppcastItem item;
    while (xml.readNextStartElement()) {
        readChild(xml, item);
    }
    return item;
}

bool isComplete(const AppcastItem& item) {
    return !item.version.empty() && !item.url.empty() && item.length > 0 &&
           !item.edSignature.empty();
}

/// The next token; a document type is an error, since its entities could multiply without end.
QXmlStreamReader::TokenType readToken(QXmlStreamReader& xml) {
    const auto token = xml.readNext();
    if (token == QXmlStreamReader::DTD) {
        xml.raiseError(QStringLiteral("a document type is not allowed"));
    }
    return token;
}

void readRoot(QXmlStreamReader& xml) {
    while (!xml.atEnd() && readToken(xml) != QXmlStreamReader::StartElement) {
    }
    if (!xml.hasError() && xml.name() != QLatin1String("rss")) {
        xml.raiseError(QStringLiteral("it is no RSS document"));
    }
}

std::vector<AppcastItem> readItems(QXmlStreamReader& xml) {
    std::vector<AppcastItem> items;
    while (!xml.atEnd() && items.size() < kMostAppcastItems) {
        if (readToken(xml) == QXmlStreamReader::StartElement &&
            xml.name() == QLatin1String("item")) {
            auto item = readItem(xml);
            if (isComplete(item)) {
                items.push_back(std::move(item));
            }
        }
    }
    return items;
}

/// Null when the text is no version.
QVersionNumber versionOf(std::string_view version) {
    qsizetype end = 0;
    const QString whole = QString::fromUtf8(version.data(), static_cast<qsizetype>(version.size()));
    const auto number = QVersionNumber::fromString(whole, &end);
    return end == whole.size() ? number.normalized() : QVersionNumber();
}

bool isOlder(const AppcastItem& a, const AppcastItem& b) {
    return versionOf(a.version) < versionOf(b.version);
}

} // namespace

Message AppcastError::message() const {
    return {TAVI_TEXT("Errors", "The list of updates can't be read: %1 (line %2)."),
            {detail, std::to_string(line)}};
}

Result<std::vector<AppcastItem>, AppcastError> parseAppcast(std::string_view xml) {
    QXmlStreamReader reader(
        QByteArray::fromRawData(xml.data(), static_cast<qsizetype>(xml.size())));
    readRoot(reader);
    auto items = readItems(reader);
    if (reader.hasError()) {
        return fail(AppcastError{reader.errorString().toStdString(), reader.lineNumber()});
    }
    return items;
}

std::optional<AppcastItem> newestUpdate(const std::vector<AppcastItem>& items,
                                        std::string_view runningVersion) {
    const auto newest = std::max_element(items.begin(), items.end(), isOlder);
    const bool isNewer = newest != items.end() && !versionOf(newest->version).isNull() &&
                         versionOf(newest->version) > versionOf(runningVersion);
    return isNewer ? std::optional(*newest) : std::nullopt;
}

std::string updateMessage(std::string_view version, std::int64_t length,
                          std::string_view sha512Hex) {
    std::string message("Tavlin update\n");
    message.append(version).append("\n").append(std::to_string(length)).append("\n");
    return message.append(sha512Hex).append("\n");
}

} // namespace tavi
