#pragma once

#include "base/Message.h"

#include <QCoreApplication>
#include <QString>

namespace tavi {

/// A message in the user's language. What the catalogue doesn't have, paths and the system's own
/// words, stays as it is. Thread: any.
inline QString translated(const Message& message) {
    const QString text = QCoreApplication::translate("Errors", message.text.c_str());
    QString out;
    for (int i = 0; i < text.size(); ++i) {
        const auto argument = text[i] == u'%' && i + 1 < text.size()
                                  ? static_cast<std::size_t>(text[i + 1].unicode() - u'1')
                                  : message.arguments.size();
        if (argument < message.arguments.size()) {
            out += translated(message.arguments[argument]);
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace tavi
