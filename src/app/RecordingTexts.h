#pragma once

#include "base/Date.h"

#include <QLocale>
#include <QString>

namespace tavi {

/// Minutes and seconds as a card shows them ("0:07", "75:30"), truncated; what is
/// negative or no number is "0:00".
QString durationText(double seconds);

/// A take's date in local time, in the words of `locale`: day, month, year and the time.
QString dateText(Date date, const QLocale& locale);

} // namespace tavi
