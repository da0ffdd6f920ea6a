#pragma once

#include "media/MediaPlayer.h"
#include "media/SoundOutput.h"
#include "platform/ffmpeg/FfmpegMediaPlayers.h"
#include "platform/ffmpeg/TestMedia.h"
#include "render/YuvConverter.h"
#include "support/MainQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace tavi::testing {

/// What the pictures of a numbered film show, by the film's reader.
class FilmContent {
public:
    struct Picture {
        int number = 0;
        MediaTime time;
    };

    explicit FilmContent(const std::filesystem::path& file) {
        FfmpegMediaLibrary library = mediaLibrary();
        const auto asset = library.openAsset(file);
        if (!asset || asset->videoTracks.empty()) {
            ADD_FAILURE() << file;
            return;
        }
        m_length = asset->duration;
        const auto reader =
            library.makeVideoReader(*asset, asset->videoTracks.front(), {{0, 1}, {1000, 1}});
        while (const auto sample = (*reader)->copyNextSample()) {
            m_pictures.push_back({numberIn(*sample->image), sample->presentationTime});
        }
    }

    /// The picture in force; the first also before its time.
    const Picture& at(MediaTime time) const {
        const auto next = std::find_if(m_pictures.begin(), m_pictures.end(),
                                       [&](const Picture& picture) { return picture.time > time; });
        return next == m_pictures.begin() ? *next : *(next - 1);
    }

    const std::vector<Picture>& pictures() const { return m_pictures; }
    MediaTime length() const { return m_length; }

private:
    std::vector<Picture> m_pictures;
    MediaTime m_length;
};

/// Players on a main thread that is the test's, and what one of them showed.
class PlayerRig {
public:
    static constexpr int kNoPicture = -1;

    void open(const PlayerItem& item) {
        m_player = m_players.makePlayer(item);
        m_player->setPictureObserver([this] { note(number()); });
    }
    void open(const std::filesystem::path& file) { open(PlayerItem{file, {}}); }

    /// Opens and waits for the first picture.
    void show(const std::filesystem::path& file) {
        open(file);
        EXPECT_TRUE(main.runUntil([this] { return number() != kNoPicture; })) << file;
    }

    MediaPlayer& player() { return *m_player; }
    FfmpegMediaPlayers& players() { return m_players; }
    void close() { m_player.reset(); }

    /// The number that is shown now.
    int number() const {
        const PixelBufferPtr picture = m_player->currentPicture();
        return picture ? numberIn(*picture) : kNoPicture;
    }

    bool waitForNumber(int wanted) {
        return main.runUntil([&] { return number() == wanted; });
    }

    /// All that were shown, in their order; one that was decoded anew counts once.
    std::vector<int>& shown() { return m_shown; }

    test::MainQueue main;

private:
    void note(int number) {
        if (m_shown.empty() || m_shown.back() != number) {
            m_shown.push_back(number);
        }
    }

    SilentOutputs m_silence;
    FfmpegMediaPlayers m_players{main, std::make_shared<YuvConverter>(), m_silence};
    std::unique_ptr<MediaPlayer> m_player;
    std::vector<int> m_shown;
};

} // namespace tavi::testing
