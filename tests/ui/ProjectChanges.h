#pragma once

#include <QJsonValue>

#include <filesystem>
#include <map>
#include <string>

namespace tavi::test {

/// What differs between two JSON documents: the new value at each path, "trimState.inPoint" or
/// "keyframes[1]"; undefined where there is none any more.
using JsonChanges = std::map<std::string, QJsonValue>;

JsonChanges changesBetween(const QJsonValue& before, const QJsonValue& after,
                           const std::string& path = "");

/// The document in a file; undefined while it can't be read.
QJsonValue jsonIn(const std::filesystem::path& file);

/// Whether both hold the same but for identities, which new things get at random, and numbers by
/// not more than `tolerance`.
bool isClose(const QJsonValue& value, const QJsonValue& expected, double tolerance);

std::string textOf(const JsonChanges& changes);

} // namespace tavi::test
