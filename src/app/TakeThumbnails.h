#pragma once

#include "base/Executor.h"
#include "base/PixelBuffer.h"
#include "base/SerialQueue.h"
#include "media/ImageGenerator.h"

#include <QObject>
#include <QSet>
#include <QUrl>
#include <QVariant>

#include <cstddef>
#include <deque>
#include <list>
#include <map>
#include <memory>

namespace tavi {

/// The small pictures of takes, keyed by their folders' URLs.
///
/// A picture is made when a card wants it, one at a time and off the main thread, unless the card
/// is gone before its turn comes. The newest pictures stay in memory up to a budget; what is
/// there, on its way, or known to have no picture is not decoded again.
/// Errors: a take without a picture stays without.
/// Thread: main. The destructor waits for the picture that is being made.
class TakeThumbnails : public QObject {
    Q_OBJECT

public:
    static constexpr Size kLargest{640, 640};
    static constexpr std::size_t kBudget = std::size_t{32} << 20; ///< Bytes, of pixels.

    /// Both outlive it.
    TakeThumbnails(ImageGenerator& images, Executor& main, std::size_t budget = kBudget,
                   QObject* parent = nullptr);
    ~TakeThumbnails() override;

    /// The picture as a PixelBufferPtr; invalid when it is not there.
    Q_INVOKABLE QVariant image(const QUrl& url);

    /// A card shows this take: makes the picture unless it is there; ready() tells.
    Q_INVOKABLE void want(const QUrl& url);

    /// The card is gone: its picture need not be made any more.
    Q_INVOKABLE void forget(const QUrl& url);

    /// The take is gone: so is its picture.
    void drop(const QUrl& url);

    /// Takes that had no picture are tried again when they are wanted.
    void retryFailures() { m_failed.clear(); }

    std::size_t bytesInMemory() const { return m_bytes; }

signals:
    void ready(const QUrl& url);

private:
    struct Entry {
        QUrl url;
        PixelBufferPtr picture;
    };
    struct Alive {};

    void startNext();
    void finish(const QUrl& url, PixelBufferPtr picture);
    void keep(const QUrl& url, PixelBufferPtr picture);
    void shrinkToBudget();

    ImageGenerator& m_images;
    Executor& m_main;
    std::size_t m_budget;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); ///< Held weakly by blocks.
    std::list<Entry> m_kept;                                    ///< Last used first.
    std::map<QUrl, std::list<Entry>::iterator> m_byUrl;
    std::size_t m_bytes = 0;
    std::deque<QUrl> m_wanted; ///< In the order in which they were asked for.
    QSet<QUrl> m_failed;
    QUrl m_current; ///< Being made; empty when idle.
    bool m_isCurrentDropped = false;
    SerialQueue m_worker{"com.tavi.thumbs"}; ///< Goes first: its block looks at `m_images`.
};

} // namespace tavi
