#include "ProjectChanges.h"

#include "support/TemporaryFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace tavi::test {

namespace {

QStringList keysOf(const QJsonObject& one, const QJsonObject& other) {
    QStringList keys = one.keys() + other.keys();
    keys.removeDuplicates();
    return keys;
}

bool areClose(const QJsonObject& value, const QJsonObject& expected, double tolerance) {
    const QStringList keys = keysOf(value, expected);
    return std::all_of(keys.begin(), keys.end(), [&](const QString& key) {
        return key == QLatin1String("id") || isClose(value[key], expected[key], tolerance);
    });
}

bool areClose(const QJsonArray& value, const QJsonArray& expected, double tolerance) {
    return std::equal(value.begin(), value.end(), expected.begin(), expected.end(),
                      [&](const QJsonValue& one, const QJsonValue& other) {
                          return isClose(one, other, tolerance);
                      });
}

} // namespace

JsonChanges changesBetween(const QJsonValue& before, const QJsonValue& after,
                           const std::string& path) {
    JsonChanges changes;
    if (before.isObject() && after.isObject()) {
        for (const QString& key : keysOf(before.toObject(), after.toObject())) {
            const std::string inner = (path.empty() ? "" : path + ".") + key.toStdString();
            changes.merge(changesBetween(before[key], after[key], inner));
        }
    } else if (before.isArray() && after.isArray()) {
        const auto size = std::max(before.toArray().size(), after.toArray().size());
        for (qsizetype i = 0; i < size; ++i) {
            changes.merge(
                changesBetween(before[i], after[i], path + "[" + std::to_string(i) + "]"));
        }
    } else if (before != after) {
        changes[path] = after;
    }
    return changes;
}

QJsonValue jsonIn(const std::filesystem::path& file) {
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(readFile(file)));
    return document.isObject() ? QJsonValue(document.object()) : QJsonValue(QJsonValue::Undefined);
}

bool isClose(const QJsonValue& value, const QJsonValue& expected, double tolerance) {
    if (value.isDouble() && expected.isDouble()) {
        return std::abs(value.toDouble() - expected.toDouble()) <= tolerance;
    }
    if (value.isObject() && expected.isObject()) {
        return areClose(value.toObject(), expected.toObject(), tolerance);
    }
    if (value.isArray() && expected.isArray()) {
        return areClose(value.toArray(), expected.toArray(), tolerance);
    }
    return value == expected;
}

std::string textOf(const JsonChanges& changes) {
    std::string text;
    for (const auto& [path, value] : changes) {
        const QJsonObject wrapped{{QString::fromStdString(path), value}};
        text += QJsonDocument(wrapped).toJson(QJsonDocument::Compact).toStdString() + "\n";
    }
    return text;
}

} // namespace tavi::test
