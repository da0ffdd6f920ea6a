#include "app/TakeThumbnails.h"

#include "app/PathText.h"
#include "project/RecordingFolder.h"

#include <algorithm>
#include <utility>

namespace tavi {

namespace {

constexpr MediaTime kFirstChoice{300, 600}; // half a second in, where the desktop has settled
constexpr MediaTime kSecondChoice{0, 600};

PixelBufferPtr makePicture(ImageGenerator& images, const std::filesystem::path& folder) {
    const auto video = folder / take::kVideo;
    for (const MediaTime time : {kFirstChoice, kSecondChoice}) {
        if (auto picture = images.copyImage(video, time, TakeThumbnails::kLargest)) {
            return std::move(*picture);
        }
    }
    return nullptr;
}

std::size_t bytesOf(const PixelBufferPtr& picture) {
    return picture->stride() * static_cast<std::size_t>(picture->height());
}

} // namespace

TakeThumbnails::TakeThumbnails(ImageGenerator& images, Executor& main, std::size_t budget,
                               QObject* parent)
    : QObject(parent),
      m_images(images),
      m_main(main),
      m_budget(budget) {}

TakeThumbnails::~TakeThumbnails() = default;

QVariant TakeThumbnails::image(const QUrl& url) {
    const auto found = m_byUrl.find(url);
    if (found == m_byUrl.end()) {
        return {};
    }
    m_kept.splice(m_kept.begin(), m_kept, found->second);
    return QVariant::fromValue(found->second->picture);
}

void TakeThumbnails::want(const QUrl& url) {
    const bool isKnown = m_byUrl.contains(url) || m_failed.contains(url) || url == m_current ||
                         std::find(m_wanted.begin(), m_wanted.end(), url) != m_wanted.end();
    if (isKnown || url.isEmpty()) {
        return;
    }
    m_wanted.push_back(url);
    startNext();
}

void TakeThumbnails::forget(const QUrl& url) {
    std::erase(m_wanted, url);
}

void TakeThumbnails::drop(const QUrl& url) {
    forget(url);
    m_failed.remove(url);
    m_isCurrentDropped |= url == m_current;
    if (const auto found = m_byUrl.find(url); found != m_byUrl.end()) {
        m_bytes -= bytesOf(found->second->picture);
        m_kept.erase(found->second);
        m_byUrl.erase(found);
    }
}

void TakeThumbnails::startNext() {
    if (!m_current.isEmpty() || m_wanted.empty()) {
        return;
    }
    m_current = m_wanted.front();
    m_wanted.pop_front();
    m_isCurrentDropped = false;
    m_worker.post([this, alive = std::weak_ptr(m_alive), &images = m_images, &main = m_main,
                   url = m_current, folder = pathOf(m_current.toLocalFile())] {
        main.post([this, alive, url, picture = makePicture(images, folder)] {
            if (!alive.expired()) {
                finish(url, picture);
            }
        });
    });
}

void TakeThumbnails::finish(const QUrl& url, PixelBufferPtr picture) {
    m_current.clear();
    if (!m_isCurrentDropped && picture) {
        keep(url, std::move(picture));
        emit ready(url);
    } else if (!m_isCurrentDropped) {
        m_failed.insert(url);
    }
    startNext();
}

void TakeThumbnails::keep(const QUrl& url, PixelBufferPtr picture) {
    m_bytes += bytesOf(picture);
    m_kept.push_front({url, std::move(picture)});
    m_byUrl[url] = m_kept.begin();
    shrinkToBudget();
}

/// The newest picture stays, however large it is: its card waits for it.
void TakeThumbnails::shrinkToBudget() {
    while (m_bytes > m_budget && m_kept.size() > 1) {
        m_bytes -= bytesOf(m_kept.back().picture);
        m_byUrl.erase(m_kept.back().url);
        m_kept.pop_back();
    }
}

} // namespace tavi
