#include "platform/portal/PortalContent.h"

#include "platform/portal/ScreenCastSession.h"

#include <QCoreApplication>

namespace tavi {

namespace {

/// Stands for what isn't known before the user chose; large enough for a list of sources.
constexpr int kUsualWidth = 1920;
constexpr int kUsualHeight = 1080;

std::string chosenInDialog() {
    return QCoreApplication::translate("PortalContent", "chosen in the desktop's dialog")
        .toStdString();
}

} // namespace

Result<ShareableContent, CaptureError> PortalContent::content() {
    const auto facts = readScreenCastFacts(m_bus);
    if (!facts) {
        return fail(CaptureError{CaptureError::Kind::noPortal, facts.error().detail});
    }
    const Rect usual{0, 0, kUsualWidth, kUsualHeight};
    ShareableContent content;
    if (facts->canShow(ScreenCastFacts::monitor) && m_displays) {
        content.displays = m_displays();
    }
    if (facts->canShow(ScreenCastFacts::monitor) && content.displays.empty()) {
        content.displays.push_back(
            {kChosenDisplay, chosenInDialog(), kUsualWidth, kUsualHeight, usual, true});
    }
    if (facts->canShow(ScreenCastFacts::window)) {
        content.windows.push_back(
            {kChosenWindow, chosenInDialog(),
             QCoreApplication::translate("PortalContent", "A window").toStdString(), "", usual,
             true});
    }
    return content;
}

} // namespace tavi
