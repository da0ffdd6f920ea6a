#include "e2e/ExpectedFilm.h"

#include <algorithm>
#include <cmath>

namespace tavi::e2e {

namespace {

constexpr double kStep = 1.0 / 600; ///< Of the clock of an export, in seconds.

std::int64_t onGrid(double seconds) {
    return std::llround(seconds * 600);
}

double rounded(double seconds) {
    return static_cast<double>(onGrid(seconds)) / 600;
}

bool isCut(const TrimState& trim, double time) {
    return std::any_of(trim.cutSegments.begin(), trim.cutSegments.end(),
                       [&](const TimeRange& cut) { return cut.start <= time && time < cut.end; });
}

/// The samples that a reader of one stretch gives: the picture that stands at
/// its beginning, or the first after it, and all that follow up to its end.
std::vector<NumberedPicture> samplesOf(const NumberedVideo& source, double start, double end) {
    std::vector<NumberedPicture> samples;
    if (start >= source.end) {
        return samples;
    }
    for (const NumberedPicture& picture : source.pictures) {
        if (picture.time <= start) {
            samples.clear();
        }
        if (picture.time < end) {
            samples.push_back(picture);
        }
    }
    return samples;
}

int latestAt(const std::vector<NumberedPicture>& samples, double time) {
    int number = samples.front().number;
    for (const NumberedPicture& sample : samples) {
        number = sample.time <= time ? sample.number : number;
    }
    return number;
}

/// The camera is read until a picture at or after the moment comes, or none.
std::optional<int> cameraAt(const std::vector<NumberedPicture>& samples, double time) {
    for (const NumberedPicture& sample : samples) {
        if (sample.time >= time) {
            return sample.number;
        }
    }
    return samples.empty() ? std::nullopt : std::optional(samples.back().number);
}

std::vector<NumberedPicture> cameraSamplesOf(const std::optional<CameraSource>& camera,
                                             const Stretch& stretch) {
    if (!camera) {
        return {};
    }
    const double delay = rounded(camera->delay);
    NumberedVideo moved = camera->video;
    moved.end += delay;
    for (NumberedPicture& picture : moved.pictures) {
        picture.time += delay;
    }
    return samplesOf(moved, stretch.start, stretch.end);
}

} // namespace

std::vector<Stretch> keptStretches(const TrimState& trim, double duration) {
    const double in = trim.inPoint;
    const double out = trim.outPoint.value_or(duration);
    std::vector<double> marks{in, out};
    for (const TimeRange& cut : trim.cutSegments) {
        marks.push_back(cut.start);
        marks.push_back(cut.end);
    }
    std::sort(marks.begin(), marks.end());
    std::vector<Stretch> kept;
    for (std::size_t i = 0; i + 1 < marks.size(); ++i) {
        const bool isInside = marks[i] >= in && marks[i + 1] <= out && marks[i] < marks[i + 1];
        if (!isInside || isCut(trim, marks[i])) {
            continue;
        }
        if (!kept.empty() && kept.back().end == marks[i]) {
            kept.back().end = marks[i + 1];
        } else {
            kept.push_back({marks[i], marks[i + 1]});
        }
    }
    return kept;
}

std::vector<ExpectedPicture> expectedPictures(const NumberedVideo& source,
                                              const std::vector<Stretch>& kept, int fps,
                                              const std::optional<CameraSource>& camera) {
    std::vector<ExpectedPicture> film;
    double offset = 0;
    for (const Stretch& stretch : kept) {
        const double length = stretch.end - stretch.start;
        const double from = rounded(stretch.start);
        const auto samples = samplesOf(source, from, from + std::max(rounded(length), kStep));
        const auto cameraSamples = cameraSamplesOf(camera, stretch);
        for (int n = 0; n < std::ceil(length * fps) && !samples.empty(); ++n) {
            const double step = (1.0 / fps) * n;
            const std::int64_t time = onGrid(offset + step);
            if (film.empty() || time > film.back().time) {
                film.push_back({latestAt(samples, stretch.start + step), time,
                                cameraAt(cameraSamples, stretch.start + step)});
            }
        }
        offset += length;
    }
    return film;
}

std::optional<double> filmTime(const std::vector<Stretch>& kept, double time) {
    double offset = 0;
    for (const Stretch& stretch : kept) {
        if (stretch.start <= time && time < stretch.end) {
            return offset + time - stretch.start;
        }
        offset += stretch.end - stretch.start;
    }
    return std::nullopt;
}

} // namespace tavi::e2e
