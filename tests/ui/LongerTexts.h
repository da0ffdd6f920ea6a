#pragma once

#include <QCoreApplication>
#include <QTranslator>

#include <algorithm>
#include <cmath>

namespace tavi::test {

/// Makes every text of the program 40 % longer, as other languages do.
class LongerTexts : public QTranslator {
public:
    LongerTexts() { QCoreApplication::installTranslator(this); }
    ~LongerTexts() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override {
        const QString original = QString::fromUtf8(text);
        const auto more = size_t(std::max(1.0, std::round(0.4 * double(original.size()))));
        // Words of four letters, since no language lengthens by one long word.
        QString filling;
        while (size_t(filling.size()) < more)
            filling += filling.size() % 5 == 0 ? u' ' : u'ü';
        return original + filling;
    }
};

} // namespace tavi::test
