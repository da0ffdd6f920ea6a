#pragma once

#include "base/Message.h"

#include <QCoreApplication>
#include <QString>

namespace tavi {

/// A message in the user's language. What the catalogue doesn't have, paths and the system's own
/// words, stays as it is. Thread: any.
inline QString translated(const Message& message) {
    return QString::fromStdString(message.in([](const std::string& words) {
        return QCoreApplication::translate("Errors", words.c_str()).toStdString();
    }));
}

} // namespace tavi
