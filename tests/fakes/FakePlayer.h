#pragma once

#include "fakes/CallLog.h"
#include "media/MediaPlayer.h"

#include <map>
#include <string>

namespace tavi {

/// A player that shows nothing and writes down what is asked of it, with the name of its
/// file ("video.mov seek 1.500"). The test moves its time.
class FakePlayer final : public MediaPlayer {
public:
    FakePlayer(CallLog& log, const PlayerItem& item)
        : m_log(log),
          m_name(item.path.filename().string()) {}

    void replaceCurrentItem(const PlayerItem& item) override {
        current = item;
        time = {};
        note("replaceCurrentItem");
    }
    MediaTime currentTime() const override { return time; }
    void seek(MediaTime target) override {
        time = target;
        note(at("seek %.3f", target.seconds()));
    }
    void setRate(double rate, MediaTime itemTime, MediaTime hostTime) override {
        note(at("setRate %.1f", rate) + at(" %.3f", itemTime.seconds()) +
             at(" at %.3f", hostTime.seconds()));
    }
    void pause() override { note("pause"); }
    void setPeriodicTimeObserver(MediaTime interval, TimeObserver observer) override {
        tickInterval = interval;
        m_timeObserver = std::move(observer);
    }
    void setEndObserver(std::function<void()> observer) override {
        m_endObserver = std::move(observer);
    }
    void setPictureObserver(std::function<void()> observer) override {
        m_pictureObserver = std::move(observer);
    }
    PixelBufferPtr currentPicture() const override { return picture; }

    /// Plays on to `seconds`.
    void tick(double seconds) {
        time = MediaTime::fromSeconds(seconds, MediaTime::kNanoseconds);
        m_timeObserver(time);
    }
    void reachEnd() { m_endObserver(); }

    void show(PixelBufferPtr next) {
        picture = std::move(next);
        m_pictureObserver();
    }

    std::optional<PlayerItem> current; ///< What replaced the first item.
    MediaTime time;
    MediaTime tickInterval;
    PixelBufferPtr picture;

private:
    static std::string at(const char* format, double value) {
        char text[64];
        std::snprintf(text, sizeof text, format, value);
        return text;
    }
    void note(const std::string& call) { m_log.note(m_name + " " + call); }

    CallLog& m_log;
    std::string m_name;
    TimeObserver m_timeObserver;
    std::function<void()> m_endObserver;
    std::function<void()> m_pictureObserver;
};

/// Makes fake players and finds them again by the name of their file.
class FakePlayers final : public MediaPlayers {
public:
    explicit FakePlayers(CallLog& log) : m_log(log) {}

    std::unique_ptr<MediaPlayer> makePlayer(const PlayerItem& item) override {
        auto player = std::make_unique<FakePlayer>(m_log, item);
        made[item.path.filename().string()] = player.get();
        return player;
    }

    std::map<std::string, FakePlayer*> made;

private:
    CallLog& m_log;
};

} // namespace tavi
