#include "app/RecordingTexts.h"

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(HomeView)
};

} // namespace

QString durationText(double seconds) {
    constexpr double kLongest = 1e15; // keeps the conversion defined
    const auto whole = seconds > 0 ? static_cast<long long>(std::min(seconds, kLongest)) : 0;
    return QString::asprintf("%lld:%02lld", whole / 60, whole % 60);
}

QString dateText(Date date, const QLocale& locale) {
    constexpr double kFurthest = 1e12; // seconds; dates beyond are no dates of takes
    if (!(std::abs(date.sinceReference) < kFurthest)) {
        return {};
    }
    const auto moment =
        QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(date.sinceEpoch() * 1000));
    //: The date on a recording's card, in Qt's letters for the parts of a date.
    const QString day = Texts::tr("MMM d, yyyy");
    //: A recording's date and time.
    return Texts::tr("%1, %2").arg(locale.toString(moment.date(), day),
                                   locale.toString(moment.time(), QLocale::ShortFormat));
}

} // namespace tavi
